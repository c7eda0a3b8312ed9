// SPDX-License-Identifier: MIT
// Calls nothing but the adaptor: that finds the kit without the program's help.

#include <ZRUIKitQt/Application.h>

int main(int argc, char** argv) { const zr::qt::Application application(argc, argv); }
