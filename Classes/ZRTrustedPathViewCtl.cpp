// SPDX-License-Identifier: MIT
#include <AppKit/NSAlert.h>
#include <AppKit/NSButton.h>
#include <AppKit/NSOpenPanel.h>
#include <AppKit/NSWindow.h>
#include <Foundation/NSBundle.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSLog.h>
#include <Foundation/NSRunLoop.h>
#include <Foundation/NSUserDefaults.h>
#include <HostLibraries/GlobalFun.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <algorithm>
#include <utility>

namespace zr {

ZR_CLASS_TABLE(ZRTrustedPathViewCtl,
               .actions = {actionNamed<&ZRTrustedPathViewCtl::loadingCancelClick>("loadingCancelClick:"),
                           actionNamed<&ZRTrustedPathViewCtl::addFolderDown>("addFolderDown:"),
                           actionNamed<&ZRTrustedPathViewCtl::removeFolderDown>("removeFolderDown:")},
               .outlets = {outletNamed<&ZRTrustedPathViewCtl::setTableView>("tableView"),
                           outletNamed<&ZRTrustedPathViewCtl::setLoadingBgView>("loadingBgView"),
                           outletNamed<&ZRTrustedPathViewCtl::setLoadingIndicator>("loadingIndicator"),
                           outletNamed<&ZRTrustedPathViewCtl::setLblLoadingTips>("lblLoadingTips"),
                           outletNamed<&ZRTrustedPathViewCtl::setLblLoadingPath>("lblLoadingPath")})

namespace {

constexpr const char* kBookmarksKey = "BookmarksKey";
constexpr const char* kRestoreMethod = "+[ZRTrustedPathViewCtl restoreDefaultsBookmarks:]";
constexpr double kLaunchDelay = 0.3;
constexpr std::size_t kMostToAuthorize = 5;

// Main thread only; never let go.
std::shared_ptr<ZRTrustedPathViewCtl>& sharedSlot() {
    static auto* const slot = new std::shared_ptr<ZRTrustedPathViewCtl>;
    return *slot;
}

PropertyList::Array storedBookmarks() {
    const auto stored = NSUserDefaults::standardUserDefaults()->arrayForKey(kBookmarksKey);
    return stored ? *stored : PropertyList::Array();
}

void store(PropertyList::Array bookmarks) {
    NSUserDefaults::standardUserDefaults()->setObject_forKey(std::move(bookmarks), kBookmarksKey);
}

void storeOnDisk(PropertyList::Array bookmarks) {
    store(std::move(bookmarks));
    NSUserDefaults::standardUserDefaults()->synchronize();
}

bool isThere(const std::string& path) { return NSFileManager::defaultManager().fileExistsAtPath(path); }

NSIndexSet below(std::size_t count, const NSIndexSet& indexes) {
    return {indexes.begin(), indexes.lower_bound(count)};
}

// The path that the entry was made at; nothing, and a line in the log, when it tells none.
std::optional<std::string> pathOf(const PropertyList& entry) {
    const auto* data = entry.get<NSData>();
    if (!data) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with not data type");
        return std::nullopt;
    }
    const auto values = NSURL::resourceValuesForKeys_fromBookmarkData({NSURLPathKey}, *data);
    if (!values || values->empty()) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with values empty");
        return std::nullopt;
    }
    KitLogInfo(kRestoreMethod, "[TRUST PATH] resolved values : %@", PropertyList(*values).description());
    const auto path = values->find(NSURLPathKey);
    if (path == values->end()) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with no path");
        return std::nullopt;
    }
    return path->second.description();
}

// Nothing, and a line in the log, when the folder cannot be had.
std::optional<NSURL> resolve(const NSData& bookmark, const std::string& path) {
    if (!isThere(path)) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with path not exsit : %@", path);
        return std::nullopt;
    }
    bool isStale = false;
    std::optional<NSError> error;
    auto url = NSURL::URLByResolvingBookmarkData_options_relativeToURL_bookmarkDataIsStale_error(
        bookmark, NSURLBookmarkResolutionWithSecurityScope, std::nullopt, &isStale, &error);
    const auto errorText = error ? std::optional(error->description()) : std::nullopt;
    if (!url || isStale) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with error : %@ | stale : %@", errorText,
                    isStale);
        return std::nullopt;
    }
    if (error) {
        KitLogError(kRestoreMethod, "[TRUST PATH]: resolve returned with error : %@", errorText);
        return std::nullopt;
    }
    return url;
}

