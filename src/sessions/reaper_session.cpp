// SPDX-License-Identifier: Apache-2.0
// A REAPER project: chunks from "<NAME" to ">", one within the other, of lines with fields. Times
// are seconds. A lane is a track; clips are items of one take each, and overlaps sound together.
#include "name_based_uuid.h"
#include "reaper_text.h"
#include "session_text.h"

#include <trellant/exchange/format_limits.h>
#include <trellant/sessions/session.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <variant>

namespace trellant::sessions {

namespace {

/// That an item can play alone of a source, from the first on.
const std::int64_t mostChannels = exchange::mostChannels(exchange::ExportFormat::reaper);

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::PlannedTrack;
using exchange::Samples;

/// Numbers count from the bit that says that there is a colour; red has the lowest byte.
std::string_view colourOf(MarkerKind kind) noexcept {
    switch (kind) {
        case MarkerKind::soundsDifferent:
            return "16842751";
        case MarkerKind::dropped:
            return "16777471";
        case MarkerKind::changed:
            return "16842496";
    }
    return "0";
}

/// What becomes of the values of an automation on their way into an envelope.
enum class EnvelopeValues { asTheyAre, pan };

class Project {
  public:
    Project(const Session& session, const compound::ByteSink& sink)
        : session_(session),
          plan_(session.plan),
          name_(session.plan.name.value_or(session.name)),
          identity_(uuidText(nameBasedUuid("REAPER project " + name_))),
          out_(sink) {}

    void write();

  private:
    void header();
    void markers();
    void marker(std::size_t number, const SessionMarker& marker);
    void track(std::size_t position, std::size_t lane);
    void trackEnvelopes(const PlannedTrack& track, const std::string& owner);
    void item(const PlannedClip& clip, const std::string& owner);
    void take(const PlannedClip& clip);
    void fade(std::string_view word, const std::optional<PlannedFade>& fade);
    void envelope(std::string_view chunk, const AAFAutomationEnvelope& envelope, Samples length,
                  EnvelopeValues values, const std::string& owner);
    [[nodiscard]] std::int64_t channelsOf(const exchange::Lane& lane) const;
    [[nodiscard]] std::string guid(std::string_view part) const {
        return "{" + uuidText(nameBasedUuid(identity_ + " " + std::string(part))) + "}";
    }
    [[nodiscard]] std::string seconds(Samples samples) const {
        return numberText(secondsOf(samples, plan_.rate));
    }

