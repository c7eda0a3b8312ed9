// SPDX-License-Identifier: MIT
// A program of Qt's own widgets with a slider of the kit in its layout. It drives itself, and prints what the
// kit sees.

#include <AppKit/NSApplication.h>
#include <AppKit/NSView.h>
#include <AppKit/NSWindow.h>
#include <ZRUIKit/SplitSliderView.h>
#include <ZRUIKitQt/Application.h>
#include <ZRUIKitQt/Hosting.h>

#include <QApplication>
#include <QLineEdit>
#include <QMainWindow>
#include <QPushButton>
#include <QScreen>
#include <QTest>
#include <QVBoxLayout>
#include <QWindow>

#include <cstdio>

namespace {

struct Trimmer : zr::SliderViewDelegate {
    void splitSliderViewBeginDragClip_bLeftClip(zr::SplitSliderView& slider, bool left) override {
        print("begin", slider, left);
    }
    void splitSliderViewEndDragClip_bLeftClip(zr::SplitSliderView& slider, bool left) override {
        print("end", slider, left);
    }
    static void print(const char* what, zr::SplitSliderView& slider, bool left) {
        std::printf("%s %s: %g from %g\n", what, left ? "left" : "right", slider.selectionItem()->dLength(),
                    slider.selectionItem()->dStart());
    }
};

void print(const char* what, const zr::NSRect& rect) {
    std::printf("%s: %g %g %g %g\n", what, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
}

} // namespace

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    const zr::qt::Platform platform;

    QMainWindow window;
    window.setWindowTitle("A plain window");
    window.setCentralWidget(new QWidget);
    auto* const layout = new QVBoxLayout(window.centralWidget());
    layout->setContentsMargins(10, 10, 10, 10);
    layout->setSpacing(5);

    const auto slider = zr::make<zr::SplitSliderView>(zr::NSMakeRect(0, 0, 556, 61));
    const auto trimmer = std::make_shared<Trimmer>();
    slider->setSliderXOffset(28);
    slider->setDelegate(trimmer);
    QWidget* const slot = zr::qt::embed(slider);
    auto* const button = new QPushButton("Trim");
    button->setFixedSize(120, 30);
    auto* const field = new QLineEdit;
    layout->addWidget(slot);
    layout->addWidget(button);
    layout->addStretch();
    layout->addWidget(field);
    slot->setFixedSize(slot->sizeHint());
    window.setFixedSize(576, 200);
    window.show();
    window.activateWindow();
    if (!QTest::qWaitForWindowActive(&window)) return 1;
    QTest::qWait(0);

    zr::NSWindow* const kitWindow = zr::qt::windowOf(&window);
    std::printf("window: %s, %g by %g, key %d, of %zu\n", kitWindow->title().c_str(),
                kitWindow->contentSize().width, kitWindow->contentSize().height, kitWindow->isKeyWindow(),
                zr::NSApplication::sharedApplication().windows().size());
    std::printf("slider in it: %d\n", slider->window() == kitWindow);
    print("slider", slider->convertRect_toView(slider->bounds(), nullptr));

    const auto anchor = zr::qt::viewOf(button);
    const zr::NSRect inWindow = anchor->convertRect_toView(anchor->bounds(), nullptr);
    const zr::NSRect onScreen = kitWindow->convertRectToScreen(inWindow);
    const QPoint corner = button->mapToGlobal(QPoint(0, button->height()));
    print("button", inWindow);
    std::printf("button on screen, from where Qt has it: %g %g\n", onScreen.origin.x - corner.x(),
                onScreen.origin.y - (window.screen()->size().height() - corner.y()));

    // Drag the left handle by 50 points, which are 100 units.
    window.grab(); // handles are where they were drawn
    const zr::NSRect handle = slider->convertRect_toView(slider->rcClipLeft(), nullptr);
    const auto at = [&](double right) {
        return QPoint(int(zr::NSMidX(handle) + right), int(window.height() - zr::NSMidY(handle)));
    };
    QTest::mousePress(window.windowHandle(), Qt::LeftButton, {}, at(0));
    QTest::mouseEvent(QTest::MouseMove, window.windowHandle(), Qt::LeftButton, {}, at(50), -1);
    QTest::mouseRelease(window.windowHandle(), Qt::LeftButton, {}, at(50));

    // The host's own widgets work as ever.
    int presses = 0;
    QObject::connect(button, &QPushButton::clicked, [&] { ++presses; });
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                      button->mapTo(&window, button->rect().center()));
    field->setFocus();
    for (const char key : {'t', 'y', 'p', 'e', 'd'}) QTest::keyClick(window.windowHandle(), key);
    std::printf("presses: %d, text: %s\n", presses, qPrintable(field->text()));

    window.setFixedSize(576, 240);
    QTest::qWait(0);
    print("slider", slider->convertRect_toView(slider->bounds(), nullptr));
    print("button", anchor->convertRect_toView(anchor->bounds(), nullptr));
    window.close();
    std::printf("windows: %zu\n", zr::NSApplication::sharedApplication().windows().size());
}
