// SPDX-License-Identifier: Apache-2.0
// Properties and classes by the numbers that the object model gives them.
#include "aaf_plan_reader.h"

#include "stored_numbers.h"

#include <trellant/base/url.h>

#include <algorithm>
#include <memory>
#include <set>

namespace trellant::sessions {

namespace {

using exchange::PlannedClip;
using exchange::PlannedFade;
using exchange::PlannedMedia;
using exchange::PlannedTrack;
using testing::storedNumber;
using testing::StoredObject;
using testing::StoredProperty;
using testing::storedText;
using testing::textOfAUID;

namespace pid {
constexpr std::uint16_t length = 0x0202, position = 0x0601, comment = 0x0602, operation = 0x0B01,
                        inputs = 0x0B02, parameters = 0x0B03, components = 0x1001,
                        sourceID = 0x1101, sourceSlotID = 0x1102, startTime = 0x1201,
                        timecodeStart = 0x1501, timecodeFps = 0x1502, timecodeDrop = 0x1503,
                        transitionOperation = 0x1801, cutPoint = 0x1802, mobs = 0x1901,
                        essenceData = 0x1902, pointValue = 0x1A02, pointTime = 0x1A03,
                        essenceMobID = 0x2701, essenceBytes = 0x2702, locators = 0x2F01,
                        sampleRate = 0x3001, fileLength = 0x3002, summary = 0x3801,
                        content = 0x3B03, bits = 0x3D01, channels = 0x3D07, url = 0x4001,
                        mobID = 0x4401, name = 0x4402, slots = 0x4403, description = 0x4701,
                        slotID = 0x4801, slotName = 0x4802, segment = 0x4803, trackNumber = 0x4804,
                        eventRate = 0x4901, slotRate = 0x4B01, constant = 0x4D01,
                        interpolation = 0x4E01, points = 0x4E02, describedSlots = 0x6102;
}  // namespace pid

/// The two digits that tell the classes of the model apart.
enum class Class : unsigned {
    filler = 0x09,
    operationGroup = 0x0A,
    sequence = 0x0F,
    sourceClip = 0x11,
    timecode = 0x14,
    transition = 0x17,
    wave = 0x2C,
    composition = 0x35,
    constantValue = 0x3D,
    pcm = 0x48,
};

bool isA(const StoredObject& object, Class wanted) {
    return std::to_integer<unsigned>(object.classID[7]) == static_cast<unsigned>(wanted);
}

const StoredProperty& property(const StoredObject& object, std::uint16_t number) {
    static const StoredProperty none;
    const auto found = object.properties.find(number);
    return found == object.properties.end() ? none : found->second;
}

std::int64_t number(const StoredObject& object, std::uint16_t which) {
    return static_cast<std::int64_t>(storedNumber(property(object, which).value));
}

AAFRational rational(ByteView value) {
    const auto part = [&](std::size_t at) {
        return std::int64_t{static_cast<std::int32_t>(storedNumber(value.subspan(at, 4)))};
    };
    return AAFRational(part(0), part(4));
}

/// Behind byte order and type.
AAFRational indirectRational(const StoredObject& object, std::uint16_t which) {
    return rational(ByteView(property(object, which).value).subspan(17));
}

AAFAutomationInterpolation curve(const StoredObject& varying) {
    static const std::map<std::string, AAFAutomationInterpolation> curves{
        {"5b6c85a4-0ede-11d3-80a9-006008143e6f", AAFAutomationInterpolation::linear()},
        {"5b6c85a5-0ede-11d3-80a9-006008143e6f", AAFAutomationInterpolation::constant()},
        {"15829ec3-1f24-458a-960d-c65bb23c2aa1", AAFAutomationInterpolation::logarithmic()},
        {"c09153f7-bd18-4e5a-ad09-cbdd654fa001", AAFAutomationInterpolation::power()}};
    return curves.at(textOfAUID(property(varying, pid::interpolation).names.front()));
}

constexpr const char* gainOperation = "9d2ea894-0968-11d3-8a38-0050040ef7d2";
constexpr const char* panOperation = "9d2ea893-0968-11d3-8a38-0050040ef7d2";
constexpr const char* dissolveOperation = "0c3bea41-fc05-11d2-8a29-0050040ef7d2";

std::string operationOf(const StoredObject& group) {
    return textOfAUID(property(group, pid::operation).names.front());
}

/// What stands around a segment, by kind of operation.
struct Surroundings {
    std::optional<double> gain{};
    std::optional<AAFAutomationEnvelope> gainAutomation{};
    std::optional<double> pan{};
    std::optional<AAFAutomationEnvelope> panAutomation{};
};

class PlanReader {
  public:
    explicit PlanReader(const testing::FileImage& image) : stored_(image) {}

