// SPDX-License-Identifier: Apache-2.0
// What a worker adds to its answer when a request asks for it by name. Without such a wish nothing
// of this is written, so older hosts see what they always saw; a name that a worker does not know
// is passed over, so newer hosts ask and look what came.
#pragma once

#include <trellant/base/boxed.h>
#include <trellant/model/loss_kind.h>
#include <trellant/model/rational.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct AAFWorkerExtensions {
    /// The names by which a request asks for them, which are also their keys in the answer.
    static constexpr std::string_view lossPlacesName = "lossPlaces";
    static constexpr std::string_view compositionsName = "compositions";
    static constexpr std::string_view embeddedMediaName = "embeddedMedia";
    static constexpr std::string_view datesName = "dates";
    static constexpr std::string_view reelsName = "reels";
    static constexpr std::string_view contentsName = "contents";
    static constexpr std::string_view masterMobsName = "masterMobs";
    static constexpr std::string_view provenanceName = "provenance";
    static constexpr std::string_view sampleDataName = "sampleData";
    /// Without this one a file of OMF 1.x is refused.
    static constexpr std::string_view omf1Name = "omf1";

    /// Where on the timeline a loss lies.
    struct LossPlace {
        LossKind kind = LossKind::other;
        /// The track, absent for what belongs to none: the id that its AAFTrackState has or would
        /// have, its name, and its place among the composition's slots, from 0.
        std::optional<std::string> trackID{};
        std::optional<std::string> trackName{};
        std::optional<std::int64_t> trackIndex{};
        /// The stretch that does not sound as meant, in seconds from the timeline's zero.
        std::optional<AAFRational> start{};
        std::optional<AAFRational> duration{};
        /// Of a transition that became a cut: where the cut lies, in the same seconds.
        std::optional<AAFRational> cut{};
        /// The Source Clip concerned, as an object number of the file, and its name.
        std::optional<std::int64_t> clipObject{};
        std::optional<std::string> clipName{};
        bool operator==(const LossPlace&) const = default;
    };

    /// One place for each of the timeline's `unsupportedFeatures`, in their order.
    struct LossPlaces {
        std::vector<LossPlace> places{};
        bool operator==(const LossPlaces&) const = default;
    };

    /// A composition of the file.
    struct Composition {
        /// Its object number.
        std::int64_t object = 0;
        std::optional<std::string> name{};
        /// "0000002A-00000001-FFFFFFFF"; absent when it has none.
        std::optional<std::string> mobID{};
        /// Slots of all kinds, not only audio.
        std::int64_t slotCount = 0;
        /// The one that the timeline was made of.
        bool isRead = false;
        bool operator==(const Composition&) const = default;
    };

    /// All of them, the one that is read first. Absent where their names and lists of slots are
    /// beyond the bounds of a request.
    struct Compositions {
        std::vector<Composition> compositions{};
        bool operator==(const Compositions&) const = default;
    };

    /// A source that shared its file with others and was taken out once more, into one of its own.
    struct SeparateFile {
        std::string essenceID{};
        /// In the work directory; absent when its audio could not be taken out.
        std::optional<std::string> path{};
        bool operator==(const SeparateFile&) const = default;
    };

    /// Audio inside the file that the timeline alone does not account for.
    struct EmbeddedMedia {
        /// How many pieces of audio no source of the timeline is, and the names of the first few
        /// ("object 12" for one without).
        std::int64_t unusedCount = 0;
        std::vector<std::string> unusedNames{};
        /// Of sources whose names left no free file name, so that one overwrote the other.
        std::vector<SeparateFile> separateFiles{};
        bool operator==(const EmbeddedMedia&) const = default;
    };

    /// When what happened to the file, as it says itself.
    struct Dates {
        /// Seconds since 1970-01-01 00:00:00; the file does not tell reliably of which zone.
        std::optional<std::int64_t> lastModified{};
        bool operator==(const Dates&) const = default;
    };

    /// The labels of a reel.
    struct ReelTimecode {
        /// The label of the reel's zero, in frames from 00:00:00:00.
        std::int64_t start = 0;
        /// Frames that labels count in a second.
        std::int64_t framesPerSecond = 25;
        bool dropFrame = false;
        /// Of the track that has the labels, in edit units per second: the true rate of the frames,
        /// the rounded one, or that of something else.
        std::optional<AAFRational> editRate{};
        bool operator==(const ReelTimecode&) const = default;
    };

    /// The tape or film that an essence was recorded from.
    struct Reel {
        std::string essenceID{};
        std::string mobID{};
        std::optional<std::string> name{};
        /// Where the essence's first sample lies, in seconds from the reel's zero.
        AAFRational start{};
        std::optional<ReelTimecode> timecode{};
        bool operator==(const Reel&) const = default;
    };

    /// Of the essences that the file names a reel for, in their order. Absent where its lists and
    /// names are beyond the bounds of a request.
    struct Reels {
        std::vector<Reel> reels{};
        bool operator==(const Reels&) const = default;
    };

    /// The mob that a file's audio has in the edit, under the name that editors know.
    struct MasterMob {
        std::string mobID{};
        std::optional<std::string> name{};
        bool operator==(const MasterMob&) const = default;
    };

    /// Absent where its names are beyond the bounds of a request.
    struct MasterMobs {
        /// Those that clips play.
        std::vector<MasterMob> masterMobs{};
        /// For each of the timeline's events, in their order: the place in `masterMobs` of the one
        /// that it plays, -1 where it plays none.
        std::vector<std::int64_t> ofEvents{};
        bool operator==(const MasterMobs&) const = default;
    };

    /// How much audio an embedded essence holds.
    struct MediaLength {
        std::string essenceID{};
        /// Samples of one channel, as the audio's own header tells.
        std::int64_t frames = 0;
        bool operator==(const MediaLength&) const = default;
    };

    /// What the file holds that the timeline does not say.
    struct Contents {
        /// Of the embedded essences whose header tells, in their order.
        std::vector<MediaLength> mediaLengths{};
        /// Pieces of embedded audio that no source of the timeline is, the names of the first few,
        /// and their bytes.
        std::int64_t unusedMedia = 0;
        std::vector<std::string> unusedNames{};
        std::int64_t unusedBytes = 0;
        /// Effects whose rendered result is played in their place.
        std::int64_t renderedEffects = 0;
        /// Groups of tracks within a track.
        std::int64_t nestedGroups = 0;
        bool operator==(const Contents&) const = default;
    };

    /// The file is OMF 1.x and was read as far as its structure is known; absent for OMF 2.
    struct OlderModel {
        /// "1.0", or "1.x" where the file does not say.
        std::string version{};
        bool operator==(const OlderModel&) const = default;
    };

    /// A program that had its hand in the file.
    struct Application {
        std::optional<std::string> company{};
        std::optional<std::string> product{};
        std::optional<std::string> version{};
        bool operator==(const Application&) const = default;
    };

    /// Where the file comes from, and what reading it took.
    struct Provenance {
        /// Of the container, "2.0".
        std::string containerVersion{};
        /// Of the object model, "2.0"; absent where the header does not say.
        std::optional<std::string> modelVersion{};
        /// Values stand with their most significant byte first.
        bool bigEndian = false;
        /// In the order in which they saved the file.
        std::vector<Application> applications{};
        /// The most memory that the worker had at once so far, in bytes; absent where the system
        /// does not say.
        std::optional<std::int64_t> peakMemory{};
        bool operator==(const Provenance&) const = default;
    };

    /// A stretch of the file, in bytes.
    struct SamplePiece {
        std::int64_t offset = 0;
        std::int64_t length = 0;
        bool operator==(const SamplePiece&) const = default;
    };

    /// Where the samples of an embedded essence lie in the file.
    struct Samples {
        std::string essenceID{};
        /// Bytes of one sample of one channel; 1 where they are compressed.
        std::int64_t sampleBytes = 1;
        /// Samples have their most significant byte first; those of one byte are signed.
        bool bigEndian = false;
        std::vector<SamplePiece> pieces{};
        bool operator==(const Samples&) const = default;
    };

    /// Of the embedded essences whose samples can be found from the head of their audio.
    struct SampleData {
        std::vector<Samples> samples{};
        bool operator==(const SampleData&) const = default;
    };

    Boxed<LossPlaces> lossPlaces{};
    Boxed<Compositions> compositions{};
    Boxed<EmbeddedMedia> embeddedMedia{};
    Boxed<Dates> dates{};
    Boxed<Reels> reels{};
    Boxed<Contents> contents{};
    Boxed<MasterMobs> masterMobs{};
    Boxed<Provenance> provenance{};
    Boxed<SampleData> sampleData{};
    Boxed<OlderModel> omf1{};
    bool operator==(const AAFWorkerExtensions&) const = default;
};

}  // namespace trellant
