// SPDX-License-Identifier: MIT
#include "SaveFolder.h"
#include "SavePlace.h"

#include <AppKit/NSOpenPanel.h>
#include <Foundation/NSFileManager.h>
#include <Foundation/NSString.h>
#include <ZRUIKit/KitFoundation.h>
#include <ZRUIKit/ZRAlert.h>
#include <ZRUIKit/ZRTrustedPathViewCtl.h>

#include <system_error>

namespace trimstudio {

using namespace zr;

namespace {

namespace fs = std::filesystem;

bool canBeWrittenTo(const fs::path& folder) {
    return NSFileManager::defaultManager().isWritableFileAtPath(folder / "");
}

std::optional<fs::path> askForAnother(const fs::path& recording, const fs::path& folder) {
    bool choosesAnother = false;
    ZRAlert::Actions_title_info_accessoryView(
        {ZRAlertAction::actionWithTitle_block(AppLocalizedString("Choose Folder…"),
                                              [&] { choosesAnother = true; }),
         ZRAlertAction::CANCEL(nullptr)},
        stringWithFormat(AppLocalizedString("“%@” cannot be saved in “%@”."), recording.filename().string(),
                         folder.string()),
        AppLocalizedString(
            "The folder is missing or may not be written to. Choose another one for this recording."),
        nullptr);
    if (!choosesAnother) return std::nullopt;
    const auto panel = NSOpenPanel::openPanel();
    panel->setPrompt(AppLocalizedString("Choose"));
    panel->setCanChooseFiles(false);
    panel->setCanChooseDirectories(true);
    panel->setDirectoryURL(NSURL::fileURLWithPath(folder.native()));
    if (panel->runModal() != NSModalResponseOK || !panel->URL()) return std::nullopt;
    return panel->URL()->path();
}

} // namespace

std::optional<fs::path> askForSavePlace(const fs::path& recording) {
    std::error_code gone;
    fs::path folder = saveFolder().value_or(fs::absolute(recording, gone).parent_path());
    if (canBeWrittenTo(folder)) return folder;
    const auto trusted = ZRTrustedPathViewCtl::sharedInstance();
    const std::size_t known = trusted->aryItems().size();
    if (!ZRTrustedPathViewCtl::tryToAuthorizeDirs({folder.native()})) return std::nullopt;
    // A plain folder cannot be written to because somebody authorised it, and the user may have picked another.
    // One above it was meant to open this one, not to take the copy.
    if (!canBeWrittenTo(folder) && trusted->aryItems().size() > known) {
        const fs::path picked = trusted->aryItems().back().path(),
                       fromThere = folder.lexically_relative(picked);
        if (!fromThere.empty() && *fromThere.begin() == ".." && canBeWrittenTo(picked)) return picked;
    }
    while (!canBeWrittenTo(folder)) {
        const auto another = askForAnother(recording, folder);
        if (!another) return std::nullopt;
        folder = *another;
    }
    return folder;
}

} // namespace trimstudio
