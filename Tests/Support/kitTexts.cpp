// SPDX-License-Identifier: MIT
// Prints texts of the kit, in German, for an application whose bundle is the argument: for tests that need a
// kit of its own.

#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKitHeadless/Headless.h>

#include <iostream>

int main(int, char** argv) {
    zr::headless::Options options;
    options.mainBundle = argv[1];
    options.preferredLanguages = {"de"};
    const zr::headless::Platform platform(options);
    std::cout << "[" << zr::KitLocalizedString("Got it") << "][" << zr::KitLocalizedString("Tips of the day!")
              << "]\n";
}
