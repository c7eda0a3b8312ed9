// SPDX-License-Identifier: MIT
#pragma once

#include <AppKit/NSProgressIndicator.h>
#include <AppKit/NSTableView.h>
#include <AppKit/NSTextField.h>
#include <AppKit/NSViewController.h>
#include <Base/Compiler.h>
#include <Foundation/NSURL.h>
#include <ZRUIKit/MASPreferencesWindowController.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_set>
#include <variant>
#include <vector>

namespace zr {

// A host's own object that stands for a file.
class FileItem {
public:
    virtual ~FileItem() = default;
    virtual std::string filePath() const = 0;
};

// The folders that the user trusts the application with, kept in the user defaults under "BookmarksKey" as one
// bookmark for each, and the preferences pane that lists them.
//
// A host makes one at launch: 0.3 s later the stored folders are restored in the background, whether or not the
// pane is shown, and access to each is started, which lasts until the program ends. Until that is done an
// overlay covers the list, and commits store nothing. What fails is logged and left where it is; it leaves
// the store with the first commit after a restore that has ended or was cancelled. The preferences window
// commits when it is closed or shows another pane; at the end of the program it is for the host to do that.
//
// Main thread only, but for restoreDefaultsBookmarks() and updateRecoveringPath().
class ZR_EXPORT ZRTrustedPathViewCtl : public NSViewController,
                                       public MASPreferencesViewController,
                                       public NSTableViewDataSource,
                                       public NSTableViewDelegate {
public:
    ZR_CLASS(ZRTrustedPathViewCtl, NSViewController)
    using Folders = std::vector<NSURL>;
    using File = std::variant<std::string, std::shared_ptr<NSObject>>; // a path, or a FileItem

    bool init() override; // from the interface file "ZRTrustedPathViewCtl" of the kit
    void viewDidLoad() override;
    void awakeFromNib() override;

    // The one that was made last; held for ever. Null before there is one.
    static std::shared_ptr<ZRTrustedPathViewCtl> sharedInstance();

    // The folders that are trusted now, in the order in which they were added.
    const Folders& aryItems() const { return aryItems_; }
    void setAryItems(Folders folders); // neither the table nor the store is told
    Folders itemList() const { return aryItems_; }
    // Whether a folder of the same path is among them, letter by letter.
    bool isExsistWithUrl(const NSURL& url) const;

    // Trusts the folder, and stores it at once. Nothing happens where there is nothing at its path; of a folder
    // that is trusted already a line in the log is all. One that cannot be stored is trusted until the program
    // ends.
    void addToBookmarkWithPath(const std::string& path);
    void addToBookmarkWithURL(const NSURL& url);

    // Asks the user to authorise the folders which are there but not writable, each in a panel of its own, but
    // not more than five. False when the user cancels; what was authorised before that stays. Adds what the
    // user picks, which may be another folder, to the shared instance; true does not tell that a folder can be
    // written to now. Returns when the dialogs are gone.
    static bool tryToAuthorizeDirs(const std::vector<std::string>& folders);
    // The same for the folders in which the files are; other objects and empty paths do not count.
    static bool tryToAuthorizeFoldeWithFileList(const std::vector<File>& files);

    // Resolves what is stored, starts access to each folder, and answers them; reports each to the target. From
    // any thread; takes as long as the file systems do.
    static Folders restoreDefaultsBookmarks(ZRTrustedPathViewCtl& target);
    // The restore at launch, which replaces nothing: what it finds comes after what is trusted already.
    virtual void asyncLoadDefaultBookMarksWithLaunch();
    // Restores in the background. After a cancel the result is dropped, and the completion not called.
    virtual void asyncLoadDefaultsBookmarks(std::function<void(const Folders&)> completion);

    bool isAsyncLoading() const { return isAsyncLoading_; } // a restore has not ended, nor been cancelled
    void setIsAsyncLoading(bool isLoading);
    virtual void refreshLoadingUI();
    // Shows in the overlay where the restore is. From any thread: off the main thread that happens soon.
    virtual void updateRecoveringPath();

    // Actions.
    virtual void loadingCancelClick(NSObject* sender); // forgets the stored folder that was being restored
    virtual void addFolderDown(NSObject* sender);      // opens a panel over the window
    // The selected rows, of the table and, by number, of the store, which is right again with the next commit.
    virtual void removeFolderDown(NSObject* sender);

    // Stores the folders that are there; while they are being restored nothing. True. Every other stored folder
    // is forgotten: one that could not be restored or is silent, and after a cancel those that were not
    // reached.
    bool commitEditing() override;
    void keyDown(const NSEvent& event) override; // Delete removes the selected rows

    std::string identifier() const override { return "TrustedViewController"; }
    std::shared_ptr<NSImage> toolbarItemImage() const override;
    std::string toolbarItemLabel() const override;

    long numberOfRowsInTableView(NSTableView& table) override;
    std::string tableView_objectValueForTableColumn_row(NSTableView& table, NSTableColumn& column,
                                                        long row) override;

    // What the restore in the background shares with the main thread; from any thread.
    bool loadingCanceled() const { return loadingCanceled_; } // never reset
    void setLoadingCanceled(bool canceled) { loadingCanceled_ = canceled; }
    std::int32_t lastRecoverIndex() const { return lastRecoverIndex_; } // in the stored array
    void setLastRecoverIndex(std::int32_t index) { lastRecoverIndex_ = index; }
    Folders loadingItems() const; // found so far
    void setLoadingItems(const Folders& folders);
    std::optional<std::string> lastRecoverPath() const;
    void setLastRecoverPath(const std::optional<std::string>& path);

    // Outlets.
    const std::shared_ptr<NSTableView>& tableView() const { return tableView_; }
    void setTableView(const std::shared_ptr<NSTableView>& table) { tableView_ = table; }
    std::shared_ptr<NSView> loadingBgView() const { return loadingBgView_.lock(); }
    void setLoadingBgView(const std::shared_ptr<NSView>& view) { loadingBgView_ = view; }
    std::shared_ptr<NSProgressIndicator> loadingIndicator() const { return loadingIndicator_.lock(); }
    void setLoadingIndicator(const std::shared_ptr<NSProgressIndicator>& spinner) {
        loadingIndicator_ = spinner;
    }
    std::shared_ptr<NSTextField> lblLoadingTips() const { return lblLoadingTips_.lock(); }
    void setLblLoadingTips(const std::shared_ptr<NSTextField>& label) { lblLoadingTips_ = label; }
    std::shared_ptr<NSTextField> lblLoadingPath() const { return lblLoadingPath_.lock(); }
    void setLblLoadingPath(const std::shared_ptr<NSTextField>& label) { lblLoadingPath_ = label; }

private:
    void append(const Folders& folders);
    void reloadTable();
    void found(const NSURL& folder);

    std::shared_ptr<NSTableView> tableView_;
    std::weak_ptr<NSView> loadingBgView_;
    std::weak_ptr<NSProgressIndicator> loadingIndicator_;
    std::weak_ptr<NSTextField> lblLoadingTips_;
    std::weak_ptr<NSTextField> lblLoadingPath_;
    Folders aryItems_;
    std::unordered_set<std::string> paths_; // of aryItems_
    bool isAsyncLoading_ = false;

    std::atomic<bool> loadingCanceled_ = false;
    std::atomic<std::int32_t> lastRecoverIndex_ = 0;
    std::atomic<bool> willShowPath_ = false;
    mutable std::mutex lock_;
    std::optional<std::string> lastRecoverPath_; // guarded by lock_
    Folders loadingItems_;                       // guarded by lock_
};

} // namespace zr
