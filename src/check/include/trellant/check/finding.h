// SPDX-License-Identifier: Apache-2.0
// What a rule found: a sentence for an editor, and the same as values for programs.
#pragma once

#include <trellant/model/rational.h>

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

/// How much a finding weighs, the least first.
enum class Severity { info, warning, error };
inline constexpr std::array<Severity, 3> allSeverities{Severity::info, Severity::warning,
                                                       Severity::error};

/// "info", "warning", "error".
[[nodiscard]] std::string_view severityWord(Severity severity) noexcept;

/// A value as it is compared.
struct FindingValue {
    /// "44100", "embedded"; a stranger's text where a name was compared.
    std::string text{};
    /// The same where it is a number, in the finding's unit.
    std::optional<AAFRational> number{};
    bool operator==(const FindingValue&) const = default;
};

struct Finding {
    /// What was found, what was wanted, what to do; in English. Holds strangers' names, which
    /// cannot end a line or move a cursor.
    std::string sentence{};
    /// Name of the track, and its number in the composition, from 1.
    std::optional<std::string> track{};
    std::optional<std::int64_t> trackNumber{};
    std::optional<std::string> clip{};
    /// That is the name of the clip's master mob, for want of its own.
    bool isClipNamedByMasterMob = false;
    /// What a person calls the source.
    std::optional<std::string> audioFile{};
    /// Timeline seconds.
    std::optional<AAFRational> start{};
    std::optional<AAFRational> duration{};
    /// The place in the file: "CMOB[12]/slot[34]/SCLP[56]".
    std::optional<std::string> objectPath{};
    FindingValue found{};
    FindingValue wanted{};
    /// "s", "Hz", "bits", "fps", "frames", "bytes", "samples", "dB"; empty where there is none.
    std::string unit{};
    /// Why a profile accepts it; absent where it counts.
    std::optional<std::string> acceptedBecause{};
    bool operator==(const Finding&) const = default;
};

}  // namespace check
}  // namespace trellant
