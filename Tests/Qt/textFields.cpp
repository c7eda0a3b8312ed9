// SPDX-License-Identifier: MIT
#include "QtTest.h"

#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSTextField.h>
#include <ZRUIKit/SWTimeEditView.h>
#include <ZRUIKit/ZRAlert.h>

#include <QClipboard>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>

namespace zr {

using testing::ElementsAre;

namespace {

// Writes down the editing life of the fields it is the delegate of.
class Editing : public NSTextFieldDelegate {
public:
    std::optional<bool> control_textShouldBeginEditing(NSControl& control, NSTextField&) override {
        note("may begin", control);
        return begins;
    }
    void controlTextDidBeginEditing(const NSNotification& notification) override {
        note("began", notification);
    }
    void controlTextDidChange(const NSNotification& notification) override { note("changed", notification); }
    std::optional<bool> control_textShouldEndEditing(NSControl& control, NSTextField&) override {
        note("may end", control);
        if (onEnd) onEnd();
        return ends;
    }
    void controlTextDidEndEditing(const NSNotification& notification) override {
        note("ended", notification);
        log.back() += stringWithFormat(" %g", std::get<double>(notification.userInfo.at("NSTextMovement")));
    }
    std::vector<std::string> taken() { return std::exchange(log, {}); }

    std::vector<std::string> log;
    std::function<void()> onEnd;
    bool begins = true, ends = true;

private:
    void note(const char* what, NSControl& control) {
        auto& field = dynamic_cast<NSTextField&>(control);
        log.push_back(stringWithFormat("%@ %s '%@'", field.identifier(), what, field.stringValue()));
    }
    void note(const char* what, const NSNotification& notification) {
        note(what, dynamic_cast<NSControl&>(*notification.object));
    }
};

} // namespace

namespace {
class FocusableView : public NSView {
public:
    ZR_CLASS(FocusableView, NSView)
    bool acceptsFirstResponder() const override { return true; }
};
ZR_CLASS_TABLE(FocusableView)
} // namespace

class QtTextFields : public test::QtTest {
protected:
    void SetUp() override {
        content_ = make<NSView>(NSMakeRect(0, 0, 300, 120));
        for (int i = 0; i < 2; ++i) {
            auto& field = i == 0 ? first_ : second_;
            field = make<NSTextField>(NSMakeRect(20, 70 - 40 * i, 120, 24));
            field->setIdentifier(i == 0 ? "first" : "second");
            field->setStringValue(i == 0 ? "one" : "two");
            field->setDelegate(editing_);
            content_->addSubview(field);
        }
        show(content_, {300, 120});
        QApplication::setActiveWindow(topLevel());
        settle();
        editing_->taken();
    }
    QLineEdit* line(const char* name) { return qobject_cast<QLineEdit*>(widget(name)); }
    void click(const NSView& view) {
        const NSRect frame = view.convertRect_toView(view.bounds(), nullptr);
        press({NSMidX(frame), NSMidY(frame)});
        release({NSMidX(frame), NSMidY(frame)});
        settle();
    }
    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(handle(), key, modifiers);
        settle();
    }
    void type(const char* text) {
        for (; *text; ++text) QTest::keyClick(handle(), *text);
        settle();
    }

    std::shared_ptr<Editing> editing_ = std::make_shared<Editing>();
    std::shared_ptr<NSView> content_;
    std::shared_ptr<NSTextField> first_, second_;
};

TEST_F(QtTextFields, TheKeyboardIsStillWithTheFieldThatIsAsked) {
    click(*first_);
    const auto button = NSButton::buttonWithTitle_target_action("OK", nullptr, "");
    button->setFrame(NSMakeRect(160, 70, 100, 30));
    button->setIdentifier("button");
    content_->addSubview(button);
    settle();
    std::vector<std::string> focusedWhileAsked;
    editing_->onEnd = [&] {
        focusedWhileAsked.push_back(QApplication::focusWidget()->objectName().toStdString());
    };
    editing_->ends = false;
    click(*second_);
    click(*button);
    EXPECT_THAT(focusedWhileAsked, ElementsAre("first", "first"));
    EXPECT_TRUE(line("first")->hasFocus());
    editing_->ends = true;
    click(*button);
    EXPECT_THAT(focusedWhileAsked, ElementsAre("first", "first", "first"));
    EXPECT_TRUE(widget("button")->hasFocus());
}

