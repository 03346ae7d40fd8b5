// SPDX-License-Identifier: Apache-2.0
// session.omf: a small drama scene at 29.97 frames per second drop-frame, as a workstation lays its
// file out. Lengths and positions of the tracks are in samples at 48000 Hz.
//
// Dialog_L (no pan: left by its name), in samples and seconds:
//   filler                      24000        0      .. 1/2
//   Anna    from 0              24000        1/2    .. 1        fades in 2400 linear, out 4800
//   power Ben     from 2400           18000        1      .. 11/8     fades in 1200 logarithmic
//   dissolve                     4800   the next clip begins 1/10 earlier; both fade linearly
//   Anna    from 12000          24000       51/40   .. 41/24    loses 3200 at its end to the cut
//   cut at 1600 of               4800   one record: the transition itself is not reproduced
//   Ben     from 0              12000       41/24   .. 77/40    loses 1600 at its beginning
// Dialog_R (each clip has pan 1, so the track has):
//   filler                      36000        0      .. 3/4
//   Ben     from 6000           12000        3/4    .. 1        gain 1/2
//   filler                      12000        1      .. 5/4
//   Anna    from 0              24000        5/4    .. 7/4      gain 3/4 around a varying gain
// Music_L and Music_R (pans 0 and 1): the channels of one file at 22050 Hz,
//           from 4800           38400        0      .. 4/5      gain 1/2 around 1/2, fades out 9600
// Atmo:
//   Rain    from 0              48000        0      .. 1        a scope reference in a nested scope
//   Rain    from 24000          24000        1      .. 3/2      what a selector has selected
//   an effect nobody knows      19200        3/2    .. 19/10    one record, silence
//   Rain    from 0               9600       19/10   .. 21/10
//   a clip without its source    9600       21/10   .. 23/10    one loss
#include "examples.h"
#include "source_file.h"

#include <trellant_testing/aiff_builder.h>
#include <trellant_testing/tone.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::examples {