std::string pathOf(const ZRTrustedPathViewCtl::File& file) {
    if (const auto* path = std::get_if<std::string>(&file)) return *path;
    const auto* item = dynamic_cast<const FileItem*>(std::get<std::shared_ptr<NSObject>>(file).get());
    return item ? item->filePath() : "";
}

bool confirmsAuthorizing() {
    constexpr const char* kReason =
        "The origin folder of output file is not accessable by the app,Please authorize it";
    const auto alert = make<NSAlert>();
    alert->setAlertStyle(NSAlertStyleWarning);
    alert->setMessageText("Warnning!");
    alert->setInformativeText(stringWithFormat(kReason));
    alert->addButtonWithTitle("Authorize");
    // Not the application's word for it, by which the alert would know the key.
    alert->addButtonWithTitle("Cancel")->setKeyEquivalent("\x1b");
    return alert->runModal() == NSAlertFirstButtonReturn;
}

} // namespace

bool ZRTrustedPathViewCtl::init() {
    if (!initWithNibName_bundle("ZRTrustedPathViewCtl", retained(&KitBundle()))) return false;
    sharedSlot() = retained(this);
    setIsAsyncLoading(true);
    AfterDelay(kLaunchDelay, [self = retained(this)] { self->asyncLoadDefaultBookMarksWithLaunch(); });
    return true;
}

std::shared_ptr<ZRTrustedPathViewCtl> ZRTrustedPathViewCtl::sharedInstance() { return sharedSlot(); }

void ZRTrustedPathViewCtl::viewDidLoad() {
    NSViewController::viewDidLoad();
    if (const auto overlay = loadingBgView())
        for (const auto& view : overlay->subviews())
            if (const auto button = std::dynamic_pointer_cast<NSButton>(view))
                button->setTitle(KitLocalizedString("Cancel"));
    refreshLoadingUI();
}

void ZRTrustedPathViewCtl::awakeFromNib() {
    NSViewController::awakeFromNib();
    if (!tableView_) return;
    const auto self = retained(this);
    tableView_->setDelegate(self);
    tableView_->setDataSource(self);
    tableView_->reloadData();
}

std::shared_ptr<NSImage> ZRTrustedPathViewCtl::toolbarItemImage() const { return KitImage("pref_trust_path"); }

std::string ZRTrustedPathViewCtl::toolbarItemLabel() const { return AppLocalizedString("Trusted Paths"); }

// The list

void ZRTrustedPathViewCtl::setAryItems(Folders folders) {
    aryItems_ = std::move(folders);
    paths_.clear();
    for (const auto& folder : aryItems_) paths_.insert(folder.path());
}

void ZRTrustedPathViewCtl::append(const Folders& folders) {
    for (const auto& folder : folders) paths_.insert(folder.path());
    aryItems_.insert(aryItems_.end(), folders.begin(), folders.end());
}

bool ZRTrustedPathViewCtl::isExsistWithUrl(const NSURL& url) const { return paths_.contains(url.path()); }

void ZRTrustedPathViewCtl::addToBookmarkWithPath(const std::string& path) {
    addToBookmarkWithURL(NSURL::fileURLWithPath(path));
}

void ZRTrustedPathViewCtl::addToBookmarkWithURL(const NSURL& url) {
    if (!isThere(url.path())) return;
    if (isExsistWithUrl(url)) {
        NSLog("已经存在");
        return;
    }
    append({url});
    auto bookmarks = storedBookmarks();
    if (auto data = GlobalFun::BookmarkDataForURL(url)) bookmarks.emplace_back(std::move(*data));
    storeOnDisk(std::move(bookmarks));
    OnMainQueue([self = retained(this)] { self->reloadTable(); });
}

void ZRTrustedPathViewCtl::reloadTable() {
    if (tableView_) tableView_->reloadData();
}

long ZRTrustedPathViewCtl::numberOfRowsInTableView(NSTableView&) { return static_cast<long>(aryItems_.size()); }

std::string ZRTrustedPathViewCtl::tableView_objectValueForTableColumn_row(NSTableView&, NSTableColumn&,
                                                                          long row) {
    const auto index = static_cast<std::size_t>(row);
    return index < aryItems_.size() ? aryItems_[index].path() : ""; // the table may not know of them yet
}

