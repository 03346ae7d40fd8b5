// SPDX-License-Identifier: Apache-2.0
// What a mapping has to say beside the timeline: the records of what was lost, where on the
// timeline that lies, and the diagnostics. The one door for losses.
#pragma once

#include "object_path.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/mapper/loss_places.h>
#include <trellant/model/timeline.h>
#include <trellant/omf/older_model.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace trellant {

/// What a loss is and where it lies, within the track in hand.
struct Loss {
    LossKind kind = LossKind::other;
    std::optional<LossRange> range{};
    OMFObject clip = OMFObject::none;
};

class MappingNotes {
  public:
    /// A record's place in the list, to say more about it later.
    using RecordIndex = std::size_t;

    /// Bytes of all records and diagnostics, `bytesOfNote` for each and its words and path. Shared
    /// subtrees let a file of a few kilobytes lose millions of clips, each with a path of a
    /// kilobyte; a million losses of a real composition take a third of this.
    static constexpr std::uint64_t maximumNoteBytes = 1'073'741'824;
    static constexpr std::uint64_t bytesOfNote = 256;

    /// `placesLosses`: keep a place beside every record.
    explicit MappingNotes(bool placesLosses = false) : placesLosses_(placesLosses) {}

    /// Records that material was dropped: "omf-loss-N", informational.
    void addLoss(const Loss& loss, std::string message, const ObjectPath& at);
    /// Records that material is not rendered as meant: "omf-unsupported-N", render-affecting.
    /// N counts the records of both kinds. Neither removes duplicates. All that record
    /// or diagnose throw OMFIOError unsupported past `maximumNoteBytes`.
    void addUnsupported(const Loss& loss, std::string message, const ObjectPath& at);
    /// The same, unless an earlier call of this function recorded that path. Only this function
    /// writes such paths, so no other record can hold one. Nothing when it was recorded before.
    std::optional<RecordIndex> addUnsupportedOncePerPath(const Loss& loss, std::string message,
                                                         const ObjectPath& at);

    /// Records what a document of an older model cannot tell of the object at `at`.
    void addRemarks(const Loss& loss, std::span<const OMFRemark> remarks, const ObjectPath& at) {
        for (const OMFRemark& remark : remarks) {
            addUnsupported({remark.kind, loss.range, loss.clip}, remark.sentence, at);
        }
    }

    /// Records from now on belong to that track.
    void enterTrack(LossTrack track);
    /// What only turns out after a record was made: where the cut that it tells of lies, and the
    /// extent of the transition.
    void placeCut(RecordIndex record, const AAFRational& cut, const LossRange& range);
    /// What is wrong with the clip in hand or its source.
    [[nodiscard]] Loss lossOfClip(LossKind kind) const {
        return {.kind = kind, .range = clipRange_, .clip = clip_};
    }
    /// Takes a clip in hand.
    void enterClip(OMFObject clip, const LossRange& range);

    void diagnose(std::string line);

    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept {
        return diagnostics_;
    }
    [[nodiscard]] std::vector<AAFUnsupportedFeature> takeUnsupported() noexcept {
        return std::move(unsupported_);
    }
    /// One for each record, without the names of clips; none when no places are kept.
    [[nodiscard]] std::vector<LossPlace> takePlaces() noexcept { return std::move(places_); }

  private:
    void count(std::uint64_t bytes);
    void add(std::string_view id, AAFUnsupportedFeature::Severity severity, const Loss& loss,
             std::string message, std::string at);

    bool placesLosses_;
    Boxed<LossTrack> track_;
    OMFObject clip_ = OMFObject::none;
    std::optional<LossRange> clipRange_;
    std::vector<AAFUnsupportedFeature> unsupported_;
    /// By record; empty when no places are kept.
    std::vector<LossPlace> places_;
    std::vector<std::string> diagnostics_;
    KeyedSet<std::string> pathsRecordedOnce_;
    std::uint64_t noteBytes_ = 0;
};

/// As diagnostics write numbers.
[[nodiscard]] std::string fixedPoint(double value, int decimals);
/// "2.300 s".
[[nodiscard]] std::string secondsText(const AAFRational& seconds);

}  // namespace trellant
