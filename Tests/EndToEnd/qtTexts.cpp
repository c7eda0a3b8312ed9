// SPDX-License-Identifier: MIT
// Tells how Qt's own file dialog names one of its parts in a program of the kit. Arguments: the folder of the
// application's resources, a language.

#include <ZRUIKitQt/Application.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv) {
    if (argc != 3) return 2;
    zr::qt::Options options;
    options.mainBundle = argv[1];
    options.preferredLanguages = {{argv[2]}};
    const zr::qt::Application application(argc, argv, options);
    std::puts(qUtf8Printable(QCoreApplication::translate("QFileDialog", "Look in:")));
    return 0;
}
