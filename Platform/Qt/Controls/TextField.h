// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Controls.h>
#include <ZRUIKitQt/PeerOf.h>

#include <QLineEdit>

namespace zr::qt {

// Text on one line that the user edits.
class TextFieldWidget final : public WidgetOf<QLineEdit> {
public:
    TextFieldWidget(port::ViewPeer& superview, port::ViewClient& viewClient,
                    port::TextFieldClient& fieldClient);
    void setLook(const port::TextFieldLook& look);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    bool focusNextPrevChild(bool next) override;
    void changeEvent(QEvent* event) override;
    void initStyleOption(QStyleOptionFrame* option) const override;

private:
    void applyColours();

    port::TextFieldClient& field_;
    port::TextFieldLook look_;
};

class TextFieldPeer final : public PeerOf<port::TextFieldPeer, TextFieldWidget> {
public:
    TextFieldPeer(port::ViewPeer& superview, port::ViewClient& viewClient, const Parts& parts)
        : PeerOf(new TextFieldWidget(superview, viewClient, parts.field)) {}
    void setText(const std::string& text) override;
    void setLook(const port::TextFieldLook& look) override;
    void setEditing(bool editable, bool selectable) override;
    void setEnabled(bool enabled) override;
    void selectText() override;
};

} // namespace zr::qt