TEST_F(QtTextFields, WhatTheHostGivesTheKeyboardIsAskedLateAndGivesItBack) {
    click(*first_);
    editing_->taken();
    editing_->ends = false;
    line("second")->setFocus();
    settle();
    EXPECT_THAT(editing_->taken(), ElementsAre("first may end 'one'"));
    EXPECT_TRUE(line("first")->hasFocus());
    EXPECT_EQ(window_->firstResponder(), first_.get());
    editing_->ends = true;
    line("second")->setFocus();
    settle();
    EXPECT_EQ(window_->firstResponder(), second_.get());
    EXPECT_TRUE(line("second")->hasFocus());
}

TEST_F(QtTextFields, TheEditingLifeFromTheFirstKeyToReturn) {
    click(*first_);
    EXPECT_EQ(window_->firstResponder(), first_.get());
    EXPECT_TRUE(editing_->taken().empty()) << "the keyboard alone is no editing";
    first_->selectText(nullptr);
    type("ab");
    EXPECT_THAT(editing_->taken(), ElementsAre("first may begin 'one'", "first began 'one'",
                                               "first changed 'a'", "first changed 'ab'"));
    EXPECT_EQ(first_->stringValue(), "ab");
    key(Qt::Key_Return);
    EXPECT_THAT(editing_->taken(), ElementsAre("first may end 'ab'", "first ended 'ab' 16"));
    EXPECT_EQ(window_->firstResponder(), first_.get());
    EXPECT_EQ(line("first")->selectedText(), "ab") << "all of it is selected again";
}

TEST_F(QtTextFields, TabEndsOneEditingBeforeTheNextFieldHasTheKeyboard) {
    click(*first_);
    type("x");
    editing_->taken();
    key(Qt::Key_Tab);
    EXPECT_EQ(editing_->taken().back().substr(0, 11), "first ended");
    EXPECT_EQ(window_->firstResponder(), second_.get());
    EXPECT_TRUE(line("second")->hasFocus());
    EXPECT_EQ(line("second")->selectedText(), "two");
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_THAT(editing_->taken(), ElementsAre("second may end 'two'", "second ended 'two' 18"));
    EXPECT_TRUE(line("first")->hasFocus());
}

TEST_F(QtTextFields, ClickingIntoAnotherFieldEndsTheFirstOne) {
    click(*first_);
    first_->selectText(nullptr);
    type("y");
    editing_->taken();
    click(*second_);
    EXPECT_THAT(editing_->taken(), ElementsAre("first may end 'y'", "first ended 'y' 0"));
    EXPECT_TRUE(line("second")->hasFocus());
}

TEST_F(QtTextFields, ARefusedEndKeepsTheFieldEditing) {
    click(*first_);
    type("z");
    editing_->taken();
    editing_->ends = false;
    editing_->onEnd = [&] { first_->setStringValue("put back"); };
    for (const auto attempt : {0, 1, 2}) {
        if (attempt == 0) key(Qt::Key_Tab);
        if (attempt == 1) key(Qt::Key_Return);
        if (attempt == 2) click(*second_);
        EXPECT_EQ(window_->firstResponder(), first_.get()) << attempt;
        EXPECT_TRUE(line("first")->hasFocus()) << attempt;
        EXPECT_EQ(line("first")->text(), "put back") << attempt;
    }
    for (const auto& entry : editing_->taken()) EXPECT_THAT(entry, testing::HasSubstr("first may end"));
    EXPECT_FALSE(window_->makeFirstResponder(nullptr));
    editing_->ends = true;
    EXPECT_TRUE(window_->makeFirstResponder(nullptr));
}

