// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

namespace trimstudio {

// The folder in which a recording's copy can be saved: that of the preferences or of the recording. Where it
// may not be written to, the user is asked to authorise it, and where that does not help for another one.
// Nothing when the user cancels. Main thread only; returns when the dialogs are gone.
std::optional<std::filesystem::path> askForSavePlace(const std::filesystem::path& recording);

} // namespace trimstudio
