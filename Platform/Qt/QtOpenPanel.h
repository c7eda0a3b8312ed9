#pragma once

#include "InputBlock.h"

#include <WindowSystem/WindowSystem.h>

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

// The dialog of a desktop's portal would be another kind of peer.
class OpenPanelPeer final : public port::OpenPanelPeer {
public:
    OpenPanelPeer(const port::OpenPanel& panel, QWidget* over, port::OpenPanelClient& client);
    ~OpenPanelPeer() override;

private:
    QPointer<FileDialog> dialog_;
};

} // namespace zr::qt
