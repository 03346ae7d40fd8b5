// SPDX-License-Identifier: Apache-2.0
// The answers that the misbehaving worker gives, for itself and for the tests that expect them.
#pragma once

#include <string>
#include <string_view>

namespace trellant::testing {

/// A timeline at 25 frames with nothing on it but a name; the name as JSON has it, without quotes.
[[nodiscard]] inline std::string timelineText(std::string_view compositionName,
                                              std::string_view events = "[]") {
    constexpr std::string_view rate =
        R"({"dropFrame":false,"exactRate":{"denominator":1,"numerator":25},)"
        R"("nominalFramesPerSecond":25})";
    std::string text = R"({"clock":{"editRate":{"denominator":1,"numerator":25},"timecodeRate":)";
    text.append(rate)
        .append(R"(,"timelineZero":{"frames":0,"hours":1,"minutes":0,"rate":)")
        .append(rate)
        .append(R"(,"seconds":0}},"compositionName":")")
        .append(compositionName)
        .append(R"(","essences":[],"events":)")
        .append(events)
        .append(R"(,"sourceAAF":"file:\/\/\/film.omf","tracks":[],"unsupportedFeatures":[]})");
    return text;
}

/// A whole result; `diagnostics` are the members of a JSON list.
[[nodiscard]] inline std::string resultText(std::string_view timeline,
                                            std::string_view diagnostics = "",
                                            std::string_view protocolVersion = "1") {
    return std::string(R"({"diagnostics":[)")
        .append(diagnostics)
        .append(R"(],"protocolVersion":)")
        .append(protocolVersion)
        .append(R"(,"timeline":)")
        .append(timeline)
        .append("}");
}

/// Bytes of each flood, on each stream.
inline constexpr std::size_t floodSize = 200'000'000;
/// Bytes of the flood of the error stream that has no line feed.
inline constexpr std::size_t lineFloodSize = std::size_t{1} << 28;
/// What follows a flood of the error stream. Lines of one letter are never cut in two, wherever a
/// reader's piece ends.
inline constexpr std::string_view linesAfterFlood = "\na\nb\nc\nd\ne\nf\ng\nh\n";

}  // namespace trellant::testing
