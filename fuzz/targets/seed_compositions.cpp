// SPDX-License-Identifier: Apache-2.0
#include "seeds.h"

#include <trellant_testing/omf_builder.h>
#include <trellant_testing/wave_builder.h>
#include <utility>

namespace trellant::fuzzing {

namespace {

using testing::FadeSpec;
using testing::FileLayout;
using testing::MobID;
using testing::ObjectBuilder;
using testing::ObjectID;
using testing::OmfBuilder;
using testing::Ratio;
using testing::TocForm;

constexpr MobID kick{1, 2, 3};
constexpr MobID snare{5, 5, 5};
constexpr std::int32_t unitsPerSecond = 100;

ObjectBuilder kickClip(OmfBuilder& omf, std::int64_t length, std::int64_t start = 0) {
    return omf.clip({.length = length, .source = kick, .start = start});
}

ObjectBuilder slotOf(OmfBuilder& omf, ObjectID segment, const std::string& name) {
    return omf.slot({.editRate = Ratio{unitsPerSecond},
                     .segment = segment,
                     .track = omf.track({.id = 7, .name = name, .physicalTrack = 2})});
}

void addKick(OmfBuilder& omf) {
    const Bytes media = testing::waveImage({.channels = 2, .samples = Bytes(16)});
    omf.audioFile({.id = kick, .name = "Kick", .media = media, .length = 48});
}

void addSnare(OmfBuilder& omf) {
    omf.audioFile({.id = snare,
                   .name = "Snare",
                   .length = 48,
                   .locators = {omf.unixLocator("/media/Snare.wav"), omf.macLocator("Snare.wav"),
                                omf.networkLocator("file:///media/Snare.wav")}});
}

ObjectBuilder clock(OmfBuilder& omf) {
    return omf.slot({.editRate = Ratio{30'000, 1'001}, .segment = omf.timecode(30, true, 107'892)});
}

/// One clip.
Bytes clipOnly(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    addKick(omf);
    const ObjectID slot = slotOf(omf, kickClip(omf, 100), "Drums");
    omf.composition({.name = "Clip", .slots = {slot}});
    return omf.build();
}

/// Fades, dissolves and cuts.
Bytes transitions(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    addKick(omf);
    addSnare(omf);
    const ObjectID faded = omf.clip({.length = 100,
                                     .source = kick,
                                     .fadeIn = FadeSpec{5, 1},
                                     .fadeOut = FadeSpec{6, 2},
                                     .name = "Take"});
    const ObjectID dissolve = omf.dissolve(20);
    const ObjectID middle = omf.clip({.length = 50, .source = snare, .start = 10});
    const ObjectID level = omf.varyingValue({{{0}, {0}}, {{1, 2}, {1, 2}}, {{1}, {1}}});
    const ObjectID ramp = omf.effect(
        {.effectID = "omfi:effect:SimpleMonoAudioDissolve", .length = 10, .slots = {{-3, level}}});
    const ObjectID levelled = omf.transition({.length = 10, .cutPoint = 4, .effect = ramp});
    const ObjectID next = kickClip(omf, 60);
    const ObjectID cut = omf.transition({.length = 10, .cutPoint = 5});
    const ObjectID last = omf.clip({.length = 40, .source = kick, .fadeIn = FadeSpec{8, 3}});
    const ObjectID sequence = omf.sequence({faded, dissolve, middle, levelled, next, cut, last});
    const ObjectID slot = slotOf(omf, sequence, "Cuts");
    omf.composition({.name = "Cuts", .slots = {clock(omf), slot}});
    return omf.build();
}

/// Gain and pan, still and moving.
Bytes effects(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    addKick(omf);
    const ObjectID ramp = omf.varyingValue({{{0}, {0}}, {{1, 2}, {3, 4}}, {{1}, {1}}});
    const ObjectID inner = kickClip(omf, 40);
    const ObjectID half = omf.constantValue({1, 2});
    const ObjectID panned = omf.pan(inner, half);
    const ObjectID gained = omf.gain(panned, ramp);
    const ObjectID still = omf.gain(kickClip(omf, 20, 5), omf.constantValue({3, 2}));
    const ObjectID moving = omf.effect({.effectID = "omfi:effect:MonoAudioGain",
                                        .length = 15,
                                        .slots = {{-1, kickClip(omf, 15)}, {1, half}, {2, ramp}}});
    const ObjectID unknown = omf.effect(
        {.effectID = "example:effect:Reverb", .length = 10, .slots = {{-1, kickClip(omf, 10)}}});
    const ObjectID slot = slotOf(omf, omf.sequence({gained, still, moving, unknown}), "Mix");
    omf.composition({.name = "Effects", .slots = {slot}});
    return omf.build();
}

/// Scopes within scopes, selectors, and names in attributes.
Bytes nesting(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    addKick(omf);
    const ObjectID list = omf.attributeList({omf.attribute(
        "Folder", std::nullopt, omf.attributeList({omf.attribute("Name", "Deep")}))});
    const ObjectID named = kickClip(omf, 70).ref("OMFI:CPNT:Attributes", list);
    const ObjectID scope = omf.nestedScope({named, omf.scopeReference(70, 0, 1)});
    const ObjectID selector = omf.selector(omf.sequence({omf.filler(10), kickClip(omf, 20)}));
    const ObjectID echo = omf.scopeReference(100, 0, 1);
    const ObjectID first = slotOf(omf, omf.sequence({scope, selector}), "Outer");
    const ObjectID second = slotOf(omf, echo, "Echo");
    omf.composition({.name = "Scopes", .slots = {first, second}});
    return omf.build();
}

/// A clip that leads over a Master Mob and a second Source Mob to its file.
Bytes chain(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    addKick(omf);
    const MobID master{7, 0, 7};
    const ObjectID toFile = kickClip(omf, 1'000, 3);
    const ObjectID masterSlot = omf.slot({.editRate = Ratio{25},
                                          .segment = toFile,
                                          .track = omf.track({.id = 4, .physicalTrack = 1})});
    omf.masterMob({.id = master, .name = "Master", .slots = {masterSlot}});
    const ObjectID clip = omf.clip({.length = 10, .source = master, .track = 4, .start = 2});
    const ObjectID lost = omf.clip({.length = 10, .source = MobID{9, 9, 9}});
    const ObjectID slot = slotOf(omf, omf.sequence({clip, lost}), "Chain");
    omf.composition({.name = "Chain", .slots = {clock(omf), slot}});
    return omf.build();
}

/// Little of what much of would be worst: slots that are nothing to an effect, settings at one time
/// that cannot be read, empty chunks before the audio, sources of one name.
Bytes worst(const OmfBuilder::Options& options) {
    OmfBuilder omf(options);
    const std::vector<testing::RiffChunk> chunks(3, {.id = "LIST"});
    const Bytes media = testing::waveImage({.samples = Bytes(16), .leadingChunks = chunks});
    const MobID twin{1, 2, 4};
    for (const MobID id : {kick, twin}) {
        omf.audioFile({.id = id, .name = "Take", .media = media, .length = 8});
    }
    const ObjectID noLevel = omf.filler(20);
    const ObjectID first = omf.gain(kickClip(omf, 20), noLevel);
    const ObjectID second = omf.gain(omf.clip({.length = 20, .source = twin}), noLevel);
    const ObjectID half = omf.constantValue({1, 2});
    const ObjectID all =
        omf.effect({.effectID = "omfi:effect:MonoAudioGain",
                    .length = 20,
                    .slots = {{7, half}, {-1, first}, {8, std::nullopt}, {-1, second}, {1, half}}});
    omf.composition({.name = "Worst", .slots = {slotOf(omf, all, "At once")}});
    return omf.build();
}

}  // namespace

std::vector<Seed> compositionSeeds() {
    using Make = Bytes (*)(const OmfBuilder::Options&);
    const std::vector<std::pair<std::string, Make>> compositions{
        {"clip", clipOnly},   {"transitions", transitions},
        {"effects", effects}, {"nesting", nesting},
        {"chain", chain},     {"worst", worst}};
    const std::vector<std::pair<std::string, OmfBuilder::Options>> forms{
        {"little", {}},
        {"big", {.container = {.byteOrder = OMFByteOrder::big}, .valueOrder = OMFByteOrder::big}},
        {"v1", {.container = {.form = TocForm::v1, .extendedFooter = true}}},
        {"real",
         {.container = {.byteOrder = OMFByteOrder::big, .layout = FileLayout::real},
          .writesByteOrder = true}}};
    std::vector<Seed> seeds;
    for (const auto& [form, options] : forms) {
        for (const auto& [name, make] : compositions) {
            seeds.push_back({std::string(name).append("-").append(form), make(options)});
        }
    }
    return seeds;
}

}  // namespace trellant::fuzzing
