// SPDX-License-Identifier: MIT
#include <AppKit/NSAlert.h>
#include <AppKit/NSBezierPath.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSColor.h>
#include <AppKit/NSScreen.h>
#include <AppKit/NSStringDrawing.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(NSAlert, .actions = {actionNamed<&NSAlert::pressed>("pressed:")})

namespace {

constexpr double kMargin = 20;
constexpr double kIconSize = 48;
constexpr double kIconGap = 16;
constexpr double kTextWidth = 340;
constexpr double kTextGap = 8;
constexpr double kSectionGap = 20;
constexpr double kButtonGap = 8;
constexpr double kLeastButtonWidth = 80;
constexpr double kLargestPartOfScreen = 0.8;

// What the alert is about, as a sign.
class AlertIcon : public NSView {
public:
    ZR_CLASS(AlertIcon, NSView)
    void drawRect(const NSRect&) override {
        const NSRect area = NSInsetRect(bounds(), 2, 2);
        if (style == NSAlertStyleInformational) {
            NSColor::colorWithDeviceRed_green_blue_alpha(0.20, 0.47, 0.85, 1).set();
            NSBezierPath::bezierPathWithOvalInRect(area).fill();
        } else {
            if (style == NSAlertStyleCritical)
                NSColor::systemRedColor().set();
            else
                NSColor::colorWithDeviceRed_green_blue_alpha(0.93, 0.62, 0.09, 1).set();
            NSBezierPath triangle;
            triangle.moveToPoint({NSMinX(area), NSMinY(area) + 2});
            triangle.lineToPoint({NSMaxX(area), NSMinY(area) + 2});
            triangle.lineToPoint({NSMidX(area), NSMaxY(area) - 2});
            triangle.closePath();
            triangle.fill();
        }
        // An exclamation mark, or an i, which has its dot above.
        const bool dotBelow = style != NSAlertStyleInformational;
        NSColor::colorWithDeviceRed_green_blue_alpha(1, 1, 1, 1).set();
        const double x = NSMidX(area);
        NSBezierPath::bezierPathWithRoundedRect_xRadius_yRadius({{x - 2, dotBelow ? 16.0 : 12.0}, {4, 14}}, 2,
                                                                2)
            .fill();
        NSBezierPath::bezierPathWithOvalInRect({{x - 2.5, dotBelow ? 8.0 : 29.0}, {5, 5}}).fill();
    }
    NSAlertStyle style = NSAlertStyleWarning;
};

ZR_CLASS_TABLE(AlertIcon)

// Escape is for the button that cancels also where that one has Return.
class AlertContent : public NSView {
public:
    ZR_CLASS(AlertContent, NSView)
    bool performKeyEquivalent(const NSEvent& event) override {
        if (NSView::performKeyEquivalent(event)) return true;
        const auto button = escape.lock();
        if (!button || event.charactersIgnoringModifiers() != kEscapeCharacter) return false;
        button->performClick(nullptr);
        return true;
    }
    std::weak_ptr<NSButton> escape;
};

ZR_CLASS_TABLE(AlertContent)

std::string localized(const char* title) {
    return NSBundle::mainBundle().localizedStringForKey_value_table(title, "", std::nullopt);
}

// A label whose text has been broken into lines that fit; its height is theirs.
std::shared_ptr<NSTextField> paragraph(const std::string& text, const NSFont& font, double width) {
    const TextAttributes attributes{font, NSColor::labelColor()};
    const auto lines = linesOfText(text, width - 4, attributes);
    std::string broken;
    for (const auto& line : lines) {
        if (!broken.empty()) broken += '\n';
        broken += line;
    }
    auto label = NSTextField::wrappingLabelWithString(broken);
    label->setFont(font);
    const double lineHeight = std::ceil(sizeWithAttributes("X", attributes).height);
    label->setFrameSize({width, lineHeight * static_cast<double>(std::max<std::size_t>(1, lines.size())) + 2});
    return label;
}

// Buttons fill rows from the trailing end; more of them than fit are on the next row.
class ButtonRows {
public:
    ButtonRows(const std::vector<std::shared_ptr<NSButton>>& buttons, double width) {
        double right = width - kMargin;
        for (const auto& button : buttons) {
            button->sizeToFit();
            const double own =
                std::min(std::max(kLeastButtonWidth, button->frame().size.width), width - 2 * kMargin);
            button->setFrameSize({own, button->frame().size.height});
            rowHeight_ = std::max(rowHeight_, button->frame().size.height);
            if (right - own < kMargin && right < width - kMargin) {
                right = width - kMargin;
                ++lastRow_;
            }
            places_.push_back({button, lastRow_, right});
            right -= own + kButtonGap;
        }
    }
    double height() const { return double(lastRow_ + 1) * rowHeight_ + double(lastRow_) * kButtonGap; }
    void addTo(NSView& content) const {
        for (const auto& [button, row, right] : places_) {
            const double y = kMargin + height() - double(row + 1) * rowHeight_ - double(row) * kButtonGap;
            button->setFrameOrigin({right - button->frame().size.width, y});
            content.addSubview(button);
        }
    }

private:
    struct Place {
        std::shared_ptr<NSButton> button;
        std::size_t row = 0;
        double right = 0;
    };
    std::vector<Place> places_;
    std::size_t lastRow_ = 0;
    double rowHeight_ = 0;
};

// The message, and what it means below. Texts that do not fit on the screen share the room, and scroll.
class Texts {
public:
    Texts(const std::string& message, const std::string& information, double width, double below)
        : message_(paragraph(message, NSFont::boldSystemFontOfSize(0), width)) {
        if (!information.empty()) information_ = paragraph(information, NSFont::systemFontOfSize(11), width);
        const double screen = NSScreen::mainScreen().frame().size.height;
        const double room = std::max(60.0, screen * kLargestPartOfScreen - below);
        limit(*message_, information_ ? room / 2 : room);
        if (information_) limit(*information_, room - message_->frame().size.height - kTextGap);
    }
    double height() const {
        const double own = message_->frame().size.height;
        return information_ ? own + (kTextGap + information_->frame().size.height) : own;
    }
    void addTo(NSView& content, NSPoint topLeft) const {
        place(content, *message_, topLeft, "alertMessage");
        topLeft.y -= message_->frame().size.height;
        if (information_) place(content, *information_, {topLeft.x, topLeft.y - kTextGap}, "alertInformation");
    }

private:
    static void limit(NSTextField& label, double height) {
        if (label.frame().size.height <= height) return;
        label.setFrameSize({label.frame().size.width, std::floor(height)});
        label.setScrolls(true);
    }
    static void place(NSView& content, NSTextField& label, NSPoint topLeft, const char* name) {
        label.setFrameOrigin({topLeft.x, topLeft.y - label.frame().size.height});
        label.setIdentifier(name);
        content.addSubview(retained(&label));
    }

