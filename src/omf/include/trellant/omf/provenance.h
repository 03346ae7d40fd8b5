// SPDX-License-Identifier: Apache-2.0
// Where a file comes from, as it says itself: versions, byte order, the programs that wrote it.
#pragma once

#include <trellant/omf/document.h>

#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A program that had its hand in the file.
struct OMFApplication {
    /// At most 1,024 bytes each.
    std::optional<std::string> company{};
    std::optional<std::string> product{};
    std::optional<std::string> version{};
    bool operator==(const OMFApplication&) const = default;
};

/// Identifications that are looked at: each program that saves a file may add one.
inline constexpr std::size_t mostApplications = 16;

/// "2.0", from the header object; absent where it does not say.
[[nodiscard]] std::optional<std::string> modelVersion(const OMFDocument& document);

/// The programs of the header's identifications, in their order: the one that saved the file last
/// stands last. Those that name nothing are left out.
[[nodiscard]] std::vector<OMFApplication> applications(const OMFDocument& document);

}  // namespace trellant
