// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Colour.h>
#include <Base/Compiler.h>
#include <Base/Event.h>
#include <Base/Geometry.h>

#include <filesystem>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// A window system without a screen: time is virtual, drawing is recorded as text, the user is played by the
// program. Nothing in it ever blocks. Made for tests; main thread only unless it says otherwise.
namespace zr::headless {

class System;
class View;

// A window, seen from outside. Points are in window coordinates: from the lower left of the content, y up.
class ZR_EXPORT Window {
public:
    virtual ~Window() = default;

    virtual const std::string& title() const = 0;
    virtual Size contentSize() const = 0;
    virtual bool isVisible() const = 0;

    // What the user does. Each ends with a display cycle, as an event does on a screen. Answers whether the
    // window took it.
    bool mouseDown(Point point, std::uint32_t modifierFlags = 0, int clickCount = 1);
    bool mouseDragged(Point point, std::uint32_t modifierFlags = 0);
    bool mouseUp(Point point, std::uint32_t modifierFlags = 0, int clickCount = 1);
    bool scrollWheel(Point point, double deltaX, double deltaY);
    bool keyDown(std::uint16_t keyCode, const std::string& characters = {}, std::uint32_t modifierFlags = 0);
    // A key down for each character, to whoever has the keyboard.
    void type(std::string_view text);
    bool keyUp(std::uint16_t keyCode, const std::string& characters = {}, std::uint32_t modifierFlags = 0);
    virtual bool send(InputEvent eventInWindowCoordinates) = 0;
    virtual void resizeByUser(Size contentSize) = 0;           // within the limits
    virtual void moveByUser(Point contentOrigin) = 0;          // from the top left of the screen
    virtual std::vector<std::string> toolbarItems() const = 0; // their labels
    virtual bool clickToolbarItem(std::string_view label) = 0; // false where there is none that can be clicked
    virtual std::string selectedToolbarItem() const = 0;       // its label; empty for none
    // Of the menu bar, or of the menu that these titles lead to, as it is when it is opened now: "Close
    // [Command-w]", "Paste (disabled)", "Recent >", "<separator>".
    virtual std::vector<std::string> menuItems(const std::vector<std::string>& menu = {}) const = 0;
    virtual bool clickMenuItem(const std::vector<std::string>& titles) = 0; // false where it cannot be chosen
    virtual bool closeByUser() = 0;                                         // false when it did not want to
    virtual void setKey(bool key) = 0;
    virtual void blockByModalDialog() = 0; // opened by somebody else
    // The real window is taken away, as when a host deletes it.
    virtual void destroy() = 0;

    // Of the view of that name: what it drew last, how often it has drawn, where it stands (y-down, in the
    // content).
    const std::vector<std::string>& drawing(std::string_view viewName) const;
    int drawCount(std::string_view viewName) const;
    std::optional<Rect> frameInContent(std::string_view viewName) const;
    std::string labelText(std::string_view viewName) const; // or of a field or button
    // Of a field: "editable", "selectable", "bezel", "background", "ring", "all selected"; of a button
    // "default"; of a label "scrolls"; of a progress indicator "running".
    std::vector<std::string> traits(std::string_view viewName) const;
    double shownProgress(std::string_view viewName) const; // 0 to 1; -1 while it is not known
    // Of a table: the texts of the rows that are seen, in part too; which rows are marked.
    std::vector<std::vector<std::string>> visibleRows(std::string_view viewName) const;
    std::vector<std::size_t> selectedRows(std::string_view viewName) const;
    // False where the row is not seen.
    bool clickRow(std::string_view viewName, std::size_t row, std::uint32_t modifierFlags = 0);
    // Of a table's header.
    std::vector<std::string> columnTitles(std::string_view viewName) const;
    std::vector<double> columnWidths(std::string_view viewName) const; // of a table, too
    void resizeColumn(std::string_view viewName, std::size_t column, double width);
    virtual bool isSheet() const = 0;           // over another window at the moment
    std::vector<std::string> viewNames() const; // from back to front, superviews first

protected:
    virtual View* content() const = 0;            // null while there is none
    View& named(std::string_view viewName) const; // throws std::out_of_range
};

// A dialog in which the user chooses files or folders, seen from outside.
class OpenPanel {
public:
    virtual ~OpenPanel() = default;

    virtual const std::string& prompt() const = 0;
    virtual const std::string& folder() const = 0; // that is shown first; empty: the one that was shown last
    virtual bool choosesFiles() const = 0;
    virtual bool choosesFolders() const = 0;
    virtual bool choosesSeveral() const = 0;
    virtual Window* window() const = 0; // that it is over; null: all of them
    // The panel goes. Throws std::logic_error when more is chosen than may be, or nothing. The file system is
    // not looked at.
    virtual void choose(const std::vector<std::string>& paths) = 0;
    virtual void cancel() = 0;
};

struct Options {
    double scale = 1;
    Size screenSize = {1280, 800};
    Appearance appearance = Appearance::light;
    std::vector<std::string> preferredLanguages = {"en"};
    std::filesystem::path mainBundle = "/nonexistent";
    std::filesystem::path userDefaults{}; // file of the user defaults; empty: none, they are kept in memory
    // Background blocks run on a thread of their own, instead of waiting to be stepped.
    bool workerThread = false;
    bool menusInWindows = true; // or one menu bar for all
};

// Installed while it lives; at most one at a time, whatever the adaptor: beside another it throws
// std::logic_error.
class ZR_EXPORT Platform {
public:
    explicit Platform(Options options = {});
    ~Platform();
    Platform(const Platform&) = delete;
    Platform& operator=(const Platform&) = delete;

    // Windows that are realised, in the order in which they were.
    std::vector<Window*> windows() const;

    std::vector<OpenPanel*> openPanels() const; // that are shown, in the order in which they were

    // Of the menu bar that is there for all windows, as Window's.
    std::vector<std::string> mainMenuItems(const std::vector<std::string>& menu = {}) const;
    bool clickMainMenuItem(const std::vector<std::string>& titles);

    double now() const; // seconds, since an arbitrary moment
    // Lets time pass: blocks of the main queue that become due run, each at its time. Then displays.
    void advance(double seconds);
    // Runs what is due on the main queue, then displays. Answers how many blocks have run.
    std::size_t runMainQueue();
    // Runs the background blocks that wait now; with a worker thread, waits until it is done.
    std::size_t runGlobalQueue();
    // Both in turns until nothing is due.
    void runUntilIdle();
    std::size_t waitingForGlobalQueue() const;

    // What happens while the program waits for events in the middle of one: each wait plays the next step,
    // which feeds events or does anything else. A wait without a step lets due blocks run, and time pass to the
    // next one.
    void script(std::function<void()> step);
    // Whether a wait has found neither a step nor a block since this was last asked; such a wait gives up.
    bool starved();

    // Layout and drawing of everything that asked for it.
    void display();
    // The desktop changes between light and dark.
    void setDesktopAppearance(Appearance appearance);

private:
    std::unique_ptr<System> system_;
};

} // namespace zr::headless
