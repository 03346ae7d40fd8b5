// SPDX-License-Identifier: Apache-2.0
// Text of session files: gathered into large pieces on its way out, numbers that read back the same
// in any locale, and names that fit one line.
#pragma once

#include <trellant/compound/byte_source.h>
#include <trellant/exchange/export_plan.h>
#include <trellant/model/rational.h>
#include <trellant/sessions/session.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant::sessions {

class TextOutput {
  public:
    /// `sink` must outlive the output.
    explicit TextOutput(const compound::ByteSink& sink) : sink_(sink) {}

    template <class... Parts>
    void add(const Parts&... parts) {
        (text_.append(parts), ...);
        if (text_.size() >= pieceSize) {
            flush();
        }
    }
    /// Hands the rest to the sink.
    void flush();

  private:
    static constexpr std::size_t pieceSize = 65536;

    const compound::ByteSink& sink_;
    std::string text_;
};

/// The fewest digits that read back the same, with a point: plain from 1e-9 to below 1e17, with an
/// exponent beyond. A value that is not finite becomes the nearest that is, not-a-number 0.
[[nodiscard]] std::string numberText(double value);

[[nodiscard]] double secondsOf(exchange::Samples samples, std::int64_t rate) noexcept;

/// Seconds from the beginning of what is `length` samples long to the point at `fraction` of it; of
/// any rate for `fraction`, what `length` comes to at that rate.
[[nodiscard]] double secondsAt(const AAFRational& fraction, exchange::Samples length,
                               std::int64_t rate) noexcept;

/// The second of a media file at which its sample `sample` lies.
[[nodiscard]] double mediaSeconds(std::int64_t sample, const AAFRational& sampleRate) noexcept;

/// What a remark says where nothing else shows its track: "Atmo: This stretch is silent."
[[nodiscard]] std::string remarkText(const Session& session, const SessionMarker& marker);

/// More bytes than any text form of the session has.
[[nodiscard]] std::uint64_t mostTextBytes(const Session& session);

/// "01:00:00;00, 29.97 fps drop-frame": the label of a session's first sample, for a person.
[[nodiscard]] std::string startText(const AAFTimecodeAddress& start);

}  // namespace trellant::sessions
