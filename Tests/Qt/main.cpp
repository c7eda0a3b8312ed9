#include "Support/TemporaryFolder.h"

#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // The same everywhere, whatever the desktop: no screen, one style.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle("fusion");
    // What a test remembers is not the user's.
    const zr::test::TemporaryFolder configuration;
    qputenv("XDG_CONFIG_HOME", configuration.path().c_str());
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
