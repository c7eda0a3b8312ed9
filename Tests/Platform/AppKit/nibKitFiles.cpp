// SPDX-License-Identifier: MIT
#include "NibTest.h"

#include <AppKit/NSApplication.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSWindowController.h>
#include <Foundation/NSBundle.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>

namespace zr::test {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// Has the outlets and the action that the progress sheet's file connects.
class SheetOwner : public NSWindowController {
public:
    ZR_CLASS(SheetOwner, NSWindowController)
    void setTip(const std::shared_ptr<NSTextField>& value) { tip = value; }
    void setProgress(const std::shared_ptr<NSTextField>& value) { progress = value; }
    void setBar(const std::shared_ptr<NSView>& value) { bar = value; }
    void setCancel(const std::shared_ptr<NSButton>& value) { cancel = value; }
    void awakeFromNib() override { ++awakenings; }
    void cancelDown(NSObject* sender) { cancelled.push_back(sender); }
    bool isUntouched() const {
        return !tip && !progress && !bar && !cancel && !isWindowLoaded() && !awakenings;
    }

    std::shared_ptr<NSTextField> tip, progress;
    std::shared_ptr<NSView> bar;
    std::shared_ptr<NSButton> cancel;
    int awakenings = 0;
    std::vector<NSObject*> cancelled;
};
ZR_CLASS_TABLE(SheetOwner, .actions = {actionNamed<&SheetOwner::cancelDown>("cancelDown:")},
               .outlets = {outletNamed<&SheetOwner::setTip>("lblPrgTip"),
                           outletNamed<&SheetOwner::setProgress>("lblSaveProgress"),
                           outletNamed<&SheetOwner::setBar>("prgSaving"),
                           outletNamed<&SheetOwner::setCancel>("btnCancel")})

class NibKitFiles : public NibTest {
protected:
    static std::string progressSheet() {
        const auto path =
            NSBundle::bundleForClass(NSWindow::classTable()).pathForInterfaceFile("ZRLoadingWndCtl");
        std::ifstream stream(path.value(), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
};

TEST_F(NibKitFiles, TheProgressSheetHasEveryOutletAndActionInItsPlace) {
    const auto owner = make<SheetOwner>(&SheetOwner::initWithWindowNibName, std::string("ZRLoadingWndCtl"));
    const auto window = logged([&] { return owner->window(); });
    EXPECT_THAT(log_, IsEmpty());
    ASSERT_TRUE(window && owner->tip && owner->progress && owner->bar && owner->cancel);
    EXPECT_EQ(owner->awakenings, 1);
    EXPECT_EQ(window->title(), "Window");
    EXPECT_EQ(window->styleMask(), unsigned{NSWindowStyleMaskTitled});
    EXPECT_EQ(window->contentSize(), NSMakeSize(480, 160));
    EXPECT_FALSE(window->isVisible());
    EXPECT_THAT(window->contentView()->subviews(),
                ElementsAre(owner->tip, owner->bar, owner->progress, owner->cancel));
    EXPECT_EQ(owner->tip->frame(), NSMakeRect(20, 120, 440, 20));
    EXPECT_EQ(owner->bar->frame(), NSMakeRect(20, 92, 440, 20));
    EXPECT_EQ(owner->progress->frame(), NSMakeRect(20, 64, 440, 20));
    EXPECT_EQ(owner->cancel->frame(), NSMakeRect(348, 20, 112, 32));
    for (const NSView* line : {static_cast<NSView*>(owner->tip.get()), owner->bar.get(),
                               static_cast<NSView*>(owner->progress.get())})
        EXPECT_EQ(line->autoresizingMask(), unsigned{NSViewWidthSizable} + unsigned{NSViewMinYMargin});
    EXPECT_EQ(owner->cancel->autoresizingMask(), unsigned{NSViewMinXMargin} + unsigned{NSViewMaxYMargin});
    EXPECT_EQ(owner->tip->font(), NSFont::systemFontOfSize(13));
    EXPECT_EQ(owner->tip->textColor(), NSColor::labelColor());
    EXPECT_EQ(owner->progress->font(), NSFont::systemFontOfSize(11));
    EXPECT_EQ(owner->progress->textColor(), NSColor::secondaryLabelColor());
    EXPECT_EQ(owner->cancel->title(), "Cancel");
    EXPECT_EQ(owner->cancel->keyEquivalent(), kEscapeCharacter);
    EXPECT_TRUE(owner->cancel->isEnabled());
    owner->cancel->performClick(nullptr);
    EXPECT_THAT(owner->cancelled, ElementsAre(owner->cancel.get()));
}

TEST_F(NibKitFiles, TheProgressSheetIsResizedAsItsMasksSay) {
    const auto owner = make<SheetOwner>(&SheetOwner::initWithWindowNibName, std::string("ZRLoadingWndCtl"));
    owner->window()->setContentSize({600, 200});
    EXPECT_EQ(owner->tip->frame(), NSMakeRect(20, 160, 560, 20));
    EXPECT_EQ(owner->bar->frame(), NSMakeRect(20, 132, 560, 20));
    EXPECT_EQ(owner->cancel->frame(), NSMakeRect(468, 20, 112, 32));
}

// Breaks files, the same way each time.
class Mutator {
public:
    explicit Mutator(std::string original) : original_(std::move(original)) { findParts(); }

    std::string bytes() {
        std::string text = original_;
        for (std::size_t n = 1 + below(4); n > 0; --n) {
            const std::size_t at = below(text.size());
            switch (below(4)) {
            case 0:
                text[at] = static_cast<char>(text[at] ^ (1 << below(8)));
                break;
            case 1:
                text[at] = static_cast<char>(below(256));
                break;
            case 2:
                text.erase(at, 1 + below(40));
                break;
            default:
                text.resize(at);
            }
            if (text.empty()) break;
        }
        return text;
    }
    std::string withoutElement() { return replaced(any(elements_), ""); }
    std::string elementTwice() {
        const Part part = any(elements_);
        return inserted(part.end, part);
    }
    std::string elementMoved() {
        const Part part = any(elements_), other = any(elements_);
        std::string text = inserted(other.end, part);
        // Within itself it stays there once more.
        text.erase(other.end <= part.begin ? part.begin + part.size() : part.begin, part.size());
        return text;
    }
    // An element within another, or within itself.
    std::string elementNested() {
        const Part part = any(elements_), other = any(elements_);
        return inserted(original_.find('>', other.begin) + 1, part);
    }
    std::string attributeChanged() {
        static const std::vector<std::string> values = {
            "",
            "YES",
            "NO",
            "-1",
            "-2",
            "-3",
            "1e308",
            "nan",
            "0",
            "bar",
            "Gw",
            "Kd8-vT-3mQ",
            "NSView",
            "NSWindow",
            "NSApplication",
            "NSObject",
            "w",
            "id",
            "view",
            "contentView",
            "delegate",
            "subviews",
            "SplitSliderView",
            "99999999999999999999",
        };
        const Part value = any(values_);
        return replaced(value, below(2) ? values[below(values.size())] : textOf(any(values_)));
    }
    std::string attributeRenamed() {
        static const std::vector<std::string> names = {"id",          "key",      "customClass",
                                                       "destination", "property", "x"};
        return replaced(any(names_), names[below(names.size())]);
    }
    std::string elementRenamed() {
        static const std::vector<std::string> names = {"view",        "customView", "window",   "customObject",
                                                       "textField",   "button",     "subviews", "objects",
                                                       "connections", "outlet",     "action",   "rect",
                                                       "string",      "document",   "color"};
        const Part part = any(elements_);
        const std::size_t nameEnd = original_.find_first_of(" />", part.begin + 1);
        std::string text = textOf(part);
        const std::string old = original_.substr(part.begin + 1, nameEnd - part.begin - 1);
        const std::string& name = names[below(names.size())];
        text.replace(1, old.size(), name);
        if (text.ends_with("</" + old + ">")) text.replace(text.size() - old.size() - 1, old.size(), name);
        return replaced(part, text);
    }

private:
    struct Part {
        std::size_t begin, end;
        std::size_t size() const { return end - begin; }
    };

    // Elements with what is in them, and the names and values of attributes. The file is regular enough.
    void findParts() {
        std::vector<std::size_t> open;
        for (std::size_t at = original_.find("?>"); (at = original_.find('<', at)) != std::string::npos; ++at) {
            const std::size_t end = original_.find('>', at) + 1;
            if (original_[at + 1] == '/') {
                elements_.push_back({open.back(), end});
                open.pop_back();
                continue;
            }
            for (std::size_t equals = at; (equals = original_.find("=\"", equals)) < end; ++equals) {
                names_.push_back({original_.rfind(' ', equals) + 1, equals});
                values_.push_back({equals + 2, original_.find('"', equals + 2)});
            }
            if (original_[end - 2] == '/')
                elements_.push_back({at, end});
            else
                open.push_back(at);
        }
    }

    std::size_t below(std::size_t end) { return random_() % end; }
    Part any(const std::vector<Part>& parts) { return parts[below(parts.size())]; }
    std::string textOf(const Part& part) const { return original_.substr(part.begin, part.size()); }
    std::string replaced(const Part& part, const std::string& text) const {
        return std::string(original_).replace(part.begin, part.size(), text);
    }
    std::string inserted(std::size_t at, const Part& part) const {
        return std::string(original_).insert(at, textOf(part));
    }

    std::string original_;
    std::vector<Part> elements_, names_, values_;
    std::mt19937 random_{20}; // always the same
};

// A damaged file is refused with a reason and the owner as it was; or it opens, and what came of it can be
// used.
TEST_F(NibKitFiles, DamagedFilesAreRefusedOrOpenButNeverDoHarm) {
    Mutator mutator(progressSheet());
    const std::vector<std::string (Mutator::*)()> ways = {
        &Mutator::bytes,
        &Mutator::withoutElement,
        &Mutator::elementTwice,
        &Mutator::elementMoved,
        &Mutator::elementNested,
        &Mutator::attributeChanged,
        &Mutator::attributeRenamed,
        &Mutator::elementRenamed,
    };
    std::vector<int> opened(ways.size()), refused(ways.size());
    constexpr int kRounds = 500;
    for (int round = 0; round < kRounds; ++round) {
        for (std::size_t way = 0; way < ways.size(); ++way) {
            const std::string text = (mutator.*ways[way])();
            log_.clear();
            top_.clear();
            const auto owner = make<SheetOwner>();
            const auto nib = read(text);
            const bool worked =
                nib && logged([&] { return nib->instantiateWithOwner_topLevelObjects(owner, &top_); });
            if (!worked) {
                ++refused[way];
                ASSERT_THAT(log_, testing::Contains(StartsWith("The interface file FILE is not used: ")))
                    << text;
                ASSERT_TRUE(owner->isUntouched()) << text;
                ASSERT_THAT(top_, IsEmpty()) << text;
                continue;
            }
            ++opened[way];
            ASSERT_EQ(owner->awakenings, 1) << text;
            ASSERT_THAT(log_, testing::Each(StartsWith("The interface file FILE: "))) << text;
            if (const auto window = owner->window()) {
                window->makeKeyAndOrderFront(nullptr);
                window->setContentSize({500, 300});
                platform_.display();
                if (owner->cancel) owner->cancel->performClick(nullptr);
                window->close();
            }
            for (const auto& window : NSApplication::sharedApplication().windows()) window->close();
        }
    }
    // Each way leads to both, or the test looks at nothing.
    for (std::size_t way = 0; way < ways.size(); ++way) {
        EXPECT_GT(opened[way], kRounds / 50) << way;
        EXPECT_GT(refused[way], kRounds / 50) << way;
    }
}

} // namespace

} // namespace zr::test
