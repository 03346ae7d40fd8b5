// SPDX-License-Identifier: Apache-2.0
// Damaged and hostile compositions: a timeline or the typed error, nothing else.
#include "song.h"

#include <trellant/io/errors.h>

#include <gmock/gmock.h>

#include <set>
#include <trellant_testing/temporary_directory.h>
#include <utility>

namespace trellant::testing {
namespace {

/// One property value of the composition.
struct Place {
    ObjectID object = 0;
    std::string property{};
};

/// Segments of every kind, mobs, descriptors, locators and attributes.
class DamagedSong : public ::testing::Test {
  protected:
    DamagedSong() {
        OmfBuilder& omf = song_.omf;
        const MobID external{5, 5, 5};
        omf.audioFile({.id = external,
                       .name = "Snare",
                       .length = 48,
                       .locators = {omf.unixLocator("/no/Snare.wav"), omf.macLocator("Snare")}});
        const ObjectID list = omf.attributeList({omf.attribute(
            "Folder", std::nullopt, omf.attributeList({omf.attribute("Name", "A")}))});
        const ObjectID ramp = omf.varyingValue({{{0}, {0}}, {{1}, {1}}});
        const ObjectID level = omf.effect({.effectID = "omfi:effect:SimpleMonoAudioDissolve",
                                           .length = 20,
                                           .slots = {{-3, ramp}}});
        song_.addSlot({.editRate = Ratio{25}, .segment = omf.timecode(25, false, 90'000)});
        song_.addSlot(
            omf.sequence({song_.clip(100, FadeSpec{5, 1}, FadeSpec{6, 2}),
                          omf.transition({.length = 20, .cutPoint = 5, .effect = level}),
                          song_.clip(50).ref("OMFI:CPNT:Attributes", list),
                          omf.transition({.length = 10, .cutPoint = 5}),
                          omf.gain(omf.pan(song_.clip(40), omf.constantValue({1, 2})), ramp),
                          omf.selector(omf.filler(10))}),
            "Drums");
        song_.addSlot(omf.nestedScope(
            {omf.clip({.length = 70, .source = external}), omf.scopeReference(70, 0, 1)}));
        image_ = song_.image();
        collectPlaces();
    }

    void collectPlaces() {
        const TemporaryDirectory folder;
        const BentoContainer container(writeFile(folder.file("song.omf"), image_));
        std::set<std::pair<ObjectID, ObjectID>> seen;
        for (const BentoTOCItem& item : container.tableItems()) {
            const auto name = container.propertyName(item.property);
            if (name && name->starts_with("OMFI:") &&
                seen.insert({item.object, item.property}).second) {
                places_.push_back({item.object, std::string(*name)});
            }
        }
    }
    /// Maps a damaged song; expects a sound timeline or the typed error.
    void expectSoundOrTypedError(const OmfBuilder& damaged, const std::string& what) {
        try {
            const Mapped mapped = mapImage(damaged.build());
            EXPECT_EQ(defectOf(mapped.timeline), "") << what;
            ++timelines_;
        } catch (const OMFIOError& error) {
            EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
            ++errors_;
        }
    }
    void replace(const Place& place, Bytes value) {
        const std::string what = std::to_string(place.object) + " " + place.property;
        OmfBuilder damaged = song_.omf;
        damaged.container().set(place.object, place.property, std::move(value));
        expectSoundOrTypedError(damaged, what);
    }
    /// What a timeline may never be, whatever the file says.
    static std::string defectOf(const AAFTimeline& timeline) {
        std::set<std::string> tracks;
        std::set<std::string> essences;
        std::set<std::string> events;
        for (const AAFTrackState& track : timeline.tracks) {
            tracks.insert(track.id);
        }
        for (const AAFSourceEssence& essence : timeline.essences) {
            essences.insert(essence.id);
        }
        for (const AAFClipEvent& event : timeline.events) {
            if (!events.insert(event.id).second) {
                return "two events " + event.id;
            }
            if (!tracks.contains(event.trackID) || !essences.contains(event.essenceID)) {
                return "loose event " + event.id;
            }
            if (event.sourceStartSample < 0 || event.duration < AAFRational::zero()) {
                return "event with a negative range " + event.id;
            }
        }
        std::size_t number = 0;
        for (const AAFUnsupportedFeature& record : timeline.unsupportedFeatures) {
            if (!record.id.ends_with("-" + std::to_string(number++))) {
                return "record out of order " + record.id;
            }
        }
        return timeline.events.empty() ? "no events" : "";
    }

    Song song_;
    Bytes image_;
    std::vector<Place> places_;
    int timelines_ = 0;
    int errors_ = 0;
};

TEST_F(DamagedSong, IsWholeBeforeTheDamage) {
    const Mapped mapped = mapImage(image_);
    EXPECT_EQ(mapped.timeline.events.size(), 4U);
    EXPECT_EQ(mapped.timeline.essences.size(), 2U);
    EXPECT_EQ(defectOf(mapped.timeline), "");
    EXPECT_GT(places_.size(), 150U);
}

TEST_F(DamagedSong, GarbageOfAnyLengthInAnyValueIsATimelineOrAnError) {
    for (const Place& place : places_) {
        for (const std::size_t length : {0U, 1U, 3U, 7U}) {
            replace(place, Bytes(length, std::byte{0xA5}));
        }
    }
    // Most values are single details of a composition that still has audio.
    EXPECT_GT(timelines_, errors_);
    EXPECT_GT(errors_, 0);
}

TEST_F(DamagedSong, ExtremeNumbersInAnyValueAreATimelineOrAnError) {
    for (const Place& place : places_) {
        for (const std::string_view digits :
             {"FF FF FF FF", "FF FF FF 7F", "00 00 00 80", "FF FF FF FF FF FF FF 7F",
              "00 00 00 00 00 00 00 80", "FF FF FF 7F FF FF FF FF", "01 00 00 00 00 00 00 80",
              "00 00 00 80 00 00 00 80"}) {
            replace(place, hex(digits));
        }
    }
    EXPECT_GT(timelines_, errors_);
}

TEST_F(DamagedSong, ReferencesToAnyOtherObjectAreATimelineOrAnError) {
    // Each value in turn refers to each object of the song: cycles of every length among them.
    std::set<ObjectID> objects;
    std::vector<Place> references;
    for (const Place& place : places_) {
        objects.insert(place.object);
        if (place.property.ends_with("Segment") || place.property.ends_with("Components") ||
            place.property.ends_with("Slots") || place.property.ends_with("ArgValue") ||
            place.property.ends_with("Selected")) {
            references.push_back(place);
        }
    }
    ASSERT_GT(references.size(), 10U);
    for (const Place& place : references) {
        for (const ObjectID target : objects) {
            replace(place, ByteWriter(OMFByteOrder::little).u32(target).written());
        }
    }
    EXPECT_GT(timelines_, errors_);
}

TEST_F(DamagedSong, AnyObjectMayLoseItsClass) {
    std::set<ObjectID> objects;
    for (const Place& place : places_) {
        objects.insert(place.object);
    }
    for (const ObjectID object : objects) {
        OmfBuilder damaged = song_.omf;
        damaged.at(object).without("OMFI:OOBJ:ObjClass");
        expectSoundOrTypedError(damaged, "class of " + std::to_string(object));
    }
    // Without header, composition or every clip's way to a source there is no timeline.
    EXPECT_GT(timelines_, errors_);
    EXPECT_GE(errors_, 2);
}

}  // namespace
}  // namespace trellant::testing
