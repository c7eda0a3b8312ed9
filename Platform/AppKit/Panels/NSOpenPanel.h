// SPDX-License-Identifier: MIT
#pragma once

#include <Base/Compiler.h>
#include <Foundation/NSObject.h>
#include <Foundation/NSURL.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zr {

class NSWindow;

namespace port {
class OpenPanelPeer;
}

enum : int { NSModalResponseCancel = 0, NSModalResponseOK = 1 };

// The window system's own dialog that lets the user choose files or folders that there are. May be shown again.
// Main thread only.
class ZR_EXPORT NSOpenPanel : public NSObject {
public:
    ZR_CLASS(NSOpenPanel, NSObject)
    NSOpenPanel();
    ~NSOpenPanel() override;

    static std::shared_ptr<NSOpenPanel> openPanel(); // a new one each time

    // What the button that chooses says; empty, as at first: "Open" in the application's words.
    const std::string& prompt() const { return prompt_; }
    void setPrompt(const std::string& prompt) { prompt_ = prompt; }
    bool canChooseFiles() const { return canChooseFiles_; } // true at first
    void setCanChooseFiles(bool can) { canChooseFiles_ = can; }
    // False at first. Where no folder is selected, the one that is shown is chosen.
    bool canChooseDirectories() const { return canChooseDirectories_; }
    void setCanChooseDirectories(bool can) { canChooseDirectories_ = can; }
    bool allowsMultipleSelection() const { return allowsMultipleSelection_; } // false at first
    void setAllowsMultipleSelection(bool allows) { allowsMultipleSelection_ = allows; }
    // The folder that is shown first; nothing, as at first: the one that was shown last.
    const std::optional<NSURL>& directoryURL() const { return directoryURL_; }
    void setDirectoryURL(const std::optional<NSURL>& url) { directoryURL_ = url; }

    // In front of all other windows, which get no input. NSModalResponseOK, or NSModalResponseCancel, also when
    // the application ends meanwhile.
    int runModal();
    // In front of the window, which alone gets no input, and answers at once. The handler gets the response
    // before the panel goes; it is cancelled when the window is hidden or closed. Until then the panel holds
    // itself. Over no visible window it runs as runModal does. Does nothing but to say so in the log,
    // and the handler never comes, while the panel is shown already or no window system is installed.
    void beginSheetModalForWindow_completionHandler(NSWindow* window, std::function<void(int)> handler);

    // What was chosen last, in the order in which it was shown; empty after Cancel.
    const std::vector<NSURL>& URLs() const { return urls_; }
    std::optional<NSURL> URL() const;

private:
    struct Client;

    bool canBeShownBy(std::string_view method) const; // else the log says why
    void show(NSWindow* window);
    void chose(const std::vector<std::string>& paths);

    std::unique_ptr<Client> client_;
    std::unique_ptr<port::OpenPanelPeer> peer_; // while it is shown
    std::shared_ptr<NSOpenPanel> self_;         // while it is a sheet
    std::function<void(int)> handler_;
    std::string prompt_;
    std::optional<NSURL> directoryURL_;
    std::vector<NSURL> urls_;
    bool canChooseFiles_ = true;
    bool canChooseDirectories_ = false;
    bool allowsMultipleSelection_ = false;
};

} // namespace zr
