#include <QApplication>
#include <gtest/gtest.h>

int main(int argc, char** argv) {
    testing::InitGoogleTest(&argc, argv);
    // The same everywhere, whatever the desktop: no screen, one style.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication::setStyle("fusion");
    QApplication application(argc, argv);
    return RUN_ALL_TESTS();
}
