#pragma once

#include "InputBlock.h"
#include "QtMenuBar.h"
#include "QtViews.h"

#include <QToolBar>
#include <QWidget>

#include <memory>

namespace zr::qt {

// The top-level widget of a window; the content view's widget fills it.
class WindowWidget final : public QWidget {
public:
    WindowWidget(port::WindowClient& windowClient, port::WindowStyle style);
    ~WindowWidget() override;

    void scheduleUpdate();

    port::WindowClient* client; // null once the peer is gone
    const bool closable;        // by the user
    std::shared_ptr<WindowLink> link = std::make_shared<WindowLink>();
    void placeSheet(); // where it belongs over its parent
    int menuHeight() const { return menuBar ? menuBar->height() : 0; }
    int barHeight() const { return menuHeight() + (bar ? bar->height() : 0); }
    void placeContent();
    MenuBar* menuBar = nullptr; // above the toolbar
    QToolBar* bar = nullptr;    // above the content
    QPointer<QWidget> sheetParent;
    std::unique_ptr<InputBlock> parentBlock;
    QPointer<ViewWidget> contentWidget;
    QPointer<QWidget> edge; // of a sheet

    bool eventFilter(QObject* watched, QEvent* event) override;

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void changeEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override; // what nobody took
};

// What any window peer of this adaptor does.
struct TopLevelPeer {
    virtual ~TopLevelPeer() = default;
    virtual std::unique_ptr<port::ViewPeer> makeContent(port::ViewClient& client) = 0;
    virtual QWidget* topLevel() const = 0; // null once it is gone
};

class WindowPeer final : public port::WindowPeer, public TopLevelPeer {
public:
    WindowPeer(port::WindowClient& client, CGSize contentSize, port::WindowStyle style);
    ~WindowPeer() override;

    void show(bool activate) override;
    void showModal() override;
    void showAsSheet(port::WindowPeer& parent) override;
    void endSheet() override;
    void hide() override;
    void close() override;
    void setTitle(const std::string& title) override;
    CGSize setContentSize(CGSize size) override;
    void setContentLimits(CGSize minimum, CGSize maximum) override;
    void scheduleUpdate() override;
    CGPoint contentOriginOnScreen() const override;
    CGPoint frameTopLeft() const override;
    void setFrameTopLeft(CGPoint topLeft) override;
    double topInset() const override;
    void setToolbar(const std::vector<port::ToolbarItem>& items, port::ToolbarClient* client) override;
    void selectToolbarItem(std::optional<std::size_t> index) override;
    void setMenuBar(const std::vector<port::MenuItem>& items) override;
    double backingScale() const override;

    std::unique_ptr<port::ViewPeer> makeContent(port::ViewClient& client) override;
    QWidget* topLevel() const override { return widget_; }

private:
    template <class Bar>
    void replace(Bar*& place, Bar* bar);       // the content keeps its size
    void limit(QSize smallest, QSize largest); // as wanted, but so that these sizes are allowed

    QPointer<WindowWidget> widget_;
    QPointer<QWidget> behind_; // which was in front before this one was shown as modal
    CGSize minimum_{}, maximum_{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX}; // of the content
    port::WindowStyle style_;
};

} // namespace zr::qt
