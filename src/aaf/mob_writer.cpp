// SPDX-License-Identifier: Apache-2.0
#include "mob_writer.h"

#include "dictionary.h"
#include "segment_writer.h"
#include "tagged_values.h"

#include <trellant/aaf/errors.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace trellant::aaf {

namespace {

AUID idOf(UsageCode code) noexcept {
    switch (code) {
        case UsageCode::topLevel:
            return auid("0d010102-0101-0700-060e-2b3404010101");
        case UsageCode::lowerLevel:
            return auid("0d010102-0101-0800-060e-2b3404010101");
        case UsageCode::subClip:
            return auid("0d010102-0101-0500-060e-2b3404010101");
        case UsageCode::adjustedClip:
            return auid("0d010102-0101-0600-060e-2b3404010101");
        case UsageCode::templateOfOthers:
            return auid("0d010102-0101-0900-060e-2b3404010101");
    }
    return {};
}

void checkSlotIDs(const std::vector<MobSlot>& slots) {
    std::vector<std::uint32_t> ids;
    std::transform(slots.begin(), slots.end(), std::back_inserter(ids), [](const MobSlot& slot) {
        return std::visit([](const auto& one) { return one.slotID; }, slot);
    });
    std::sort(ids.begin(), ids.end());
    if (std::adjacent_find(ids.begin(), ids.end()) != ids.end()) {
        throw AafError(AafError::Duplicate{"Slots"});
    }
}

class MobWriter {
  public:
    MobWriter(compound::CompoundFile& file, Storage storage)
        : file_(file), object_(file, storage) {}

    void write(const Mob& mob) {
        checkSlotIDs(mob.slots);
        object_.mobID(Property::mobMobID, mob.mobID);
        if (!mob.name.empty()) {
            object_.text(Property::mobName, mob.name);
        }
        object_.timeStamp(Property::mobCreationTime, mob.creationTime);
        object_.timeStamp(Property::mobLastModified, mob.lastModified);
        if (mob.usageCode) {
            object_.auid(Property::mobUsageCode, idOf(*mob.usageCode));
        }
        writeTaggedValues(file_, object_, Property::mobUserComments, mob.userComments);
        ObjectList slots = object_.strongVector(Property::mobSlots, mob.slots.size());
        for (const MobSlot& slot : mob.slots) {
            std::visit([&](const auto& one) { writeSlot(slots, one); }, slot);
        }
    }

    void writeDescription(const SourceMob& mob) {
        std::visit([this](const auto& one) { writeDescriptor(one); }, mob.essenceDescription);
    }

    void finish() { object_.finish(); }

  private:
    /// What both kinds of slots have.
    template <class Slot>
    static void writeSlotNames(ObjectWriter& object, const Slot& slot) {
        object.u32(Property::mobSlotSlotID, slot.slotID);
        if (!slot.slotName.empty()) {
            object.text(Property::mobSlotSlotName, slot.slotName);
        }
        if (slot.physicalTrackNumber) {
            object.u32(Property::mobSlotPhysicalTrackNumber, *slot.physicalTrackNumber);
        }
    }

    void writeSlot(ObjectList& slots, const TimelineMobSlot& slot) {
        ObjectWriter object(file_, slots.add(Class::timelineMobSlot));
        writeSlotNames(object, slot);
        object.rate(Property::timelineMobSlotEditRate, slot.editRate);
        object.i64(Property::timelineMobSlotOrigin, slot.origin);
        SegmentWriter(file_, slot.dataKind).writeSegment(object, slot.segment);
        writeTaggedValues(file_, object, Property::timelineMobSlotTimelineMobAttributeList,
                          slot.attributes);
        object.finish();
    }

    void writeSlot(ObjectList& slots, const EventMobSlot& slot) {
        ObjectWriter object(file_, slots.add(Class::eventMobSlot));
        writeSlotNames(object, slot);
        object.rate(Property::eventMobSlotEditRate, slot.editRate);
        SegmentWriter(file_, DataKind::descriptiveMetadata).writeMarkers(object, slot.markers);
        object.finish();
    }

    void writeLocators(ObjectWriter& object, const std::vector<NetworkLocator>& locators) {
        if (locators.empty()) {
            return;
        }
        ObjectList list = object.strongVector(Property::essenceDescriptorLocator, locators.size());
        for (const NetworkLocator& locator : locators) {
            ObjectWriter stored(file_, list.add(Class::networkLocator));
            stored.text(Property::networkLocatorURLString, locator.urlString);
            stored.finish();
        }
    }

    /// What both descriptions of files have.
    template <class Descriptor>
    void writeFileDescriptor(ObjectWriter& object, const Descriptor& descriptor) {
        writeLocators(object, descriptor.locators);
        object.rate(Property::fileDescriptorSampleRate, descriptor.sampleRate);
        object.i64(Property::fileDescriptorLength, descriptor.length);
        object.weakReference(Property::fileDescriptorContainerFormat, Target::containerDefinitions,
                             aaf::idOf(descriptor.containerFormat));
    }

    [[nodiscard]] Storage describedAs(Class objectClass) {
        return object_.strongReference(Property::sourceMobEssenceDescription, objectClass);
    }

    void writeDescriptor(const WAVEDescriptor& descriptor) {
        ObjectWriter object(file_, describedAs(Class::waveDescriptor));
        writeFileDescriptor(object, descriptor);
        object.data(Property::waveDescriptorSummary, descriptor.summary);
        object.finish();
    }

    void writeDescriptor(const PCMDescriptor& descriptor) {
        ObjectWriter object(file_, describedAs(Class::pcmDescriptor));
        writeFileDescriptor(object, descriptor);
        object.u32(Property::soundDescriptorQuantizationBits, descriptor.quantizationBits);
        object.boolean(Property::soundDescriptorLocked, descriptor.locked);
        object.rate(Property::soundDescriptorAudioSamplingRate, descriptor.audioSamplingRate);
        object.u8(Property::soundDescriptorElectroSpatial,
                  static_cast<std::uint8_t>(descriptor.electroSpatial));
        object.u32(Property::soundDescriptorChannels, descriptor.channels);
        object.u32(Property::pcmDescriptorAverageBPS, descriptor.averageBPS);
        object.u16(Property::pcmDescriptorBlockAlign, descriptor.blockAlign);
        object.u8(Property::pcmDescriptorSequenceOffset, 0);
        object.finish();
    }

    void writeDescriptor(const TapeDescriptor& descriptor) {
        constexpr std::uint8_t noVideo = 0;
        ObjectWriter object(file_, describedAs(Class::tapeDescriptor));
        writeLocators(object, descriptor.locators);
        object.u8(Property::tapeDescriptorVideoSignal, noVideo);
        object.finish();
    }

    compound::CompoundFile& file_;
    ObjectWriter object_;
};

}  // namespace

void writeMob(compound::CompoundFile& file, Storage storage, const Mob& mob) {
    MobWriter writer(file, storage);
    writer.write(mob);
    writer.finish();
}

void writeSourceMob(compound::CompoundFile& file, Storage storage, const SourceMob& mob) {
    MobWriter writer(file, storage);
    writer.write(mob.mob);
    writer.writeDescription(mob);
    writer.finish();
}

}  // namespace trellant::aaf