    ReadAafSession read() {
        result_.problems = stored_.problems();
        const StoredObject& header = *stored_.root().properties.at(2).objects.front();
        const StoredObject& storage = *property(header, pid::content).objects.front();
        for (const auto& mob : property(storage, pid::mobs).objects) {
            const Bytes& id = property(*mob, pid::mobID).value;
            mobs_[id] = mob.get();
            if (isA(*mob, Class::composition)) {
                check(composition_ == nullptr, "two compositions");
                composition_ = mob.get();
            }
        }
        for (const auto& essence : property(storage, pid::essenceData).objects) {
            const std::uint32_t stream = property(*essence, pid::essenceBytes).stream;
            essence_[property(*essence, pid::essenceMobID).value] =
                stored_.container().entries().at(stream).size;
        }
        readComposition();
        return std::move(result_);
    }

  private:
    void check(bool holds, const std::string& problem) {
        if (!holds) {
            result_.problems.push_back(problem);
        }
    }

    void readComposition() {
        result_.plan.name = storedText(property(*composition_, pid::name).value);
        for (const auto& slot : property(*composition_, pid::slots).objects) {
            const StoredObject& segment = *property(*slot, pid::segment).objects.front();
            if (isA(segment, Class::timecode)) {
                readTimecode(*slot, segment);
            } else if (slot->properties.contains(pid::eventRate)) {
                readMarkers(*slot, segment);
            } else {
                readTrack(*slot, segment);
            }
        }
    }

    void readTimecode(const StoredObject& slot, const StoredObject& timecode) {
        const AAFTimecodeRate rate(rational(property(slot, pid::slotRate).value),
                                   number(timecode, pid::timecodeFps),
                                   number(timecode, pid::timecodeDrop) != 0);
        result_.plan.start =
            AAFTimecodeAddress::fromAbsoluteFrameNumber(number(timecode, pid::timecodeStart), rate);
    }

    void readMarkers(const StoredObject& slot, const StoredObject& sequence) {
        const AAFRational rate = rational(property(slot, pid::eventRate).value);
        check(rate == result_.plan.start.rate.exactRate, "markers in other units than frames");
        for (const auto& event : property(sequence, pid::components).objects) {
            ReadMarker marker{.position = number(*event, pid::position),
                              .length = number(*event, pid::length),
                              .text = storedText(property(*event, pid::comment).value)};
            const ByteView described = property(*event, pid::describedSlots).value;
            for (std::size_t at = 0; at < described.size(); at += 4) {
                marker.tracks.push_back(slotNames_.at(storedNumber(described.subspan(at, 4))));
            }
            result_.markers.push_back(std::move(marker));
        }
    }

    void readTrack(const StoredObject& slot, const StoredObject& segment) {
        exchange::ExportPlan& plan = result_.plan;
        const AAFRational rate = rational(property(slot, pid::slotRate).value);
        check(rate.denominator() == 1, "tracks in other units than samples");
        plan.rate = rate.numerator();
        check(number(slot, pid::trackNumber) == static_cast<std::int64_t>(plan.tracks.size()) + 1,
              "track numbers do not count from 1");
        PlannedTrack track{.track = plan.tracks.size(),
                           .name = storedText(property(slot, pid::slotName).value)};
        slotNames_[storedNumber(property(slot, pid::slotID).value)] = track.name;
        Surroundings around;
        const StoredObject& sequence = inner(segment, around);
        track.gain = around.gain.value_or(1);
        track.gainAutomation = around.gainAutomation;
        track.pan = around.pan;
        track.panAutomation = around.panAutomation;
        track.lanes = {{.name = track.name, .clips = clipsOf(sequence)}};
        plan.length = std::max(plan.length, number(segment, pid::length));
        plan.tracks.push_back(std::move(track));
    }

