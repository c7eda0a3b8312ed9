// SPDX-License-Identifier: MIT
#include "QtMenuBar.h"

#include <ZRUIKitQt/Appearance.h>

#include <QApplication>
#include <QKeyEvent>
#include <QKeySequence>
#include <QMenu>

namespace zr::qt {

namespace {

QString shortcutOf(const port::MenuItem& item) {
    const QString key = QString::fromStdString(item.key);
    const QChar character = key.size() == 1 ? key.front() : QChar();
    const bool isTab = character == QLatin1Char('\t');
    if (!character.isPrint() && !isTab) return {};
    Qt::KeyboardModifiers modifiers;
    for (const auto& [ours, theirs] : {std::pair{NSEventModifierFlagShift, Qt::ShiftModifier},
                                       {NSEventModifierFlagCommand, Qt::ControlModifier},
                                       {NSEventModifierFlagOption, Qt::AltModifier},
                                       {NSEventModifierFlagControl, Qt::MetaModifier}})
        modifiers.setFlag(theirs, (item.modifierFlags & ours) != 0);
    if (character.isUpper()) modifiers |= Qt::ShiftModifier;
    const QKeyCombination keys(modifiers,
                               isTab ? Qt::Key_Tab : static_cast<Qt::Key>(character.toUpper().unicode()));
    return QKeySequence(keys).toString(QKeySequence::NativeText);
}

// An ampersand is a character of the title, not the mark of a shortcut. What follows a tab stands at the right.
QString textOf(const port::MenuItem& item) {
    QString text = QString::fromStdString(item.title).replace(QLatin1Char('&'), QLatin1String("&&"));
    if (const QString shortcut = shortcutOf(item); !shortcut.isEmpty()) text += QLatin1Char('\t') + shortcut;
    return text;
}

// Styles derive a menu's edge and lines from the window's colour by making it darker, which in a dark window
// nobody sees.
void suit(QMenu& menu) {
    QPalette own;
    if (appearanceOf(QApplication::palette()) == Appearance::dark) {
        constexpr int kLighter = 120, kLines = 280; // percent
        const QColor window = QApplication::palette().color(QPalette::Window);
        own.setColor(QPalette::Base, window.lighter(kLighter));
        own.setColor(QPalette::Window, window.lighter(kLines));
    }
    menu.setPalette(own);
}

template <class Bar>
void fill(Bar& menu, const std::vector<port::MenuItem>& items) {
    for (const auto& item : items) {
        if (item.separator) {
            menu.addSeparator();
        } else if (item.submenu) {
            auto* const submenu = menu.addMenu(textOf(item));
            submenu->setEnabled(item.enabled);
            QObject::connect(submenu, &QMenu::aboutToShow, submenu, [submenu, ask = item.submenu] {
                qDeleteAll(submenu->template findChildren<QMenu*>(QString(), Qt::FindDirectChildrenOnly));
                submenu->clear();
                suit(*submenu);
                fill(*submenu, ask());
            });
        } else {
            auto* const action = menu.addAction(textOf(item));
            action->setEnabled(item.enabled);
            // The menus may be others when it has done its work.
            QObject::connect(action, &QAction::triggered, &menu, [choose = item.choose] {
                if (const auto chosen = choose) chosen();
            });
        }
    }
}

} // namespace

MenuBar::MenuBar(QWidget* window, const std::vector<port::MenuItem>& items) : QMenuBar(window) {
    setNativeMenuBar(false);
    fill(*this, items);
}

void MenuBar::openFirst() { setActiveAction(actions().value(0)); }

// The keyboard goes back to whoever had it.
void MenuBar::leave() {
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QMenuBar::keyPressEvent(&escape);
}

void MenuBar::keyPressEvent(QKeyEvent* event) {
    QMenuBar::keyPressEvent(event);
    const bool isShortcut = (event->modifiers() & (Qt::ControlModifier | Qt::MetaModifier)) != 0;
    if (event->isAccepted() || (!isShortcut && event->key() != Qt::Key_F10)) return;
    leave();
    QWidget* const focused = window()->focusWidget();
    if (isShortcut && focused && focused != this) QCoreApplication::sendEvent(focused, event);
    event->accept();
}

} // namespace zr::qt