namespace {

using testing::FadeSpec;
using testing::MobID;
using testing::ObjectID;
using testing::OmfBuilder;
using testing::Ratio;

constexpr MobID anna{0x5E55, 1, 0x10};
constexpr MobID ben{0x5E55, 1, 0x20};
constexpr MobID music{0x5E55, 1, 0x30};
constexpr MobID rain{0x5E55, 1, 0x40};
constexpr MobID lost{0x5E55, 1, 0x50};
constexpr Ratio trackRate{48'000};
constexpr Ratio frameRate{30'000, 1'001};
constexpr std::string_view gainEffect = "omfi:effect:MonoAudioGain";
constexpr std::string_view panEffect = "omfi:effect:MonoAudioPan";
constexpr std::int32_t input = -1;
constexpr std::int32_t control = 1;
constexpr std::int32_t automation = 2;

Bytes voice(std::uint32_t sampleRate, std::uint16_t bits, std::uint32_t frames,
            std::uint32_t frequency) {
    return testing::waveImage({.sampleRate = sampleRate,
                               .bitsPerSample = bits,
                               .samples = testing::toneSamples({.sampleRate = sampleRate,
                                                                .frames = frames,
                                                                .bitsPerSample = bits,
                                                                .frequency = frequency})});
}

Bytes stereoMusic() {
    return testing::aiffImage({.formType = "AIFC",
                               .channels = 2,
                               .sampleRate = 22'050,
                               .samples = testing::toneSamples({.sampleRate = 22'050,
                                                                .frames = 22'050,
                                                                .channels = 2,
                                                                .frequency = 523,
                                                                .order = OMFByteOrder::big})});
}

class Session {
  public:
    Session()
        : annaMedia_(voice(24'000, 16, 36'000, 220)),
          benMedia_(voice(48'000, 24, 24'000, 147)),
          musicMedia_(stereoMusic()),
          rainMedia_(voice(11'025, 16, 22'050, 1'760)) {}

    Example make() {
        addSources();
        const std::vector<ObjectID> slots{
            timecode(),
            picture(),
            track("Dialog_L", 1, dialogLeft()),
            track("Dialog_R", 2, dialogRight()),
            track("Music_L", 3, omf_.sequence({musicChannel(1, {0, 1})})),
            track("Music_R", 4, musicChannel(2, {1, 1})),
            track("Atmo", 5, atmosphere())};
        primaryMobs_.push_back(omf_.composition({.name = "Scene 12", .slots = slots}));
        // Workstations list the clips' mobs before the composition.
        omf_.head().refs("OMFI:HEAD:PrimaryMobs", primaryMobs_);
        return {.name = "session",
                .composition = omf_.build(),
                .extracted = {{"Voice_Anna.wav", annaMedia_},
                              {"Voice_Ben.wav", benMedia_},
                              {"Theme.aifc", musicMedia_},
                              {"Rain_ garden.wav", rainMedia_}}};
    }

  private:
    void addSources() {
        const auto add = [&](const SourceFileSpec& given) {
            primaryMobs_.push_back(addSourceFile(omf_, given));
        };
        add({.id = anna,
             .title = "Anna",
             .fileName = "Voice_Anna.wav",
             .media = annaMedia_,
             .sampleRate = 24'000,
             .frames = 36'000});
        add({.id = ben,
             .title = "Ben",
             .fileName = "Voice_Ben.wav",
             .media = benMedia_,
             .frames = 24'000});
        add({.id = music,
             .title = "Theme",
             .fileName = "Theme.aif",
             .kind = testing::MediaKind::aifc,
             .media = musicMedia_,
             .sampleRate = 22'050,
             .frames = 22'050,
             .channels = 2});
        add({.id = rain,
             .title = "Rain",
             .fileName = "Rain: garden.wav",
             .media = rainMedia_,
             .sampleRate = 11'025,
             .frames = 22'050});
    }

    /// 01:00:00;00: 107892 frames are an hour, of which 108 labels are left out.
    ObjectID timecode() {
        return omf_.slot({.editRate = frameRate,
                          .segment = omf_.timecode(30, true, 107'892, 70),
                          .track = omf_.track({.id = 1, .name = "Timecode"})});
    }

    ObjectID picture() {
        omf_.setSegmentKind("omfi:data:Picture");
        const ObjectID black = omf_.filler(70);
        omf_.setSegmentKind("omfi:data:Sound");
        return omf_.slot({.editRate = frameRate,
                          .segment = black,
                          .track = omf_.track({.id = 2, .name = "Picture"})});
    }

    ObjectID track(const std::string& name, std::int32_t physicalTrack, ObjectID segment) {
        const auto id = static_cast<std::uint32_t>(physicalTrack) + 2;
        return omf_.slot(
            {.editRate = trackRate,
             .segment = segment,
             .track = omf_.track({.id = id, .name = name, .physicalTrack = physicalTrack})});
    }

    ObjectID dialogLeft() {
        const ObjectID first = omf_.clip({.length = 24'000,
                                          .source = anna,
                                          .fadeIn = FadeSpec{2'400, 1},
                                          .fadeOut = FadeSpec{4'800, 2},
                                          .name = "Anna take 1"});
        auto second = omf_.clip(
            {.length = 18'000, .source = ben, .start = 2'400, .fadeIn = FadeSpec{1'200, 3}});
        second.ref("OMFI:CPNT:Attributes",
                   omf_.attributeList(
                       {omf_.attribute("Colour", "blue"), omf_.attribute("Name", "Ben answers")}));
        const ObjectID third =
            omf_.clip({.length = 24'000, .source = anna, .start = 12'000, .name = "Anna take 2"});
        auto fourth = omf_.clip({.length = 12'000, .source = ben});
        // As deep as some workstations put it.
        const ObjectID inner = omf_.attributeList({omf_.attribute("Name", "Ben leaves")});
        fourth.ref("OMFI:CPNT:Attributes",
                   omf_.attributeList({omf_.attribute("_USER", std::nullopt, inner)}));
        const ObjectID cut = omf_.transition({.length = 4'800, .cutPoint = 1'600});
        return omf_.sequence(
            {omf_.filler(24'000), first, second, omf_.dissolve(4'800), third, cut, fourth});
    }

    ObjectID dialogRight() {
        const ObjectID aside =
            omf_.clip({.length = 12'000, .source = ben, .start = 6'000, .name = "Ben aside"});
        const ObjectID quiet = omf_.constantValue({1, 2}, 12'000);
        const ObjectID asideScope = scoped(aside, 12'000, {{control, quiet}});

        const ObjectID calls = omf_.clip({.length = 24'000, .source = anna, .name = "Anna calls"});
        const ObjectID curve =
            omf_.varyingValue({{{0, 1}, {1, 4}}, {{1, 2}, {1, 1}}, {{1, 1}, {1, 2}}}, 2, 24'000);
        const ObjectID callsScope = scoped(calls, 24'000, {{automation, curve}});
        const ObjectID louder =
            omf_.effect({.effectID = std::string(gainEffect),
                         .length = 24'000,
                         .slots = {{input, callsScope}, {control, omf_.constantValue({3, 4})}}});
        return omf_.sequence({omf_.filler(36'000), asideScope, omf_.filler(12'000), louder});
    }

    /// A clip in a scope of its own, with a gain effect that takes it twice: as it is, and through
    /// a pan effect. `level` are the gain effect's arguments beside its inputs.
    ObjectID scoped(ObjectID clip, std::int64_t length,
                    const std::vector<testing::EffectSlotSpec>& level) {
        const ObjectID panned = omf_.effect({.effectID = std::string(panEffect),
                                             .length = length,
                                             .slots = {{input, omf_.scopeReference(length, 0, 1)},
                                                       {control, omf_.constantValue({1, 1})}}});
        std::vector<testing::EffectSlotSpec> arguments{{input, omf_.scopeReference(length, 0, 1)},
                                                       {input, panned}};
        arguments.insert(arguments.end(), level.begin(), level.end());
        const ObjectID gain = omf_.effect(
            {.effectID = std::string(gainEffect), .length = length, .slots = arguments});
        return omf_.nestedScope({clip, gain});
    }

    ObjectID musicChannel(std::uint32_t channel, Ratio pan) {
        const ObjectID clip = omf_.clip({.length = 38'400,
                                         .source = music,
                                         .track = channel,
                                         .start = 4'800,
                                         .fadeOut = FadeSpec{9'600, 2},
                                         .name = "Theme"});
        const ObjectID panned = omf_.pan(clip, omf_.constantValue(pan));
        const ObjectID half = omf_.gain(panned, omf_.constantValue({1, 2}));
        return omf_.gain(half, omf_.constantValue({1, 2}));
    }

    ObjectID atmosphere() {
        const ObjectID scope =
            omf_.nestedScope({omf_.clip({.length = 48'000, .source = rain, .name = "Rain wide"}),
                              omf_.scopeReference(48'000, 0, 1)});
        const ObjectID selected = omf_.selector(
            omf_.clip({.length = 24'000, .source = rain, .start = 24'000, .name = "Rain close"}));
        const ObjectID reverb =
            omf_.effect({.effectID = "example:effect:Reverb",
                         .length = 19'200,
                         .slots = {{input, omf_.clip({.length = 19'200, .source = rain})}}});
        return omf_.sequence({scope, selected, reverb, omf_.clip({.length = 9'600, .source = rain}),
                              omf_.clip({.length = 9'600, .source = lost})});
    }

    Bytes annaMedia_;
    Bytes benMedia_;
    Bytes musicMedia_;
    Bytes rainMedia_;
    OmfBuilder omf_{{.container = {.layout = testing::FileLayout::real}}};
    std::vector<ObjectID> primaryMobs_;
};

}  // namespace

Example session() {
    return Session().make();
}

}  // namespace trellant::examples
