// SPDX-License-Identifier: MIT
#pragma once

#include <WindowSystem/Panels.h>
#include <ZRUIKitQt/InputBlock.h>
#include <ZRUIKitQt/QtTrackingLoop.h>

#include <QFileDialog>
#include <QPointer>

#include <memory>

namespace zr::qt {

// Qt's own file dialog, which can be told to choose several folders.
class FileDialog final : public QFileDialog {
public:
    FileDialog(const port::OpenPanel& panel, QWidget* over, port::OpenPanelClient& panelClient);
    ~FileDialog() override;

    void done(int result) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void present();
    void letGo(); // tells nothing any more, and goes

protected:
    void accept() override;

private:
    std::vector<std::string> chosen() const;
    void tell(const std::vector<std::string>& paths);

    port::OpenPanelClient* client_; // null once it has been told
    bool choosesBoth_;
    QPointer<QWidget> over_;
    std::unique_ptr<InputBlock> block_;
};

// A FileDialog, or what stands for the dialog of the desktop's portal.
template <class Dialog>
class OpenPanelPeer final : public port::OpenPanelPeer {
public:
    explicit OpenPanelPeer(Dialog* dialog) : dialog_(dialog) { dialog_->present(); }
    ~OpenPanelPeer() override {
        if (dialog_) dialog_->letGo();
    }
    std::unique_ptr<port::TrackingLoop> beginModal() override { return std::make_unique<QtLoop>(); }

private:
    QPointer<Dialog> dialog_;
};

} // namespace zr::qt
