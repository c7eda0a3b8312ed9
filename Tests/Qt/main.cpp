// SPDX-License-Identifier: MIT
#include "Support/TemporaryFolder.h"

#include <QApplication>
#include <gtest/gtest.h>

#include <cstdio>
#include <exception>

// --ratio=R: device pixels per point, 1 if it is not said.
int main(int argc, char** argv) try {
    testing::InitGoogleTest(&argc, argv);
    QByteArray ratio = "1";
    for (int i = 1; i < argc; ++i)
        if (const QByteArray argument = argv[i]; argument.startsWith("--ratio=")) ratio = argument.mid(8);
    // The same everywhere, whatever the desktop: no screen, one style, one language.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("QT_SCALE_FACTOR", ratio);
    qputenv("LC_ALL", "C.UTF-8");
    QApplication::setStyle("fusion");
    // What a test remembers is not the user's.
    const zr::test::TemporaryFolder configuration;
    qputenv("XDG_CONFIG_HOME", configuration.path().c_str());
    QApplication application(argc, argv);
    if (application.devicePixelRatio() != ratio.toDouble()) {
        std::fprintf(stderr, "The ratio is %g instead of %s.\n", application.devicePixelRatio(),
                     ratio.constData());
        return 1;
    }
    return RUN_ALL_TESTS();
} catch (const std::exception& problem) {
    std::fprintf(stderr, "%s\n", problem.what());
    return 1;
}