void ZRTrustedPathViewCtl::addFolderDown(NSObject*) {
    const auto panel = NSOpenPanel::openPanel();
    panel->setCanChooseFiles(false);
    panel->setCanChooseDirectories(true);
    panel->setAllowsMultipleSelection(true);
    panel->beginSheetModalForWindow_completionHandler(
        view()->window(), [self = retained(this), weak = std::weak_ptr(panel)](int result) {
            const auto chosen = weak.lock();
            if (result != NSModalResponseOK || !chosen) return;
            for (const auto& url : chosen->URLs()) self->addToBookmarkWithURL(url);
            self->reloadTable();
        });
}

// The same rows of both lists, which need not have the same folders while a stored one could not be restored.
void ZRTrustedPathViewCtl::removeFolderDown(NSObject*) {
    if (!tableView_) return;
    const NSIndexSet rows = tableView_->selectedRowIndexes();
    auto folders = aryItems_;
    removeObjectsAtIndexes(folders, below(folders.size(), rows));
    setAryItems(folders);
    reloadTable();
    auto bookmarks = storedBookmarks();
    removeObjectsAtIndexes(bookmarks, below(bookmarks.size(), rows));
    store(std::move(bookmarks));
}

bool ZRTrustedPathViewCtl::commitEditing() {
    if (isAsyncLoading_) {
        KitLogError("-[ZRTrustedPathViewCtl commitEditing]", "[TRUST_PATH] isAsyncLoading return, no commit");
        return true;
    }
    PropertyList::Array bookmarks;
    for (const auto& folder : aryItems_) {
        if (!isThere(folder.path())) continue;
        if (auto data = GlobalFun::BookmarkDataForURL(folder)) bookmarks.emplace_back(std::move(*data));
    }
    storeOnDisk(std::move(bookmarks));
    return true;
}

void ZRTrustedPathViewCtl::keyDown(const NSEvent& event) {
    if (event.keyCode() == kKeyCodeDelete && !isAsyncLoading_)
        removeFolderDown(nullptr);
    else
        NSViewController::keyDown(event);
}

// The restore

void ZRTrustedPathViewCtl::asyncLoadDefaultBookMarksWithLaunch() {
    // Nothing comes of a restore after a cancel: an overlay would stay for ever.
    if (!loadingCanceled()) setIsAsyncLoading(true);
    asyncLoadDefaultsBookmarks([self = retained(this)](const Folders& restored) {
        if (!restored.empty()) {
            self->append(restored);
            self->reloadTable();
        }
        self->setIsAsyncLoading(false);
    });
}

void ZRTrustedPathViewCtl::asyncLoadDefaultsBookmarks(std::function<void(const Folders&)> completion) {
    InBackground([self = retained(this)] { return restoreDefaultsBookmarks(*self); },
                 [self = retained(this), completion = std::move(completion)](const Folders& restored) {
                     if (!self->loadingCanceled() && completion) completion(restored);
                 });
}

ZRTrustedPathViewCtl::Folders ZRTrustedPathViewCtl::restoreDefaultsBookmarks(ZRTrustedPathViewCtl& target) {
    const auto stored = NSUserDefaults::standardUserDefaults()->arrayForKey(kBookmarksKey);
    NSRunLoop::currentRunLoop().addPort_forMode(NSPort::port(), NSDefaultRunLoopMode);
    Folders restored;
    target.setLoadingItems({});
    if (!stored) return restored;
    std::unordered_set<std::string> paths;
    for (std::size_t i = 0; i < stored->size(); ++i) {
        const auto path = pathOf((*stored)[i]);
        if (!path) continue;
        target.setLastRecoverPath(path);
        target.setLastRecoverIndex(static_cast<std::int32_t>(i));
        target.updateRecoveringPath();
        const auto url = resolve(*(*stored)[i].get<NSData>(), *path);
        if (!url || !paths.insert(url->path()).second) continue;
        const auto folder = NSURL::fileURLWithPath(url->path());
        restored.push_back(folder);
        target.found(folder);
        url->startAccessingSecurityScopedResource();
    }
    return restored;
}

void ZRTrustedPathViewCtl::found(const NSURL& folder) {
    const std::lock_guard guard(lock_);
    loadingItems_.push_back(folder);
}

ZRTrustedPathViewCtl::Folders ZRTrustedPathViewCtl::loadingItems() const {
    const std::lock_guard guard(lock_);
    return loadingItems_;
}

void ZRTrustedPathViewCtl::setLoadingItems(const Folders& folders) {
    const std::lock_guard guard(lock_);
    loadingItems_ = folders;
}