TEST_F(QtTextFields, ARefusedBeginningRefusesTheKey) {
    editing_->begins = false;
    click(*first_);
    type("q");
    EXPECT_EQ(line("first")->text(), "one");
    EXPECT_EQ(first_->stringValue(), "one");
}

TEST_F(QtTextFields, EscapePutsTheTextBackAndThenGoesOnToTheWindow) {
    const auto cancel = NSButton::buttonWithTitle_target_action("Cancel", window_, "performClose:");
    cancel->setKeyEquivalent(kEscapeCharacter);
    content_->addSubview(cancel);
    click(*first_);
    first_->selectText(nullptr);
    type("q");
    key(Qt::Key_Escape);
    EXPECT_EQ(line("first")->text(), "one");
    EXPECT_TRUE(window_->isVisible());
    key(Qt::Key_Escape);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtTextFields, ReturnInAFieldWithoutAnActionPressesTheDefaultButton) {
    const auto button = NSButton::buttonWithTitle_target_action("Close", window_, "performClose:");
    button->setKeyEquivalent(kReturnCharacter);
    content_->addSubview(button);
    click(*first_);
    key(Qt::Key_Return);
    EXPECT_FALSE(window_->isVisible());
}

TEST_F(QtTextFields, TabGoesTheKitsWayThroughFieldsButtonsAndViews) {
    const auto button = NSButton::buttonWithTitle_target_action("Button", nullptr, "nothing:");
    const auto view = make<FocusableView>(NSMakeRect(200, 10, 20, 20));
    content_->addSubview(button);
    content_->addSubview(view);
    click(*first_);
    key(Qt::Key_Tab);
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), button.get());
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), view.get());
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), first_.get());
    key(Qt::Key_Backtab, Qt::ShiftModifier);
    EXPECT_EQ(window_->firstResponder(), view.get());
    button->setNextKeyView(first_);
    window_->makeFirstResponder(button.get());
    key(Qt::Key_Tab);
    EXPECT_EQ(window_->firstResponder(), first_.get());
}

TEST_F(QtTextFields, TheProgramsOwnChangesSendNothing) {
    click(*first_);
    first_->setStringValue("set");
    EXPECT_EQ(line("first")->text(), "set");
    EXPECT_TRUE(editing_->taken().empty());
    first_->setEditable(false);
    type("nothing");
    EXPECT_EQ(first_->stringValue(), "set");
    EXPECT_TRUE(line("first")->isReadOnly());
}

TEST_F(QtTextFields, EditingCanBeEndedByForce) {
    click(*first_);
    type("f");
    editing_->taken();
    editing_->ends = false;
    window_->endEditingFor(nullptr);
    EXPECT_EQ(editing_->taken().at(0).substr(0, 11), "first ended");
    EXPECT_EQ(window_->firstResponder(), window_.get());
    EXPECT_FALSE(line("first")->hasFocus());
}

