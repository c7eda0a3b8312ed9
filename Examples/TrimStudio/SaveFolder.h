// SPDX-License-Identifier: MIT
#pragma once

#include <filesystem>
#include <optional>

namespace trimstudio {

// Where trimmed recordings are saved: kept in the user defaults under "SaveFolder", as text or, where the name
// is none, as bytes. Nothing: beside each recording.
std::optional<std::filesystem::path> saveFolder();
void setSaveFolder(const std::optional<std::filesystem::path>& folder);

} // namespace trimstudio
