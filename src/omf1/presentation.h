// SPDX-License-Identifier: Apache-2.0
// How objects of OMF 1.x look as those of OMF 2.x. Objects keep their numbers, so that what is said
// of one names an object of the file:
//
//   OMF 1.x                                 OMF 2.x
//   MOBJ with PhysicalMedia                 SMOB
//   MOBJ in CompositionMobs, usage code 0   CMOB, a primary mob
//   any other MOBJ                          MMOB
//   TRAK                                    slot, its edit rate that of its component; what it is
//                                           called and numbered by stands in a new object
//   SEQU, SCLP, FILL, TCCP, TRAN            the same, with lengths, kinds and sources of OMF 2.x
//   descriptors, locators, AIFC, WAVE       the same
//   all else                                itself: a component that is not known
//
// A clip names a track by the number on its label, and labels of several kinds of tracks may bear
// one number: a track's number is made of both. What cannot be told in this way is a remark.
#pragma once

#include "older_objects.h"
#include "presented_table.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/omf/older_model.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant {

class Presentation {
  public:
    /// Presents all objects of `objects`, which must outlive this. Throws OMFIOError unsupported
    /// past the bound of OlderObjects.
    explicit Presentation(OlderObjects& objects);

    [[nodiscard]] const PresentedTable& table() const noexcept { return table_; }
    /// What is known of the older model; leaves none behind.
    [[nodiscard]] OMFOlderModel takeModel();

  private:
    /// What a sequence or clip of another rate than the list that it stands in counts in.
    struct OtherRate {
        OMFRationalValue own;
        OMFRationalValue ofTrack;
    };

    void addHeader();
    void readIdentities();
    void chooseCompositions();
    void addSequences();
    void addMobs();
    void addMob(OMFObject mob);
    void readMediaIdentities();
    /// What a source's descriptor says, as far as another object does not.
    void addSourceDescription(OMFObject mob, const std::optional<OMFUID>& mobID);
    void addSD2Format(OMFObject mob, OMFObject descriptor);
    /// The mob identifier of a mob or of media: its own, else that of the header's indexes.
    [[nodiscard]] std::optional<OMFUID> identityOf(OMFObject object, OlderProperty property) const;
    void noteLabels(OMFObject mob, const std::vector<OMFObject>& tracks);
    void noteChannels(OMFObject mob, const std::vector<OMFObject>& tracks);
    void addObject(OMFObject object);
    void addTrack(OMFObject track);
    void describeTrack(OMFObject track, OMFObject component);

    void addComponent(OMFObject component, const std::string& classID);
    void addKind(OMFObject component, const std::string& classID);
    void addLength(OMFObject component, const std::string& classID);
    void addClip(OMFObject clip);
    void addSourceTrack(OMFObject clip);
    void addFade(OMFObject clip, OlderProperty length, OMFProperty presentedLength,
                 OlderProperty type, OMFProperty presentedType);
    void addTimecode(OMFObject timecode);
    void addTransition(OMFObject transition);
    void addMedia(OMFObject media, bool isWave);
    void addDescription(OMFObject object);

    /// The edit rate of a component, of a sequence without one that of its first component with
    /// one.
    [[nodiscard]] std::optional<OMFRationalValue> rateOf(OMFObject component) const;
    /// By which a clip names a track of that kind and label; of sound the label alone. A component
    /// that does not say its kind counts as sound.
    [[nodiscard]] std::uint32_t trackNumber(OMFObject component, std::uint16_t label);
    /// The class as it is presented.
    [[nodiscard]] std::string presentedClass(OMFObject component, const std::string& own) const;
    [[nodiscard]] std::optional<std::int64_t> lengthOf(OMFObject component) const;

    void copy(OMFObject to, OMFProperty presented, OMFObject from, OlderProperty property);
    /// Writes a number of four bytes that is there; else remarks that it is not.
    void copyLong(OMFObject object, OlderProperty property, OMFProperty presented);
    void remark(OMFObject object, std::string sentence,
                LossKind kind = LossKind::olderModelUnknown);
    void remarkUnreadable(OMFObject object, OlderProperty property);

    OlderObjects& objects_;
    PresentedTable table_;
    std::vector<OMFRemark> remarks_;
    std::vector<OMFDescribedFormat> formats_;
    /// Of all audio data that lie in the file, ascending.
    std::vector<OMFUID> mediaIdentities_;
    /// Of mobs and media, by the indexes of the header.
    KeyedMap<OMFObject, OMFUID> identities_;
    KeyedSet<OMFObject> compositions_;
    /// Of sequences that have none of their own.
    KeyedMap<OMFObject, OMFRationalValue> sequenceRates_;
    KeyedMap<OMFObject, OtherRate> otherRates_;
    /// Tracks of sources whose audio has several channels.
    KeyedSet<OMFObject> channelTracks_;
    /// Of which it was said that they do not say their kind.
    KeyedSet<OMFObject> remarkedKinds_;
    /// Definitions of data kinds, by TrackKind.
    KeyedMap<std::uint32_t, OMFObject> dataKinds_;
};

}  // namespace trellant