TEST_F(QtTextFields, PastedTextIsAChangeLikeAnyOther) {
    QGuiApplication::clipboard()->setText("pasted");
    click(*first_);
    first_->selectText(nullptr);
    key(Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(first_->stringValue(), "pasted");
    EXPECT_EQ(editing_->taken().back(), "first changed 'pasted'");
}

TEST_F(QtTextFields, ARemovedFieldLeavesNothingBehind) {
    editing_->onEnd = [&] { first_->removeFromSuperview(); };
    click(*first_);
    type("r");
    key(Qt::Key_Return);
    settle();
    EXPECT_EQ(first_->window(), nullptr);
    EXPECT_EQ(widget("first"), nullptr);
}

// The time field

class QtTimeField : public test::QtTest {};

TEST_F(QtTimeField, TheFieldsAndColonsAreSeen) {
    const auto content = make<NSView>(NSMakeRect(0, 0, 230, 44));
    const auto time = make<SWTimeEditView>(NSMakeRect(20, 10, 190, 24));
    time->awakeFromNib();
    time->flushWithSeconds(3725);
    content->addSubview(time);
    show(content, {230, 44});
    const QImage image = picture();
    image.save(QCoreApplication::applicationDirPath() + "/time-field.png"); // for a person to judge
    const auto darkPixels = [&](double left, double right) {
        int count = 0;
        for (int x = int(left * ratio()); x < int(right * ratio()); ++x)
            for (int y = 0; y < image.height(); ++y)
                if (image.pixelColor(x, y).lightness() < 120) ++count;
        return count;
    };
    EXPECT_GE(darkPixels(20 + 61, 20 + 69), 2) << "the first colon";
    EXPECT_GE(darkPixels(20 + 121, 20 + 129), 2) << "the second";
    EXPECT_THAT(pixel(image, (20 + 15) * ratio(), 22 * ratio()), test::IsColour(QColor(Qt::white)))
        << "a field";
}

// Alerts

class QtAlerts : public test::QtTest {
protected:
    void SetUp() override {
        show(make<NSView>(NSMakeRect(0, 0, 200, 100)), {200, 100});
        QApplication::setActiveWindow(topLevel());
        settle();
    }
    // Runs while the alert is shown.
    static void during(std::function<void(QWidget& alert)> step) {
        QTimer::singleShot(1, qApp, [step = std::move(step)] {
            QWidget* const alert = QApplication::activeModalWidget();
            ASSERT_NE(alert, nullptr);
            ASSERT_TRUE(QTest::qWaitForWindowExposed(alert));
            step(*alert);
        });
    }
    static std::vector<QPushButton*> buttons(QWidget& alert) {
        const auto found = alert.findChildren<QPushButton*>();
        return {found.begin(), found.end()};
    }
    ZRAlertAction::Block note(const char* what) {
        return [this, what] { log_.emplace_back(what); };
    }
    std::vector<std::string> log_;
};

TEST_F(QtAlerts, ButtonsStandInTheirOrderFromTheTrailingEnd) {
    during([&](QWidget& alert) {
        const auto all = buttons(alert);
        ASSERT_EQ(all.size(), 3u);
        EXPECT_EQ(all[0]->text(), "First");
        EXPECT_TRUE(all[0]->isDefault());
        EXPECT_GT(all[0]->x(), all[1]->x() + all[1]->width());
        EXPECT_GT(all[1]->x(), all[2]->x() + all[2]->width());
        EXPECT_EQ(all[0]->geometry().right(), alert.width() - 1 - 20);
        alert.grab().save(QCoreApplication::applicationDirPath() + "/alert.png"); // for a person to judge
        QTest::mouseClick(all[1]->window()->windowHandle(), Qt::LeftButton, {},
                          all[1]->mapTo(&alert, all[1]->rect().center()));
    });
    ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::actionWithTitle_block("First", note("first")),
                                               ZRAlertAction::actionWithTitle_block("Second", note("second")),
                                               ZRAlertAction::actionWithTitle_block("Third", note("third"))},
                                              "Which one?", "There are three.", nullptr);
    EXPECT_THAT(log_, ElementsAre("second"));
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(QtAlerts, ReturnEscapeAndTheFrameAnswer) {
    const ZRAlert::Actions actions = {ZRAlertAction::OK(note("ok")), ZRAlertAction::CANCEL(note("cancel"))};
    during([](QWidget& alert) { QTest::keyClick(alert.windowHandle(), Qt::Key_Return); });
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    during([](QWidget& alert) { QTest::keyClick(alert.windowHandle(), Qt::Key_Escape); });
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    during([](QWidget& alert) { alert.close(); });
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    EXPECT_THAT(log_, ElementsAre("ok", "cancel", "cancel"));
}