    std::shared_ptr<NSTextField> message_, information_; // null for none
};

} // namespace

// Closing the alert by its frame presses the button that Escape presses, and nothing else.
class NSAlert::Closing : public NSWindowDelegate {
public:
    std::optional<bool> windowShouldClose(NSWindow&) override {
        if (const auto button = escape.lock()) button->performClick(nullptr);
        return false;
    }
    std::weak_ptr<NSButton> escape;
};

NSAlert::NSAlert() = default;
NSAlert::~NSAlert() = default;

std::shared_ptr<NSButton> NSAlert::addButtonWithTitle(const std::string& title) {
    auto button = NSButton::buttonWithTitle_target_action(title, nullptr, "pressed:");
    button->setTarget(shared_from_this());
    button->setTag(NSAlertFirstButtonReturn + static_cast<long>(buttons_.size()));
    const auto hasEscape = [](const auto& each) { return each->keyEquivalent() == kEscapeCharacter; };
    if (buttons_.empty()) {
        button->setKeyEquivalent(kReturnCharacter);
    } else if (title == localized("Cancel") && std::ranges::none_of(buttons_, hasEscape)) {
        button->setKeyEquivalent(kEscapeCharacter);
    } else if (title == localized("Don't Save")) {
        button->setKeyEquivalent("d");
        button->setKeyEquivalentModifierMask(NSEventModifierFlagCommand);
    }
    buttons_.push_back(button);
    return button;
}