    const Session& session_;
    const exchange::ExportPlan& plan_;
    const std::string name_;
    /// So that no two projects have the same identifiers.
    const std::string identity_;
    TextOutput out_;
};

/// 0 left, 1 right becomes -1 to 1.
double panOf(double pan) noexcept {
    return 2 * pan - 1;
}

std::string_view flag(bool value) noexcept {
    return value ? "1" : "0";
}

void Project::write() {
    header();
    markers();
    for (std::size_t i = 0; i < plan_.tracks.size(); ++i) {
        for (std::size_t lane = 0; lane < plan_.tracks[i].lanes.size(); ++lane) {
            track(i, lane);
        }
    }
    out_.add(">\n");
    out_.flush();
}

void Project::header() {
    const auto frames = static_cast<double>(plan_.start.absoluteFrameNumber());
    const AAFRational& rate = plan_.start.rate.exactRate;
    const double start =
        frames * static_cast<double>(rate.denominator()) / static_cast<double>(rate.numerator());
    out_.add("<REAPER_PROJECT 0.1 \"7.0/linux-x86_64\" ", std::to_string(session_.date), "\n");
    out_.add("  TITLE ", reaperField(name_), "\n");
    out_.add("  PANLAW 1\n");
    out_.add("  PROJOFFS ", numberText(start), " 0 0\n");
    if (const auto mode = reaperTimeMode(plan_.start.rate)) {
        out_.add("  TIMEMODE ", *mode, "\n");
    }
    out_.add("  SAMPLERATE ", std::to_string(plan_.rate), " 1 0\n");
    out_.add("  TEMPO 120 4 4\n");
}

void Project::markers() {
    for (std::size_t i = 0; i < session_.markers.size(); ++i) {
        marker(i + 1, session_.markers[i]);
    }
}

void Project::marker(std::size_t number, const SessionMarker& marker) {
    const std::string index = std::to_string(number);
    const bool isRegion = marker.length > 0;
    out_.add("  MARKER ", index, " ", seconds(marker.position), " ",
             reaperField(remarkText(session_, marker)), " ", flag(isRegion), " ",
             colourOf(marker.kind), " 1 B ", guid("marker " + index), " 0\n");
    if (isRegion) {
        out_.add("  MARKER ", index, " ", seconds(marker.position + marker.length), " \"\" 1\n");
    }
}

void Project::track(std::size_t position, std::size_t lane) {
    const PlannedTrack& planned = plan_.tracks[position];
    const std::string owner = std::to_string(position) + " " + std::to_string(lane);
    const std::string identifier = guid("track " + owner);
    out_.add("  <TRACK ", identifier, "\n");
    out_.add("    NAME ", reaperField(planned.lanes[lane].name), "\n");
    // A fader's gain multiplies that of an envelope; its pan would be added.
    const double pan = planned.panAutomation ? 0 : panOf(planned.pan.value_or(0.5));
    out_.add("    VOLPAN ", numberText(planned.gain), " ", numberText(pan), " -1 -1 1\n");
    out_.add("    MUTESOLO ", flag(planned.muted), " ", flag(planned.solo), " 0\n");
    out_.add("    NCHAN ", std::to_string(channelsOf(planned.lanes[lane])), "\n");
    out_.add("    TRACKID ", identifier, "\n");
    out_.add("    MAINSEND 1 0\n");
    trackEnvelopes(planned, owner);
    std::size_t number = 0;
    for (const PlannedClip& clip : planned.lanes[lane].clips) {
        item(clip, owner + " " + std::to_string(number));
        ++number;
    }
    out_.add("  >\n");
}

void Project::trackEnvelopes(const PlannedTrack& track, const std::string& owner) {
    if (track.gainAutomation) {
        envelope("VOLENV2", *track.gainAutomation, plan_.length, EnvelopeValues::asTheyAre,
                 "track " + owner);
    }
    if (track.panAutomation) {
        envelope("PANENV2", *track.panAutomation, plan_.length, EnvelopeValues::pan,
                 "track " + owner);
    }
}

std::int64_t Project::channelsOf(const exchange::Lane& lane) const {
    constexpr std::int64_t fewest = 2;
    std::int64_t most = fewest;
    for (const PlannedClip& clip : lane.clips) {
        if (!clip.channel) {
            most = std::max(most, std::min(plan_.media.at(clip.media).channelCount, mostChannels));
        }
    }
    // Tracks have pairs of channels.
    return most + most % 2;
}

void Project::fade(std::string_view word, const std::optional<PlannedFade>& fade) {
    // Said also where there is none: an item without these lines gets a short fade.
    const std::string_view shape = fade ? reaperFadeShape(fade->curve) : "0";
    out_.add("      ", word, " ", shape, " ", seconds(fade ? fade->length : 0), " 0 ", shape,
             " 0 0 0\n");
}

void Project::item(const PlannedClip& clip, const std::string& owner) {
    out_.add("    <ITEM\n");
    out_.add("      POSITION ", seconds(clip.start), "\n");
    out_.add("      LENGTH ", seconds(clip.length), "\n");
    out_.add("      LOOP 0\n");
    fade("FADEIN", clip.fadeIn);
    fade("FADEOUT", clip.fadeOut);
    out_.add("      MUTE ", flag(clip.muted), " 0\n");
    out_.add("      IGUID ", guid("item " + owner), "\n");
    out_.add("      NAME ", reaperField(clip.name), "\n");
    out_.add("      VOLPAN 1 0 ", numberText(clip.gain), " -1\n");
    take(clip);
    if (clip.gainAutomation) {
        envelope("VOLENV", *clip.gainAutomation, clip.length, EnvelopeValues::asTheyAre,
                 "item " + owner);
    }
    out_.add("    >\n");
}

void Project::take(const PlannedClip& clip) {
    const exchange::PlannedMedia& planned = plan_.media.at(clip.media);
    const std::string path = planned.isOffline ? planned.recordedPath.value_or(planned.fileName)
                                               : session_.media.at(clip.media).reference;
    // 0 plays all channels, 3 and 4 the first and second alone, 5 the third, and so on.
    constexpr std::int64_t firstAlone = 3;
    const std::int64_t mode =
        clip.channel ? firstAlone + std::clamp<std::int64_t>(*clip.channel, 0, mostChannels - 1)
                     : 0;
    out_.add("      SOFFS ", numberText(mediaSeconds(clip.sourceStart, planned.sampleRate)), "\n");
    out_.add("      CHANMODE ", std::to_string(mode), "\n");
    out_.add("      <SOURCE WAVE\n");
    out_.add("        FILE ", reaperField(path), "\n");
    out_.add("      >\n");
}

void Project::envelope(std::string_view chunk, const AAFAutomationEnvelope& envelope,
                       Samples length, EnvelopeValues values, const std::string& owner) {
    const bool holds =
        std::holds_alternative<AAFAutomationInterpolation::Constant>(envelope.interpolation.curve);
    const std::string_view shape = holds ? " 1\n" : " 0\n";
    out_.add("      <", chunk, "\n");
    out_.add("        EGUID ", guid(std::string(chunk) + " of " + owner), "\n");
    out_.add("        ACT 1 -1\n");
    out_.add("        VIS 1 1 1\n");
    for (const AAFAutomationPoint& point : envelope.points) {
        // The upper end of an envelope of pan, 1, is the left.
        const double value = values == EnvelopeValues::pan ? 1 - 2 * point.value : point.value;
        out_.add("        PT ", numberText(secondsAt(point.timelineOffset, length, plan_.rate)),
                 " ", numberText(value), shape);
    }
    out_.add("      >\n");
}

}  // namespace

void writeReaperSession(const Session& session, const compound::ByteSink& sink) {
    Project(session, sink).write();
}

}  // namespace trellant::sessions
