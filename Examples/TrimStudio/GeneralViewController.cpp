// SPDX-License-Identifier: MIT
#include "GeneralViewController.h"
#include "SaveFolder.h"

#include <AppKit/NSImage.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSStringDrawing.h>
#include <Foundation/NSBundle.h>
#include <ZRUIKit/KitFoundation.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace trimstudio {

using namespace zr;

ZR_CLASS_TABLE(GeneralView)
ZR_CLASS_TABLE(GeneralViewController,
               .actions = {actionNamed<&GeneralViewController::chooseFolder>("chooseFolder:"),
                           actionNamed<&GeneralViewController::useRecordingsFolder>("useRecordingsFolder:")})

namespace {

constexpr double kMargin = 20;
constexpr double kSpacing = 8;
constexpr double kLine = 20;
constexpr double kButtonHeight = 28;
constexpr double kSmallestWidth = 420;
constexpr double kLabelPadding = 4;
constexpr double kButtonReserve = 20; // what styles put around a title beyond what is estimated

std::string shortenedInTheMiddle(const std::string& text, double width, const TextAttributes& attributes) {
    const auto fits = [&](const std::string& shown) {
        return sizeWithAttributes(shown, attributes).width <= width;
    };
    if (fits(text)) return text;
    std::vector<std::size_t> starts; // of the characters
    for (std::size_t i = 0; i < text.size(); ++i)
        if ((static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) starts.push_back(i);
    const auto keeping = [&](std::size_t count) {
        std::string shown = text.substr(0, starts[(count + 1) / 2]);
        shown += "…";
        if (count > 1) shown += text.substr(starts[starts.size() - count / 2]);
        return shown;
    };
    std::size_t fewest = 0, most = starts.empty() ? 0 : starts.size() - 1;
    while (fewest < most) {
        const std::size_t middle = (fewest + most + 1) / 2;
        if (fits(keeping(middle)))
            fewest = middle;
        else
            most = middle - 1;
    }
    return starts.empty() ? text : keeping(fewest);
}

} // namespace

bool GeneralView::init() {
    titleLabel_ = NSTextField::labelWithString(AppLocalizedString("Save trimmed recordings in:"));
    titleLabel_->setTextColor(NSColor::secondaryLabelColor());
    folderLabel_ = NSTextField::labelWithString("");
    folderLabel_->setIdentifier("folderLabel");
    chooseButton_ =
        NSButton::buttonWithTitle_target_action(AppLocalizedString("Choose…"), nullptr, "chooseFolder:");
    chooseButton_->setIdentifier("chooseButton");
    recordingsButton_ = NSButton::buttonWithTitle_target_action(AppLocalizedString("Use Recording’s Folder"),
                                                                nullptr, "useRecordingsFolder:");
    recordingsButton_->setIdentifier("recordingsButton");
    titleLabel_->sizeToFit();
    const double buttons = chooseButton_->frame().size.width + recordingsButton_->frame().size.width +
                           2 * kButtonReserve + kSpacing;
    const double width = std::max({kSmallestWidth, titleLabel_->frame().size.width, buttons});
    const double height = 2 * kLine + 2 * kSpacing + kButtonHeight;
    if (!initWithFrame({NSZeroPoint, {std::ceil(width) + 2 * kMargin, height + 2 * kMargin}})) return false;
    setAutoresizingMask(NSViewWidthSizable);
    for (const std::shared_ptr<NSView>& view :
         std::vector<std::shared_ptr<NSView>>{titleLabel_, folderLabel_, chooseButton_, recordingsButton_})
        addSubview(view);
    return true;
}

void GeneralView::layout() {
    const double width = std::max(0.0, bounds().size.width - 2 * kMargin);
    double top = bounds().size.height - kMargin - kLine;
    titleLabel_->setFrame({{kMargin, top}, {width, kLine}});
    top -= kLine;
    folderLabel_->setFrame({{kMargin, top}, {width, kLine}});
    folderLabel_->setStringValue(
        shortenedInTheMiddle(folder_, width - kLabelPadding,
                             {.font = folderLabel_->font(), .foregroundColor = NSColor::labelColor()}));
    double left = kMargin;
    for (const auto& button : {chooseButton_, recordingsButton_}) {
        button->sizeToFit();
        button->setFrameOrigin({left, kMargin});
        left += button->frame().size.width + kSpacing;
    }
}

void GeneralView::setFolder(const std::string& text) {
    folder_ = text;
    setNeedsLayout(true);
}

void GeneralViewController::loadView() {
    view_ = make<GeneralView>();
    view_->chooseButton()->setTarget(retained(this));
    view_->recordingsButton()->setTarget(retained(this));
    setView(view_);
}

std::shared_ptr<NSImage> GeneralViewController::toolbarItemImage() const {
    return NSBundle::mainBundle().imageForResource("General");
}

std::string GeneralViewController::toolbarItemLabel() const { return AppLocalizedString("General"); }

void GeneralViewController::showFolder() {
    const auto folder = saveFolder();
    // A button that is off must not keep the keyboard.
    auto* const window = view_->window();
    if (!folder && window && window->firstResponder() == view_->recordingsButton().get())
        window->makeFirstResponder(view_->chooseButton().get());
    view_->setFolder(folder ? folder->string() : AppLocalizedString("The folder of the recording"));
    view_->recordingsButton()->setEnabled(folder.has_value());
    if (didChange_) didChange_();
}

void GeneralViewController::chooseFolder(NSObject*) {
    const auto panel = NSOpenPanel::openPanel();
    panel->setPrompt(AppLocalizedString("Choose"));
    panel->setCanChooseFiles(false);
    panel->setCanChooseDirectories(true);
    if (const auto folder = saveFolder()) panel->setDirectoryURL(NSURL::fileURLWithPath(folder->native()));
    panel->beginSheetModalForWindow_completionHandler(
        view_->window(), [panel, weak = std::weak_ptr(retained(this))](int response) {
            const auto self = weak.lock();
            const auto chosen = panel->URL();
            if (!self || response != NSModalResponseOK || !chosen) return;
            setSaveFolder(chosen->path());
            self->showFolder();
        });
}

void GeneralViewController::useRecordingsFolder(NSObject*) {
    setSaveFolder(std::nullopt);
    showFolder();
}

} // namespace trimstudio
