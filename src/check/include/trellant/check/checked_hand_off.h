// SPDX-License-Identifier: Apache-2.0
// One look at a hand-off, made once for all rules: clips by track and place, their sources with
// what is known of them, object paths. Rules read nothing else, and no file.
#pragma once

#include <trellant/check/sound_facts.h>
#include <trellant/handoff/clip_name.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/sources.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {
namespace check {

/// What is known of the file as a whole.
struct FileFacts {
    /// Its name without folders.
    std::string name{};
    std::uint64_t bytes = 0;
    /// 2 for OMF 2.x, 1 for 1.x.
    int objectModel = 2;
};

struct CheckedClip {
    const AAFClipEvent* event = nullptr;
    ClipName name{};
    /// Positions in sources() and tracks().
    std::size_t source = 0;
    std::size_t track = 0;
    AAFRational end{};
    /// The first sample of its source behind those that it plays.
    std::int64_t sourceEnd = 0;
};

struct CheckedTrack {
    const AAFTrackState* state = nullptr;
    /// Its clips in clips(), by ascending start.
    std::size_t firstClip = 0;
    std::size_t clipCount = 0;
};

struct CheckedSource {
    const AAFSourceEssence* essence = nullptr;
    SourceState state = SourceState::missing;
    /// Clips that play it, and the first of them in clips().
    std::size_t clips = 0;
    std::optional<std::size_t> firstClip{};
    /// Samples of one channel, where the audio's header tells.
    std::optional<std::int64_t> frames{};
    /// What was heard; null where nobody listened, or nothing could be heard.
    const HeardSource* heard = nullptr;
};

class CheckedHandOff {
  public:
    /// `handOff` is usable, as readHandOff gives it; it and `sound` (null: nobody listened) must
    /// outlive this. Clips without a track or a source, which a usable timeline has none of, are
    /// left out.
    CheckedHandOff(const HandOff& handOff, FileFacts file, const SoundFacts* sound = nullptr);

    [[nodiscard]] const HandOff& handOff() const noexcept { return handOff_; }
    [[nodiscard]] const AAFTimeline& timeline() const noexcept { return handOff_.timeline; }
    [[nodiscard]] const FileFacts& file() const noexcept { return file_; }
    /// Whether somebody listened to the audio.
    [[nodiscard]] bool hasSound() const noexcept { return hasSound_; }

    /// As the timeline has them.
    [[nodiscard]] const std::vector<CheckedTrack>& tracks() const noexcept { return tracks_; }
    [[nodiscard]] const std::vector<CheckedSource>& sources() const noexcept { return sources_; }
    /// By track, then by ascending start, then as the timeline has them.
    [[nodiscard]] const std::vector<CheckedClip>& clips() const noexcept { return clips_; }
    [[nodiscard]] std::span<const CheckedClip> clipsOf(const CheckedTrack& track) const {
        return std::span(clips_).subspan(track.firstClip, track.clipCount);
    }
    [[nodiscard]] const CheckedSource& sourceOf(const CheckedClip& clip) const {
        return sources_[clip.source];
    }
    [[nodiscard]] const CheckedTrack& trackOf(const CheckedClip& clip) const {
        return tracks_[clip.track];
    }

    /// Frames per second that the composition counts in.
    [[nodiscard]] const AAFRational& frameRate() const noexcept { return frameRate_; }
    /// The timeline second of a label of the clock; absent where the text is no such label. Before
    /// the timeline's zero it is negative.
    [[nodiscard]] std::optional<AAFRational> secondsOf(const std::string& timecode) const;

    /// "CMOB[12]/slot[34]", and with the clip "CMOB[12]/slot[34]/SCLP[56]"; absent where the ids of
    /// the timeline do not tell.
    [[nodiscard]] std::optional<std::string> pathOf(const CheckedTrack& track) const;
    [[nodiscard]] std::optional<std::string> pathOf(const CheckedClip& clip) const;

  private:
    void addTracks();
    void addSources(const SoundFacts* sound);
    void addClips(const Sources& sources);

    const HandOff& handOff_;
    FileFacts file_;
    bool hasSound_ = false;
    AAFRational frameRate_{};
    std::vector<CheckedTrack> tracks_{};
    std::vector<CheckedSource> sources_{};
    std::vector<CheckedClip> clips_{};
};

}  // namespace check
}  // namespace trellant
