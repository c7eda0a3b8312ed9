// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>
#include <ZRUIKit/MASPreferencesWindowController.h>

#include <functional>
#include <memory>
#include <string>

namespace trimstudio {

// Says where trimmed recordings are saved, over the buttons that change it. As wide as its texts at least.
class GeneralView : public zr::NSView {
public:
    ZR_CLASS(GeneralView, zr::NSView)
    bool init() override; // as small as it can be
    void layout() override;

    void setFolder(const std::string& text); // shortened in the middle where it is too long

    const std::shared_ptr<zr::NSTextField>& folderLabel() const { return folderLabel_; }
    const std::shared_ptr<zr::NSButton>& chooseButton() const { return chooseButton_; }
    const std::shared_ptr<zr::NSButton>& recordingsButton() const { return recordingsButton_; }

private:
    std::string folder_;
    std::shared_ptr<zr::NSTextField> titleLabel_, folderLabel_;
    std::shared_ptr<zr::NSButton> chooseButton_, recordingsButton_;
};

// The pane of the preferences that is about saving. Main thread only.
class GeneralViewController : public zr::NSViewController, public zr::MASPreferencesViewController {
public:
    ZR_CLASS(GeneralViewController, zr::NSViewController)

    void loadView() override;
    std::string identifier() const override { return "GeneralViewController"; }
    std::shared_ptr<zr::NSImage> toolbarItemImage() const override;
    std::string toolbarItemLabel() const override;
    void viewWillAppear() override { showFolder(); }
    std::optional<zr::NSView*> initialKeyView() override { return view_->chooseButton().get(); }

    // The buttons' actions.
    void chooseFolder(zr::NSObject* sender); // asks for one over the window
    void useRecordingsFolder(zr::NSObject* sender);

    // When another folder is shown.
    void setDidChange(std::function<void()> didChange) { didChange_ = std::move(didChange); }

private:
    void showFolder();

    std::shared_ptr<GeneralView> view_;
    std::function<void()> didChange_;
};

} // namespace trimstudio