    /// What the operations around it stand around.
    const StoredObject& inner(const StoredObject& segment, Surroundings& around) {
        if (!isA(segment, Class::operationGroup)) {
            return segment;
        }
        const StoredObject& parameter = *property(segment, pid::parameters).objects.front();
        const bool isPan = operationOf(segment) == panOperation;
        check(isPan || operationOf(segment) == gainOperation, "an operation that is not known");
        if (isA(parameter, Class::constantValue)) {
            (isPan ? around.pan : around.gain) =
                indirectRational(parameter, pid::constant).doubleValue();
        } else {
            (isPan ? around.panAutomation : around.gainAutomation) = envelope(parameter);
        }
        return inner(*property(segment, pid::inputs).objects.front(), around);
    }

    static AAFAutomationEnvelope envelope(const StoredObject& varying) {
        AAFAutomationEnvelope result{.interpolation = curve(varying)};
        for (const auto& point : property(varying, pid::points).objects) {
            result.points.push_back({rational(property(*point, pid::pointTime).value),
                                     indirectRational(*point, pid::pointValue).doubleValue()});
        }
        return result;
    }

    std::vector<PlannedClip> clipsOf(const StoredObject& sequence) {
        std::vector<PlannedClip> clips;
        const auto& components = property(sequence, pid::components).objects;
        std::int64_t cursor = 0;
        for (std::size_t index = 0; index < components.size(); ++index) {
            const StoredObject& component = *components[index];
            const std::int64_t length = number(component, pid::length);
            if (isA(component, Class::transition)) {
                cursor -= length;
                continue;
            }
            if (!isA(component, Class::filler)) {
                PlannedClip clip = clipOf(component);
                clip.start = cursor;
                readFades(clip, clips, components, index);
                clips.push_back(std::move(clip));
            }
            cursor += length;
        }
        check(cursor == number(sequence, pid::length), "a sequence of another length");
        return clips;
    }

    void readFades(PlannedClip& clip, std::vector<PlannedClip>& before,
                   const std::vector<std::shared_ptr<StoredObject>>& components,
                   std::size_t index) {
        if (index > 0 && isA(*components[index - 1], Class::transition)) {
            clip.fadeIn = fade(*components[index - 1]);
            clip.crossfadesIn = !isA(*components[index - 2], Class::filler);
            const std::int64_t cut = clip.crossfadesIn ? clip.fadeIn->length / 2 : 0;
            check(number(*components[index - 1], pid::cutPoint) == cut, "a cut at another place");
            if (clip.crossfadesIn) {
                before.back().fadeOut = clip.fadeIn;
            }
        }
        if (index + 2 < components.size() && isA(*components[index + 1], Class::transition) &&
            isA(*components[index + 2], Class::filler)) {
            clip.fadeOut = fade(*components[index + 1]);
            check(number(*components[index + 1], pid::cutPoint) == clip.fadeOut->length,
                  "a cut within a fade-out");
        }
    }

    PlannedFade fade(const StoredObject& transition) {
        const StoredObject& group = *property(transition, pid::transitionOperation).objects.front();
        check(operationOf(group) == dissolveOperation, "a transition that is no dissolve");
        const StoredObject& level = *property(group, pid::parameters).objects.front();
        check(envelope(level).points ==
                  std::vector<AAFAutomationPoint>{{AAFRational(0), 0}, {AAFRational(1), 1}},
              "a level that does not rise from 0 to 1");
        return {.length = number(transition, pid::length), .curve = curve(level)};
    }