std::optional<std::string> ZRTrustedPathViewCtl::lastRecoverPath() const {
    const std::lock_guard guard(lock_);
    return lastRecoverPath_;
}

void ZRTrustedPathViewCtl::setLastRecoverPath(const std::optional<std::string>& path) {
    const std::lock_guard guard(lock_);
    lastRecoverPath_ = path;
}

// The overlay

void ZRTrustedPathViewCtl::setIsAsyncLoading(bool isLoading) {
    if (isLoading == isAsyncLoading_) return;
    isAsyncLoading_ = isLoading;
    refreshLoadingUI();
}

void ZRTrustedPathViewCtl::refreshLoadingUI() {
    const auto indicator = loadingIndicator();
    const auto overlay = loadingBgView();
    // Those beside the list, which the overlay does not cover.
    if (isViewLoaded())
        for (const auto& subview : view()->subviews())
            if (const auto button = std::dynamic_pointer_cast<NSButton>(subview))
                button->setEnabled(!isAsyncLoading_);
    if (!isAsyncLoading_) {
        if (indicator) indicator->stopAnimation(nullptr);
        if (overlay) overlay->setHidden(true);
        return;
    }
    if (overlay) overlay->setHidden(false);
    if (indicator) indicator->startAnimation(nullptr);
    if (const auto tips = lblLoadingTips())
        tips->setStringValue(KitLocalizedString("Recovering directory permissions, please wait...."));
    updateRecoveringPath();
}

// The restore may reach folders faster than the main thread shows them: one block at a time is enough, since it
// shows the last of them.
void ZRTrustedPathViewCtl::updateRecoveringPath() {
    if (!NSThread::isMainThread()) {
        if (willShowPath_.exchange(true)) return;
        OnMainQueue([self = retained(this)] {
            self->willShowPath_ = false;
            self->updateRecoveringPath();
        });
        return;
    }
    if (const auto label = lblLoadingPath()) label->setStringValue(lastRecoverPath().value_or(""));
}

// The folder that the restore was working on when the user lost patience is not tried again at the next launch.
// One that has not reached any folder yet counts as working on the first.
void ZRTrustedPathViewCtl::loadingCancelClick(NSObject*) {
    setLoadingCanceled(true);
    setIsAsyncLoading(false);
    auto bookmarks = storedBookmarks();
    const std::int32_t index = lastRecoverIndex();
    if (index >= 0 && static_cast<std::size_t>(index) < bookmarks.size()) {
        bookmarks.erase(bookmarks.begin() + index);
        store(std::move(bookmarks));
    }
    Folders found;
    {
        const std::lock_guard guard(lock_);
        found.swap(loadingItems_);
    }
    if (found.empty()) return;
    append(found);
    reloadTable();
}

// Authorising

bool ZRTrustedPathViewCtl::tryToAuthorizeDirs(const std::vector<std::string>& folders) {
    const auto& manager = NSFileManager::defaultManager();
    std::vector<std::string> wanted;
    for (const auto& folder : folders) {
        if (wanted.size() >= kMostToAuthorize) break;
        if (folder.empty() || std::ranges::find(wanted, folder) != wanted.end()) continue;
        if (manager.fileExistsAtPath(folder) && !manager.isWritableFileAtPath(folder)) wanted.push_back(folder);
    }
    if (wanted.empty()) return true;
    if (!confirmsAuthorizing()) return false;
    for (const auto& folder : wanted) {
        const auto panel = NSOpenPanel::openPanel();
        panel->setPrompt("Authorize");
        panel->setCanChooseDirectories(true);
        panel->setAllowsMultipleSelection(false);
        panel->setCanChooseFiles(false);
        panel->setDirectoryURL(NSURL::fileURLWithPath(folder));
        if (panel->runModal() != NSModalResponseOK) return false;
        const auto chosen = panel->URL();
        if (const auto shared = sharedInstance(); shared && chosen) shared->addToBookmarkWithURL(*chosen);
    }
    return true;
}

bool ZRTrustedPathViewCtl::tryToAuthorizeFoldeWithFileList(const std::vector<File>& files) {
    std::vector<std::string> folders;
    std::unordered_set<std::string> known;
    for (const auto& file : files) {
        const std::string path = pathOf(file);
        if (path.empty()) continue;
        auto folder = stringByDeletingLastPathComponent(path);
        if (known.insert(folder).second) folders.push_back(std::move(folder));
    }
    return tryToAuthorizeDirs(folders);
}

} // namespace zr
