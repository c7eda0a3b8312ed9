// SPDX-License-Identifier: MIT
#include "QtOpenPanel.h"

#include <QAbstractButton>
#include <QDialogButtonBox>
#include <QFile>
#include <QFileInfo>
#include <QFileSystemModel>
#include <QHash>
#include <QListView>
#include <QTreeView>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace zr::qt {

FileDialog::FileDialog(const port::OpenPanel& panel, QWidget* over, port::OpenPanelClient& panelClient)
    : QFileDialog(over, QString(), QFile::decodeName(panel.folder.c_str()))
    , client_(&panelClient)
    , choosesBoth_(panel.files && panel.folders)
    , over_(over) {
    setOption(DontUseNativeDialog);
    setOption(ShowDirsOnly, !panel.files);
    if (panel.folders)
        setFileMode(Directory);
    else
        setFileMode(panel.several ? ExistingFiles : ExistingFile);
    const QString prompt = QString::fromStdString(panel.prompt);
    setWindowTitle(prompt);
    // An ampersand is a character of the title, not the mark of a shortcut.
    setLabelText(Accept, QString(prompt).replace(QLatin1Char('&'), QLatin1String("&&")));
    if (panel.folders && panel.several)
        for (auto* const view : {static_cast<QAbstractItemView*>(findChild<QListView*>("listView")),
                                 static_cast<QAbstractItemView*>(findChild<QTreeView*>("treeView"))})
            if (view) view->setSelectionMode(QAbstractItemView::ExtendedSelection);
    // Qt's mode for folders takes no files, and says so by its button.
    auto* const buttons = findChild<QDialogButtonBox*>("buttonBox");
    if (auto* const list = findChild<QListView*>("listView"); choosesBoth_ && list && buttons)
        connect(list->selectionModel(), &QItemSelectionModel::selectionChanged, buttons, [buttons] {
            for (auto* const button : buttons->buttons()) button->setEnabled(true);
        });
    if (!over) setWindowModality(Qt::ApplicationModal);
    winId(); // there is a window from here on
    if (over) {
        over->installEventFilter(this);
        block_ = std::make_unique<InputBlock>(over, this);
    }
}

FileDialog::~FileDialog() { tell({}); }

void FileDialog::tell(const std::vector<std::string>& paths) {
    if (auto* const asked = std::exchange(client_, nullptr)) asked->peerChose(paths);
}

std::vector<std::string> FileDialog::chosen() const {
    QStringList files = selectedFiles(); // in the order in which they were selected
    QHash<QString, int> places;
    if (const auto* const list = findChild<QListView*>("listView"))
        for (const auto& index : list->selectionModel()->selectedRows())
            places[index.data(QFileSystemModel::FilePathRole).toString()] = index.row();
    std::stable_sort(files.begin(), files.end(),
                     [&](const QString& a, const QString& b) { return places.value(a) < places.value(b); });
    std::vector<std::string> paths;
    for (const auto& file : files) paths.push_back(QFile::encodeName(file).toStdString());
    return paths;
}

void FileDialog::accept() {
    if (!choosesBoth_) return QFileDialog::accept();
    const auto files = selectedFiles();
    if (std::ranges::all_of(files, [](const QString& file) { return QFileInfo::exists(file); })) done(Accepted);
}

// The client is told before the dialog goes, and may take the dialog with it.
void FileDialog::done(int result) {
    const QPointer<FileDialog> self = this;
    tell(result == Accepted ? chosen() : std::vector<std::string>());
    if (!self) return;
    block_.reset();
    QFileDialog::done(result);
}

void FileDialog::letGo() {
    client_ = nullptr;
    block_.reset();
    hide();
    deleteLater(); // it may be in the middle of telling
}

bool FileDialog::eventFilter(QObject* watched, QEvent* event) {
    if (watched == over_ && event->type() == QEvent::Hide && !event->spontaneous()) reject();
    return QFileDialog::eventFilter(watched, event);
}

void FileDialog::present() {
    show();
    raise();
    activateWindow();
}

} // namespace zr::qt
