// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSApplication.h>
#include <Base/Compiler.h>
#include <Foundation/NSString.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace zr {

class NSButton;
class NSView;
class NSWindow;

enum NSAlertStyle : unsigned {
    NSAlertStyleWarning = 0,
    NSAlertStyleInformational = 1,
    NSAlertStyleCritical = 2
};

// The responses of the first three buttons; each further one is one more.
enum : int {
    NSAlertFirstButtonReturn = 1000,
    NSAlertSecondButtonReturn = 1001,
    NSAlertThirdButtonReturn = 1002
};

// A question with any number of buttons. The first one stands at the trailing end and is pressed by Return; one
// whose title is the application's "Cancel", or whose key is Escape, is pressed by both Escape and closing the
// alert. A text too tall for
// the screen scrolls. May be run again. Main thread only.
class ZR_EXPORT NSAlert : public NSObject {
public:
    ZR_CLASS(NSAlert, NSObject)
    NSAlert();
    ~NSAlert() override;

    NSAlertStyle alertStyle() const { return alertStyle_; }
    void setAlertStyle(NSAlertStyle style) { alertStyle_ = style; } // warning at first
    const std::string& messageText() const { return messageText_; } // bold
    void setMessageText(const std::string& text) { messageText_ = text; }
    const std::string& informativeText() const { return informativeText_; } // small, below; "" takes no room
    void setInformativeText(const std::string& text) { informativeText_ = text; }
    // Shown above the buttons, at its own size.
    const std::shared_ptr<NSView>& accessoryView() const { return accessoryView_; }
    void setAccessoryView(const std::shared_ptr<NSView>& view) { accessoryView_ = view; }

    // In the order in which they were added; their tags are their responses, and their keys can be changed.
    const std::vector<std::shared_ptr<NSButton>>& buttons() const { return buttons_; }
    std::shared_ptr<NSButton> addButtonWithTitle(const std::string& title);

    // Shows the alert until a button is pressed, and answers that one's response. Without buttons there is an
    // "OK", which is none of `buttons`. NSModalResponseAbort when the application ends meanwhile.
    int runModal();
    // Made when it is first asked for, or run.
    NSWindow& window();

private:
    class Closing;
    std::vector<std::shared_ptr<NSButton>> shownButtons(); // an "OK" where there are none
    void layOut();
    void pressed(NSObject* sender);

    NSAlertStyle alertStyle_ = NSAlertStyleWarning;
    std::string messageText_;
    std::string informativeText_;
    std::shared_ptr<NSView> accessoryView_;
    std::vector<std::shared_ptr<NSButton>> buttons_;
    std::shared_ptr<NSWindow> window_;
    std::shared_ptr<Closing> closing_;
    bool answered_ = false;
};

enum NSAlertPanelResponse : int {
    NSAlertErrorReturn = -2,
    NSAlertOtherReturn = -1,
    NSAlertAlternateReturn = 0,
    NSAlertDefaultReturn = 1
};

// The alert in one call, of which one button is the default one; nil for one of the others: no such button.
ZR_EXPORT int runAlertPanel(const std::string& title, const std::string& message,
                            const std::optional<std::string>& defaultButton,
                            const std::optional<std::string>& alternateButton,
                            const std::optional<std::string>& otherButton);

template <class... Arguments>
int NSRunAlertPanel(const std::string& title, std::string_view messageFormat,
                    const std::optional<std::string>& defaultButton,
                    const std::optional<std::string>& alternateButton,
                    const std::optional<std::string>& otherButton, const Arguments&... arguments) {
    return runAlertPanel(title, stringWithFormat(messageFormat, arguments...), defaultButton, alternateButton,
                         otherButton);
}

} // namespace zr
