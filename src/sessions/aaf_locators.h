// SPDX-License-Identifier: Apache-2.0
// Where media files lie, as URLs. Recorded paths are those of the system that the hand-off was made
// on: "Disk:Audio:Anna.wav", "C:\Audio\Anna.wav", "\\server\audio\Anna.wav", "/audio/Anna.wav",
// a file URL, or a name alone.
#pragma once

#include <string>
#include <string_view>

namespace trellant::sessions {

/// The file URL of a recorded path; tools that find no file there look for its last component.
/// Empty for an empty path.
[[nodiscard]] std::string urlOfRecordedPath(std::string_view path);

/// `url` where a property can hold it, else that of its last component, else nothing.
[[nodiscard]] std::string urlAsWritten(std::string url);

}  // namespace trellant::sessions
