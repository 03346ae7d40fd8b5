// SPDX-License-Identifier: Apache-2.0
// What a person is shown of stem roles: which of them are outputs, and what they are called.
#pragma once

#include <trellant/model/timeline.h>

#include <array>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {

/// Every role, in declaration order.
inline constexpr std::array<AAFStemRole, 5> allStemRoles{AAFStemRole::music, AAFStemRole::sounds,
                                                         AAFStemRole::voice, AAFStemRole::other,
                                                         AAFStemRole::unclassified};

/// The roles that stems are written for. `unclassified` is none of them on purpose.
inline constexpr std::array<AAFStemRole, 4> ausgaberollen{AAFStemRole::music, AAFStemRole::sounds,
                                                          AAFStemRole::voice, AAFStemRole::other};

/// The key of the role's display name in the message catalogues. `unclassified` shares the key of
/// `other` on purpose: it has no display name of its own.
[[nodiscard]] std::string_view anzeigenameKey(AAFStemRole role) noexcept;

/// The role's display name in the language of the host's locale (localization.h); lives as long as
/// the process.
[[nodiscard]] std::string_view anzeigename(AAFStemRole role);

// The same in English.
inline constexpr const std::array<AAFStemRole, 4>& outputRoles = ausgaberollen;
[[nodiscard]] inline std::string_view displayNameKey(AAFStemRole role) noexcept {
    return anzeigenameKey(role);
}
[[nodiscard]] inline std::string_view displayName(AAFStemRole role) {
    return anzeigename(role);
}

}  // namespace trellant
