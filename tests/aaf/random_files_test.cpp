// SPDX-License-Identifier: Apache-2.0
// Files drawn by chance, from fixed seeds: the reader finds no fault in any, and as many objects as
// went in.
#include "written_aaf.h"

#include <random>

namespace trellant::aaf {
namespace {

class RandomAafFile : public ::testing::TestWithParam<unsigned> {
  protected:
    std::size_t below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(generator_);
    }

    std::int64_t length() { return static_cast<std::int64_t>(1000 + below(100'000)); }

    Rational rational() {
        return {static_cast<std::int32_t>(below(1000)) - 500,
                static_cast<std::int32_t>(1 + below(99))};
    }

    std::string text() {
        static const std::vector<std::string_view> pieces{
            "a", "Z", "0", " ", "/", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xB5", "\xFF"};
        std::string result;
        for (std::size_t count = below(60); count > 0; --count) {
            result += pieces[below(pieces.size())];
        }
        return result;
    }

    MobID mob() { return mobNumber(static_cast<unsigned char>(below(256))); }

    Parameter parameter(ParameterKind kind) {
        if (below(2) == 0) {
            return {kind, rational()};
        }
        VaryingValue value{.interpolation = static_cast<Interpolation>(below(4))};
        for (std::size_t count = below(6); count > 0; --count) {
            value.points.push_back({rational(), rational()});
        }
        return {kind, value};
    }

    OperationGroup operation() {
        OperationGroup group{.operation = static_cast<Operation>(below(3))};
        for (const auto kind :
             {ParameterKind::level, ParameterKind::amplitude, ParameterKind::pan}) {
            if (below(2) == 0) {
                group.parameters.push_back(parameter(kind));
            }
        }
        if (below(3) == 0) {
            group.componentAttributes = {{text(), text()}, {text(), -7}};
        }
        return group;
    }

    std::vector<OperationGroup> operations() {
        std::vector<OperationGroup> groups;
        while (below(3) == 0) {
            groups.push_back(operation());
        }
        return groups;
    }

    SourceClip clip() {
        return {.length = length(),
                .startTime = length(),
                .sourceID = mob(),
                .sourceMobSlotID = static_cast<std::uint32_t>(below(5)),
                .operationGroups = operations()};
    }

    Segment segment() {
        if (below(4) == 0) {
            return clip();
        }
        if (below(4) == 0) {
            return Timecode{
                .length = length(), .start = length(), .fps = 25, .drop = below(2) == 0};
        }
        Sequence sequence{.components = {Filler{length()}}, .operationGroups = operations()};
        for (std::size_t count = below(20); count > 0; --count) {
            if (below(3) == 0) {
                sequence.components.emplace_back(
                    Transition{static_cast<std::int64_t>(below(500)), 0, operation()});
            }
            sequence.components.emplace_back(clip());
        }
        return sequence;
    }

    MobSlot slot(std::uint32_t id) {
        if (below(5) != 0) {
            return TimelineMobSlot{.slotID = id,
                                   .slotName = text(),
                                   .editRate = samples48k,
                                   .origin = -length(),
                                   .dataKind = static_cast<DataKind>(below(3)),
                                   .segment = segment()};
        }
        EventMobSlot events{.slotID = id, .physicalTrackNumber = id, .editRate = {30'000, 1001}};
        for (std::size_t count = below(5); count > 0; --count) {
            events.markers.push_back({.position = length(), .comment = text(), .user = text()});
        }
        return events;
    }

    Mob anyMob(unsigned char number) {
        Mob result{.mobID = mobNumber(number), .name = text()};
        for (std::size_t count = below(6); count > 0; --count) {
            result.slots.push_back(slot(static_cast<std::uint32_t>(count)));
        }
        return result;
    }

    AafFile file() {
        AafFile result;
        unsigned char number = 0;
        result.compositionMobs.push_back(anyMob(number++));
        for (std::size_t count = below(8); count > 0; --count) {
            result.masterMobs.push_back(anyMob(number++));
            SourceMob source{.mob = anyMob(number++), .essenceDescription = TapeDescriptor{}};
            if (below(2) == 0) {
                source.essenceDescription = WAVEDescriptor{
                    .sampleRate = samples48k, .summary = Bytes(below(100)), .locators = {{text()}}};
            }
            result.sourceMobs.push_back(source);
            const std::size_t size = below(10'000);
            result.essenceData.push_back({.mobID = source.mob.mobID,
                                          .byteCount = size,
                                          .data = [size](const auto& sink) { sink(Bytes(size)); }});
        }
        return result;
    }

    std::mt19937 generator_{GetParam()};
};

TEST_P(RandomAafFile, IsReadWithoutFault) {
    const AafFile values = file();
    const WrittenAaf written(values);
    const std::size_t mobs =
        values.compositionMobs.size() + values.masterMobs.size() + values.sourceMobs.size();
    EXPECT_EQ(written.reader->valueOf("Header/Content", "Mobs"), std::to_string(mobs) + " objects");
    EXPECT_EQ(WrittenAaf(values).image.bytes(), written.image.bytes());
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomAafFile, ::testing::Range(0U, 12U));

}  // namespace
}  // namespace trellant::aaf
