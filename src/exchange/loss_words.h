// SPDX-License-Identifier: Apache-2.0
// What is said of values that a target lost or changed: a sentence for editors, a technical text
// for whoever looks closer.
#pragma once

#include <trellant/exchange/carried_part.h>

#include <string>
#include <string_view>

namespace trellant::exchange {

/// What is not heard is informational.
[[nodiscard]] AAFUnsupportedFeature::Severity severityOf(Feature feature) noexcept;
[[nodiscard]] AAFUnsupportedFeature::Severity severityOf(PlanLoss::Kind kind) noexcept;

/// Whether the clip is not in the session; else it is there and is another.
[[nodiscard]] bool isLeftOut(PlanLoss::Kind kind) noexcept;

/// `carriage` is `lost` or `metadata`.
[[nodiscard]] std::string sentenceOf(Feature feature, Carriage carriage);
/// A sentence about a clip's fade as one about its `which`: "fade-in" or "fade-out".
[[nodiscard]] std::string ofOneFade(std::string sentence, std::string_view which);
[[nodiscard]] std::string sentenceOf(PlanLoss::Kind kind);
/// Of a value that is written as the nearest one that the format can hold.
[[nodiscard]] std::string changeSentence(Feature feature);
[[nodiscard]] std::string roundingSentence(const Rounding& rounding);
[[nodiscard]] std::string sourceRoundingSentence(const Rounding& rounding);

/// "clip gain 0.5: not in otio but as metadata".
[[nodiscard]] std::string technicalText(Feature feature, const std::string& value,
                                        ExportFormat format);
[[nodiscard]] std::string technicalText(PlanLoss::Kind kind);
/// "curves of fades: logarithmic is written to dawproject as linear".
[[nodiscard]] std::string technicalChange(Feature feature, const std::string& from,
                                          const std::string& to, ExportFormat format);
/// "places and lengths of clips: 12 times are not whole samples at 48000 Hz, the largest error is
/// 0.5 samples".
[[nodiscard]] std::string roundingText(Feature feature, const Rounding& rounding,
                                       std::int64_t rate);

/// Shortest text that reads back as the same number.
[[nodiscard]] std::string numberText(double value);
/// "3 points".
[[nodiscard]] std::string pointsText(std::size_t count);
/// "2400 samples at 48000 Hz".
[[nodiscard]] std::string samplesText(Samples count, std::int64_t rate);
/// "linear", the file's own name for a curve that is not known.
[[nodiscard]] std::string curveName(const AAFAutomationInterpolation& curve);

}  // namespace trellant::exchange