    PlannedClip clipOf(const StoredObject& component) {
        Surroundings around;
        const StoredObject& source = inner(component, around);
        const StoredObject& master = *mobs_.at(property(source, pid::sourceID).value);
        const StoredObject& masterSource =
            *property(slotOf(master, source), pid::segment).objects.front();
        const Bytes& fileID = property(masterSource, pid::sourceID).value;
        const StoredObject& fileSlot = slotOf(*mobs_.at(fileID), masterSource);
        PlannedClip clip{.event = clipCount_++,
                         .name = storedText(property(master, pid::name).value),
                         .media = mediumOf(fileID),
                         .length = number(source, pid::length),
                         .sourceStart = number(source, pid::startTime),
                         .sourceStartAtSessionRate = number(source, pid::startTime),
                         .gain = around.gain.value_or(1),
                         .gainAutomation = around.gainAutomation};
        if (result_.plan.media.at(clip.media).channelCount > 1) {
            clip.channel = number(fileSlot, pid::trackNumber) - 1;
        }
        return clip;
    }

    /// The slot of a mob that a source clip plays.
    const StoredObject& slotOf(const StoredObject& mob, const StoredObject& sourceClip) {
        const std::int64_t wanted = number(sourceClip, pid::sourceSlotID);
        const auto& slots = property(mob, pid::slots).objects;
        const auto found = std::find_if(slots.begin(), slots.end(), [&](const auto& slot) {
            return number(*slot, pid::slotID) == wanted;
        });
        check(found != slots.end(), "a slot that is not there");
        return **(found == slots.end() ? slots.begin() : found);
    }

    std::size_t mediumOf(const Bytes& mobID) {
        const auto known = media_.find(mobID);
        if (known != media_.end()) {
            return known->second;
        }
        const StoredObject& mob = *mobs_.at(mobID);
        const StoredObject& description = *property(mob, pid::description).objects.front();
        PlannedMedia planned{.essence = result_.plan.media.size(),
                             .name = storedText(property(mob, pid::name).value),
                             .sampleRate = rational(property(description, pid::sampleRate).value),
                             .frames = number(description, pid::fileLength)};
        ReadMedia read{.kind = isA(description, Class::wave) ? "WAVE" : "PCM"};
        for (const auto& locator : property(description, pid::locators).objects) {
            read.urls.push_back(storedText(property(*locator, pid::url).value));
        }
        if (!read.urls.empty()) {
            const std::string path = pathOfFileURL(read.urls.front()).value_or("/");
            planned.fileName = path.substr(path.find_last_of('/') + 1);
        }
        readForm(description, planned);
        if (const auto essence = essence_.find(mobID); essence != essence_.end()) {
            read.embeddedBytes = essence->second;
        }
        result_.media.push_back(std::move(read));
        result_.plan.media.push_back(std::move(planned));
        return media_[mobID] = result_.media.size() - 1;
    }

    void readForm(const StoredObject& description, PlannedMedia& planned) {
        if (isA(description, Class::pcm)) {
            planned.channelCount = number(description, pid::channels);
            planned.bitDepth = number(description, pid::bits);
            return;
        }
        const ByteView head = property(description, pid::summary).value;
        check(head.size() == 44, "a head that is no WAVE file's");
        planned.isFloatingPoint = storedNumber(head.subspan(20, 2)) == 3;
        planned.channelCount = static_cast<std::int64_t>(storedNumber(head.subspan(22, 2)));
        planned.bitDepth = static_cast<std::int64_t>(storedNumber(head.subspan(34, 2)));
        check(AAFRational(static_cast<std::int64_t>(storedNumber(head.subspan(24, 4)))) ==
                  planned.sampleRate,
              "a head of another rate");
    }

    testing::StoredObjects stored_;
    ReadAafSession result_;
    const StoredObject* composition_ = nullptr;
    std::map<Bytes, const StoredObject*> mobs_;
    std::map<Bytes, std::uint64_t> essence_;
    std::map<Bytes, std::size_t> media_;
    std::map<std::uint64_t, std::string> slotNames_;
    std::size_t clipCount_ = 0;
};

}  // namespace

ReadAafSession readAafSession(const testing::FileImage& image) {
    return PlanReader(image).read();
}

}  // namespace trellant::sessions
