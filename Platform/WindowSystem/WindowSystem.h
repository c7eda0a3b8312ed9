#pragma once

#include <Base/Colour.h>
#include <Base/Font.h>
#include <Base/Geometry.h>
#include <WindowSystem/Canvas.h>
#include <WindowSystem/Views.h>

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What a window system must offer. An adaptor implements these interfaces and hands the whole to install().
namespace zr::port {

class Graphics {
public:
    virtual ~Graphics() = default;
    virtual std::shared_ptr<Bitmap> loadBitmap(const std::string& path) = 0; // null when it cannot be read
    virtual std::unique_ptr<BitmapCanvas> makeBitmap(CGSize size, double scale) = 0; // points; never empty
    virtual TextSize measure(std::string_view line, const FontDescription& font) = 0;
};

// Points, from the top left of the primary screen.
struct Screen {
    CGRect frame;
    CGRect visibleFrame; // without the desktop's own bars
};

// Makes peers. A view's peer is made as a child of its superview's.
class PeerFactory {
public:
    virtual ~PeerFactory() = default;
    virtual std::unique_ptr<WindowPeer> makeWindow(WindowClient& client, CGSize contentSize,
                                                   WindowStyle style) = 0;
    virtual std::unique_ptr<ViewPeer> makeContentView(WindowPeer& window, ViewClient& client) = 0;
    virtual std::unique_ptr<ViewPeer> makeView(ViewPeer& parent, ViewClient& client) = 0;
    virtual std::unique_ptr<LabelPeer> makeLabel(ViewPeer& parent, ViewClient& client) = 0;
    // Of many lines, with a bar to scroll it.
    virtual std::unique_ptr<LabelPeer> makeScrollingText(ViewPeer& parent, ViewClient& client) = 0;
    // A bar, or something round.
    virtual std::unique_ptr<ProgressPeer> makeProgress(ViewPeer& parent, ViewClient& client, bool spinning) = 0;
    virtual std::unique_ptr<TextFieldPeer> makeTextField(ViewPeer& parent, ViewClient& client,
                                                         TextFieldClient& field) = 0;
    virtual std::unique_ptr<ButtonPeer> makeButton(ViewPeer& parent, ViewClient& client,
                                                   ButtonClient& button) = 0;
    virtual std::unique_ptr<TablePeer> makeTable(ViewPeer& parent, ViewClient& client, TableClient& table) = 0;
    virtual std::unique_ptr<TableHeaderPeer> makeTableHeader(ViewPeer& parent, ViewClient& client,
                                                             TableHeaderClient& header) = 0;
};

// While it lives, the program waits for input in the middle of handling an event. Input for our views comes to
// the window's client as always; what is meant for anything else is held back, and handed out when the loop is
// destroyed.
class TrackingLoop {
public:
    virtual ~TrackingLoop() = default;
    // Runs the window system, with timers, queues and drawing, until wake(). False when it ended for another
    // reason, and nothing more is to come. May be nested.
    virtual bool wait() = 0;
    virtual void wake() = 0; // every wait that is under way
    // Whether input for others is held back, as it is at first.
    virtual void holdBack(bool holds) = 0;
};

struct OpenPanel {
    std::string prompt{}; // what the button that chooses says
    std::string folder{}; // that is shown first; empty: the one that was shown last
    bool files = true;    // may be chosen,
    bool folders = false;
    bool several = false;
};

class OpenPanelClient {
public:
    virtual ~OpenPanelClient() = default;
    // Once. Absolute paths in the order in which they are shown; none: it was cancelled, or its window hidden.
    virtual void peerChose(const std::vector<std::string>& paths) = 0;
};

// Goes from the screen when it is destroyed.
class OpenPanelPeer {
public:
    virtual ~OpenPanelPeer() = default;
};

class WindowSystem : public Graphics, public PeerFactory {
public:
    virtual Appearance appearance() const = 0;
    virtual void setAppearance(std::optional<Appearance> appearance) = 0; // nothing: follow the desktop
    virtual std::vector<Screen> screens() const = 0;                      // the primary one first; may be none
    virtual double screenScale() const = 0; // device pixels for a point, the largest of all screens
    virtual void run() = 0;                 // until stop()
    virtual void stop() = 0;
    virtual std::unique_ptr<TrackingLoop> beginTracking() = 0;
    // In front of the window, which gets no input meanwhile, or of all windows. Returns at once.
    virtual std::unique_ptr<OpenPanelPeer> showOpenPanel(const OpenPanel& panel, WindowPeer* over,
                                                         OpenPanelClient& client) = 0;
};

// The portable side, as adaptors see it.
class ApplicationClient {
public:
    virtual ~ApplicationClient() = default;
    virtual void appearanceChanged() = 0;
    // Closes all windows and forgets them, while the toolkit still lives.
    virtual void willEnd() = 0;
};

// Makes the window system the one that views, windows and the application object of this process use, with a
// new application object. Ends with uninstall(). At most one at a time.
ApplicationClient& install(WindowSystem& windowSystem);
void uninstall();

} // namespace zr::port
