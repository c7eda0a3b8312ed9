// SPDX-License-Identifier: MIT
#pragma once

namespace trimstudio {

// In a finished MP4 or QuickTime file, ends what is shown of each track `seconds` after the beginning, where
// it went on longer. The pictures after that stay in the file, as others may be computed from them. False if
// the file is not built as expected or cannot be changed; then nothing is wrong with it but its length.
bool limitEditLists(int descriptor, double seconds);

} // namespace trimstudio
