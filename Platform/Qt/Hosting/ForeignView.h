// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSControl.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QPointer>
#include <QWidget>

#include <memory>

namespace zr::qt {

// A peer that is a widget of the host's: it does nothing to it but to give it the keyboard.
class ForeignPeer final : public port::ViewPeer, public HasWidget {
public:
    ForeignPeer(QWidget* widget, std::shared_ptr<WindowLink> windowLink);

    void setFrame(const Rect&) override {}
    void setHidden(bool) override {}
    void raise() override {}
    void invalidate() override {}
    void focus() override;
    void setName(const std::string&) override {}
    QWidget* anyWidget() const override { return widget_; }

private:
    QPointer<QWidget> widget_;
};

// A view that stands in a widget of the host's, which drives its frame.
template <class Base>
class Foreign : public Base {
public:
    bool initWithWidget(QWidget* widget) {
        widget_ = widget;
        return Base::initWithFrame({});
    }
    QWidget* widget() const { return widget_; } // null once it is gone

protected:
    std::unique_ptr<port::ViewPeer> makePeer(port::PeerFactory&, port::ViewPeer& parent,
                                             port::ViewClient&) override {
        return std::make_unique<ForeignPeer>(widget_, dynamic_cast<HasWidget&>(parent).link);
    }

private:
    QPointer<QWidget> widget_;
};

using AnchorView = Foreign<NSControl>;

// What is in it fills it.
class SlotView : public Foreign<NSView> {
public:
    void resizeSubviewsWithOldSize(const NSSize& oldSize) override;
};

// Where an embedded view stands.
class SlotWidget final : public QWidget {
public:
    SlotWidget(const std::shared_ptr<NSView>& view, QWidget* parent);
    ~SlotWidget() override;

    std::shared_ptr<NSView> view() const; // null where it has been put elsewhere
    QSize sizeHint() const override { return view() ? sizeHint_ : QSize(); }

protected:
    void focusInEvent(QFocusEvent* event) override;

private:
    std::weak_ptr<SlotView> slot_; // that the follower holds, and it the view
    QSize sizeHint_;
};

// Whether the widget is that of a view of the kit, rather than the host's.
bool isOfKit(const QWidget* widget);

} // namespace zr::qt
