// SPDX-License-Identifier: Apache-2.0
// Writes files below a megabyte that were made to cost much, each by much of one thing, into a
// folder: for the sweep of all commands over all of them. Those that take long until the worker
// refuses them are the matter of steps_test.cpp.
#include "growing_file.h"

#include <algorithm>
#include <cstdio>
#include <exception>
#include <limits>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/omf1_builder.h>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>
#include <unordered_set>
#include <utility>
#include <vector>

namespace trellant::testing {
namespace {

constexpr std::size_t mebibyte = 1'048'576;
constexpr MobID tone{1, 2, 3};
constexpr Ratio rate{48'000};

Bytes shortWave() {
    return waveImage({.samples = Bytes(960)});
}

/// A document with one embedded source, and what makes it a whole.
class Document {
  public:
    Document() {
        omf_.audioFile({.id = tone, .name = "Tone.wav", .media = shortWave(), .length = 480});
    }
    OmfBuilder& operator*() { return omf_; }
    OmfBuilder* operator->() { return &omf_; }

    ObjectID clip() { return omf_.clip({.length = 480, .source = tone}); }
    ObjectID clip(const std::string& name) {
        return omf_.clip({.length = 480, .source = tone, .name = name});
    }
    /// `segment` ten times, and that ten times again.
    ObjectID fan(ObjectID segment, int levels) {
        for (int level = 0; level < levels; ++level) {
            segment = omf_.sequence(std::vector<ObjectID>(10, segment));
        }
        return segment;
    }
    Bytes of(ObjectID segment) {
        return ofSlots({omf_.slot({.editRate = rate, .segment = segment})});
    }
    Bytes ofSlots(const std::vector<ObjectID>& slots) {
        omf_.composition({.name = "Piece", .slots = slots});
        return omf_.build();
    }

  private:
    OmfBuilder omf_;
};

/// Where `value`, which stands in it once, lies in the file.
BentoRange rangeOf(const Bytes& image, const Bytes& value) {
    const auto found = std::search(image.begin(), image.end(), value.begin(), value.end());
    if (found == image.end()) {
        throw std::runtime_error("the value is not in the file");
    }
    return {.offset = static_cast<std::uint64_t>(found - image.begin()), .length = value.size()};
}

Bytes millionClips() {
    Document document;
    return document.of(document.fan(document.clip("A clip with a name"), 6));
}

Bytes millionLosses() {
    Document document;
    const ObjectID lost = document->clip({.length = 480, .source = {9, 9, 9}});
    return document.of(document->sequence({document.clip(), document.fan(lost, 6)}));
}

Bytes floodedNames() {
    constexpr std::uint32_t count = 40'000;
    std::unordered_set<std::uint32_t> table;
    for (std::uint32_t key = 0; key < count; ++key) {
        table.insert(key);
    }
    const auto places = static_cast<std::uint32_t>(table.bucket_count());
    const TemporaryDirectory folder;
    Document document;
    document->composition(
        {.slots = {document->slot({.editRate = rate, .segment = document.clip()})}});
    {
        GrowingFile file(folder.file("flood"), document->container().image());
        constexpr std::uint32_t first = 2'000'000;
        const std::uint32_t inOnePlace =
            (std::numeric_limits<std::uint32_t>::max() - first) / places;
        for (std::uint32_t i = 0; i < count; ++i) {
            const std::uint32_t used = count / inOnePlace + 1;
            file.object(first + i / used * places + i % used, propertyNameProperty);
            file.byte('\x09');
        }
        file.finish();
    }
    return readFile(folder.file("flood"));
}

Bytes oneLongName() {
    Document document;
    document->audioFile({.id = {2, 2, 2}, .name = std::string(400'000, 'n'), .length = 10});
    const ObjectID clip =
        document->clip({.length = 480, .source = {2, 2, 2}, .name = std::string(400'000, 'c')});
    return document.of(document->sequence(std::vector<ObjectID>(1'000, clip)));
}

Bytes equalNames() {
    const Bytes wave = waveImage({.samples = Bytes(2)});
    Document document;
    std::vector<ObjectID> clips;
    for (std::uint32_t i = 0; i < 1'600; ++i) {
        const MobID id{7, 7, i};
        document->audioFile({.id = id, .name = "Take.wav", .media = wave, .length = 1});
        clips.push_back(document->clip({.length = 1, .source = id}));
    }
    return document.of(document->sequence(clips));
}

Bytes missingFilesOfOneName() {
    Document document;
    std::vector<ObjectID> clips;
    for (std::uint32_t i = 0; i < 1'200; ++i) {
        const MobID id{7, 7, i};
        document->audioFile({.id = id,
                             .name = "Take.wav",
                             .length = 1,
                             .locators = {document->dosLocator("D:\\Take.wav")}});
        clips.push_back(document->clip({.length = 1, .source = id}));
    }
    return document.of(document->sequence(clips));
}

/// Audio with ten thousand empty chunks before its format, which a thousand sources share.
Bytes emptyChunks() {
    const Bytes wave = waveImage(
        {.samples = Bytes(2), .leadingChunks = std::vector<RiffChunk>(10'000, {.id = "LIST"})});
    Document document;
    std::vector<ObjectID> media;
    std::vector<ObjectID> clips;
    for (std::uint32_t i = 0; i < 1'000; ++i) {
        const MobID id{7, 7, i};
        document->audioFile({.id = id, .name = "Take.wav", .length = 1});
        media.push_back(document->object("WAVE").uid("OMFI:MDAT:MobID", id).id());
        clips.push_back(document->clip({.length = 1, .source = id}));
    }
    document->at(media.front()).bytes("OMFI:WAVE:Data", wave);
    document->composition(
        {.slots = {document->slot({.editRate = rate, .segment = document->sequence(clips)})}});
    const BentoRange range = rangeOf(document->build(), wave);
    for (std::size_t i = 1; i < media.size(); ++i) {
        document->container().addItem(media[i], "OMFI:WAVE:Data", range);
    }
    return document->build();
}

/// As many losses as clips at one time, each of which touches each clip.
Bytes clipsTimesLosses() {
    constexpr int count = 2'500;
    Document document;
    std::vector<EffectSlotSpec> slots;
    const ObjectID unreadable = document->object("CVAL");
    for (int i = 0; i < count; ++i) {
        slots.push_back({.argument = -1, .value = document->gain(document.clip(), unreadable)});
    }
    return document.of(
        document->effect({.effectID = "omfi:effect:MonoAudioGain", .length = 480, .slots = slots}));
}

/// Thousands of objects whose text is the same half a megabyte.
Bytes valuesOverOneAnother() {
    Document document;
    const Bytes text(500'000, std::byte{'t'});
    std::vector<ObjectID> clips;
    for (int i = 0; i < 2'000; ++i) {
        clips.push_back(document.clip());
    }
    document->at(clips.front()).bytes("OMFI:CPNT:Name", text);
    document->composition(
        {.slots = {document->slot({.editRate = rate, .segment = document->sequence(clips)})}});
    const BentoRange range = rangeOf(document->build(), text);
    for (std::size_t i = 1; i < clips.size(); ++i) {
        document->container().addItem(clips[i], "OMFI:CPNT:Name", range);
    }
    return document->build();
}

Bytes longAutomationOfManyClips() {
    Document document;
    std::vector<PointSpec> points;
    for (std::int32_t i = 0; i < 4'000; ++i) {
        points.push_back({.time = {i, 4'000}, .value = {1, 2}});
    }
    const ObjectID curve = document->varyingValue(points);
    std::vector<ObjectID> clips;
    for (int i = 0; i < 1'000; ++i) {
        clips.push_back(document->gain(document.clip(), curve));
    }
    return document.of(document->sequence(clips));
}

Bytes tracksOfOneClip() {
    Document document;
    const ObjectID clip = document.clip();
    return document.ofSlots(
        std::vector<ObjectID>(100'000, document->slot({.editRate = rate, .segment = clip})));
}

Bytes manyTracks() {
    Document document;
    std::vector<ObjectID> slots;
    for (int i = 0; i < 4'000; ++i) {
        slots.push_back(document->slot({.editRate = rate, .segment = document.clip()}));
    }
    return document.ofSlots(slots);
}

Bytes deepNesting() {
    Document document;
    ObjectID segment = document.clip();
    for (int level = 0; level < 10'000; ++level) {
        segment = document->sequence({segment});
    }
    return document.of(segment);
}

Bytes tokensOfOneByte() {
    const TemporaryDirectory folder;
    Document document;
    document->composition(
        {.slots = {document->slot({.editRate = rate, .segment = document.clip()})}});
    {
        GrowingFile file(folder.file("tokens"), document->container().image());
        file.fill(0x09, mebibyte - 65'536);
        file.finish();
    }
    return readFile(folder.file("tokens"));
}

/// A hundred thousand clips of OMF 1.x, each with an effect that is not known.
Bytes olderLosses() {
    Omf1Builder omf;
    omf.audioFile({.id = tone,
                   .name = "Tone",
                   .media = aiffImage({.formType = "AIFC", .samples = Bytes(960)}),
                   .length = 480});
    ObjectID segment =
        omf.clip({.length = 480, .source = tone}).bytes("OMFI:CPNT:EffectID", bytesOf("Reverb"));
    for (int level = 0; level < 5; ++level) {
        segment = omf.sequence(std::vector<ObjectID>(10, segment));
    }
    omf.mob({.name = "Piece", .tracks = {omf.track(1, segment)}});
    return omf.build();
}

/// A hundred clips, 11 hours apart: what is rendered of it would be 600 GB.
Bytes weeksOfSilence() {
    Document document;
    std::vector<ObjectID> parts;
    for (int i = 0; i < 100; ++i) {
        parts.push_back(document.clip());
        parts.push_back(document->filler(2'000'000'000));
    }
    return document.of(document->sequence(parts));
}

const std::map<std::string_view, Bytes (*)()> shapes{
    {"million-clips", millionClips},
    {"million-losses", millionLosses},
    {"flooded-names", floodedNames},
    {"one-long-name", oneLongName},
    {"equal-names", equalNames},
    {"missing-files-of-one-name", missingFilesOfOneName},
    {"empty-chunks", emptyChunks},
    {"clips-times-losses", clipsTimesLosses},
    {"values-over-one-another", valuesOverOneAnother},
    {"long-automation-of-many-clips", longAutomationOfManyClips},
    {"tracks-of-one-clip", tracksOfOneClip},
    {"many-tracks", manyTracks},
    {"deep-nesting", deepNesting},
    {"tokens-of-one-byte", tokensOfOneByte},
    {"older-losses", olderLosses},
    {"weeks-of-silence", weeksOfSilence},
};

void writeAll(const std::string& folder) {
    for (const auto& [name, make] : shapes) {
        const Bytes image = make();
        if (image.size() > mebibyte) {
            throw std::runtime_error(std::string(name) + " has " + std::to_string(image.size()) +
                                     " bytes");
        }
        writeFile(folder + "/" + std::string(name) + ".omf", image);
    }
}

}  // namespace
}  // namespace trellant::testing

int main(int count, char** arguments) {
    if (count != 2) {
        static_cast<void>(std::fputs("usage: trellant_small_files FOLDER\n", stderr));
        return 1;
    }
    try {
        trellant::testing::writeAll(arguments[1]);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "trellant_small_files: %s\n", error.what()));
        return 1;
    }
    return 0;
}