void NSAlert::pressed(NSObject* sender) {
    // What was pressed twice has answered once.
    if (std::exchange(answered_, true)) return;
    if (const auto* button = dynamic_cast<NSButton*>(sender))
        NSApplication::sharedApplication().stopModalWithCode(static_cast<int>(button->tag()));
}

NSWindow& NSAlert::window() {
    if (!window_) {
        window_ =
            make<NSWindow>(&NSWindow::initWithContentRect_styleMask_backing_defer, NSRect{},
                           NSWindowStyleMaskTitled | NSWindowStyleMaskClosable, NSBackingStoreBuffered, false);
        closing_ = std::make_shared<Closing>();
        window_->setDelegate(closing_);
        window_->setAuxiliary(true);
    }
    return *window_;
}

std::vector<std::shared_ptr<NSButton>> NSAlert::shownButtons() {
    if (!buttons_.empty()) return buttons_;
    const auto ok = NSButton::buttonWithTitle_target_action(localized("OK"), nullptr, "pressed:");
    ok->setTarget(shared_from_this());
    ok->setTag(NSAlertFirstButtonReturn);
    ok->setKeyEquivalent(kReturnCharacter);
    return {ok};
}

void NSAlert::layOut() {
    const auto shown = shownButtons();
    const auto hasEscape = [](const auto& button) { return button->keyEquivalent() == kEscapeCharacter; };
    auto cancel = std::ranges::find_if(shown, hasEscape);
    if (cancel == shown.end()) cancel = std::ranges::find(shown, localized("Cancel"), &NSButton::title);
    closing_->escape = cancel == shown.end() ? nullptr : *cancel;

    double textWidth = kTextWidth;
    if (accessoryView_) textWidth = std::max(textWidth, accessoryView_->frame().size.width);
    const double width = kMargin + kIconSize + kIconGap + textWidth + kMargin;
    const ButtonRows rows(shown, width);
    double below = rows.height() + kSectionGap + 2 * kMargin;
    if (accessoryView_) below += accessoryView_->frame().size.height + kSectionGap;
    const Texts texts(messageText_, informativeText_, textWidth, below);

    const double height = below + std::max(texts.height(), kIconSize);
    const auto content = make<AlertContent>(NSRect{NSZeroPoint, {width, height}});
    content->escape = closing_->escape;
    const auto icon = make<AlertIcon>(NSRect{{kMargin, height - kMargin - kIconSize}, {kIconSize, kIconSize}});
    icon->style = alertStyle_;
    icon->setIdentifier("alertIcon");
    content->addSubview(icon);
    const double left = kMargin + kIconSize + kIconGap;
    texts.addTo(*content, {left, height - kMargin});
    if (accessoryView_) {
        accessoryView_->setFrameOrigin({left, kMargin + rows.height() + kSectionGap});
        content->addSubview(accessoryView_);
    }
    rows.addTo(*content);
    window_->setContentSize({width, height});
    window_->setContentView(content);
}

int NSAlert::runModal() {
    const auto held = retained(this);
    const auto window = retained(&this->window());
    layOut();
    answered_ = false;
    const int response = NSApplication::sharedApplication().runModalForWindow(*window);
    window->close();
    return response;
}

int runAlertPanel(const std::string& title, const std::string& message,
                  const std::optional<std::string>& defaultButton,
                  const std::optional<std::string>& alternateButton,
                  const std::optional<std::string>& otherButton) {
    const auto alert = make<NSAlert>();
    alert->setMessageText(title);
    alert->setInformativeText(message);
    const std::string ok = localized("OK");
    std::vector<int> responses = {NSAlertDefaultReturn};
    alert->addButtonWithTitle(defaultButton.value_or("").empty() ? ok : *defaultButton);
    const auto add = [&](const std::optional<std::string>& button, int response) {
        if (!button) return;
        alert->addButtonWithTitle(*button);
        responses.push_back(response);
    };
    add(alternateButton, NSAlertAlternateReturn);
    add(otherButton, NSAlertOtherReturn);
    const int index = alert->runModal() - NSAlertFirstButtonReturn;
    return index >= 0 && index < int(responses.size()) ? responses[std::size_t(index)] : NSAlertErrorReturn;
}

} // namespace zr