namespace {
class Dragged : public NSView {
public:
    ZR_CLASS(Dragged, NSView)
    void mouseDown(const NSEvent&) override {
        while (const auto event =
                   window()->nextEventMatchingMask(NSEventMaskLeftMouseDragged | NSEventMaskLeftMouseUp)) {
            steps.emplace_back("event");
            if (event->type() == NSEventTypeLeftMouseUp) break;
        }
        steps.emplace_back("over");
    }
    std::vector<std::string> steps;
};
ZR_CLASS_TABLE(Dragged)
} // namespace

TEST_F(QtAlerts, OtherWindowsGetNoInputMeanwhile) {
    const auto view = make<test::Pressed>(NSMakeRect(0, 0, 200, 100));
    window_->setContentView(view);
    settle();
    during([&](QWidget& alert) {
        press({50, 50});
        release({50, 50});
        EXPECT_EQ(view->count, 0);
        QTest::keyClick(alert.windowHandle(), Qt::Key_Return);
    });
    ZRAlert::OK_info("Title", std::nullopt);
    settle();
    press({50, 50});
    release({50, 50});
    EXPECT_EQ(view->count, 1);
}

TEST_F(QtAlerts, AnAlertFromAQueueInTheMiddleOfADragGetsItsClicksAndEndsTheDrag) {
    const auto view = make<Dragged>(NSMakeRect(0, 0, 200, 100));
    auto& steps = view->steps;
    window_->setContentView(view);
    settle();
    QTimer::singleShot(1, qApp, [&] {
        during([this](QWidget& alert) {
            release({50, 50}); // which the blocked window does not get
            QPushButton* const ok = alert.findChild<QPushButton*>();
            QTest::mouseClick(alert.windowHandle(), Qt::LeftButton, {}, ok->mapTo(&alert, ok->rect().center()));
        });
        ZRAlert::Actions_title_info_accessoryView({ZRAlertAction::OK(note("answered"))}, "Title", "Info",
                                                  nullptr);
    });
    press({50, 50});
    EXPECT_THAT(log_, ElementsAre("answered"));
    EXPECT_EQ(steps.back(), "over");
    // And the next press is an ordinary one.
    settle();
    steps.clear();
    QTimer::singleShot(1, qApp, [&] { release({60, 50}); });
    press({50, 50});
    EXPECT_FALSE(steps.empty());
    EXPECT_EQ(steps.front(), "event");
}

TEST_F(QtAlerts, ATextTallerThanTheScreenScrolls) {
    std::string text;
    for (int i = 0; i < 400; ++i) text += "A line of many that do not fit onto any screen at all.\n";
    during([&](QWidget& alert) {
        EXPECT_LT(alert.height(), alert.screen()->size().height());
        auto* const scrolling = alert.findChild<QPlainTextEdit*>("alertInformation");
        ASSERT_NE(scrolling, nullptr);
        EXPECT_GT(scrolling->verticalScrollBar()->maximum(), 0);
        QTest::keyClick(alert.windowHandle(), Qt::Key_Return);
    });
    ZRAlert::OK_info("Title", text);
}

TEST_F(QtAlerts, FiftyButtonsStayOnTheScreenAndApart) {
    ZRAlert::Actions actions;
    for (int i = 0; i < 50; ++i)
        actions.push_back(ZRAlertAction::actionWithTitle_block("Number " + std::to_string(i), note("pressed")));
    during([&](QWidget& alert) {
        EXPECT_LT(alert.height(), alert.screen()->size().height());
        QRegion all;
        for (QPushButton* const button : buttons(alert)) {
            const QRect place = button->geometry();
            EXPECT_TRUE(alert.rect().contains(place));
            EXPECT_FALSE(all.intersects(place));
            all += place;
        }
        QTest::keyClick(alert.windowHandle(), Qt::Key_Return);
    });
    ZRAlert::Actions_title_info_accessoryView(actions, "Title", "Info", nullptr);
    EXPECT_THAT(log_, ElementsAre("pressed"));
}

} // namespace zr
