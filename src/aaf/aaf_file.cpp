// SPDX-License-Identifier: Apache-2.0
#include "dictionary.h"
#include "meta_dictionary.h"
#include "mob_writer.h"
#include "object_writer.h"

#include <trellant/aaf/aaf_file.h>
#include <trellant/compound/compound_file.h>

#include <algorithm>
#include <iterator>
#include <vector>

namespace trellant::aaf {

namespace {

/// By these two readers know an AAF file in sectors of 4096 bytes.
constexpr AUID fileClass = auid("0d010201-0200-0000-060e-2b3402060101");
constexpr AUID rootClass = auid("b3b398a5-1c90-11d4-8053-080036210804");

constexpr AUID editProtocol = auid("0d011201-0100-0000-060e-2b3404010105");
/// "II", as of all numbers in the file.
constexpr std::uint16_t littleEndianOrder = 0x4949;
constexpr std::uint32_t objectModelVersion = 1;

class FileWriter {
  public:
    explicit FileWriter(const AafFile& values)
        : values_(values), file_(fileClass.bytes, rootClass.bytes) {}

    void store() {
        const RootObjects objects = writeRoot(file_);
        writeMetaDictionary(file_, objects.metaDictionary);
        writeHeader(objects.header);
    }

    void write(const compound::ByteSink& sink) const { file_.write(sink); }

  private:
    void writeHeader(Storage storage) {
        ObjectWriter object(file_, storage);
        object.u16(Property::headerByteOrder, littleEndianOrder);
        object.timeStamp(Property::headerLastModified, values_.lastModified);
        object.data(Property::headerVersion, ValueBytes().u8(1).u8(1));
        object.u32(Property::headerObjectModelVersion, objectModelVersion);
        object.auid(Property::headerOperationalPattern, editProtocol);
        writeIdentification(
            object.strongVector(Property::headerIdentificationList, 1).add(Class::identification));
        writeDictionary(file_,
                        object.strongReference(Property::headerDictionary, Class::dictionary));
        writeContent(object.strongReference(Property::headerContent, Class::contentStorage));
        object.finish();
    }

    void writeIdentification(Storage storage) {
        const Identification& values = values_.identification;
        ObjectWriter object(file_, storage);
        object.text(Property::identificationCompanyName, values.companyName);
        object.text(Property::identificationProductName, values.productName);
        object.data(Property::identificationProductVersion,
                    ValueBytes().productVersion(values.productVersion));
        object.text(Property::identificationProductVersionString, values.productVersionString);
        object.auid(Property::identificationProductID, values.productID);
        object.timeStamp(Property::identificationDate, values.date);
        object.data(Property::identificationToolkitVersion,
                    ValueBytes().productVersion(values.toolkitVersion));
        object.text(Property::identificationPlatform, values.platform);
        object.auid(Property::identificationGenerationAUID, values.generationAUID);
        object.finish();
    }

    void writeContent(Storage storage) {
        ObjectWriter object(file_, storage);
        writeMobs(object);
        // Also without any: there are readers that miss it otherwise.
        writeEssenceData(object);
        object.finish();
    }

    void writeMobs(ObjectWriter& content) {
        std::vector<MobID> names;
        for (const auto* mobs : {&values_.compositionMobs, &values_.masterMobs}) {
            std::transform(mobs->begin(), mobs->end(), std::back_inserter(names),
                           [](const Mob& mob) { return mob.mobID; });
        }
        std::transform(values_.sourceMobs.begin(), values_.sourceMobs.end(),
                       std::back_inserter(names),
                       [](const SourceMob& mob) { return mob.mob.mobID; });
        ObjectList list =
            content.strongSet(Property::contentStorageMobs, Property::mobMobID, names);
        for (const Mob& mob : values_.compositionMobs) {
            writeMob(file_, list.add(Class::compositionMob), mob);
        }
        for (const Mob& mob : values_.masterMobs) {
            writeMob(file_, list.add(Class::masterMob), mob);
        }
        for (const SourceMob& mob : values_.sourceMobs) {
            writeSourceMob(file_, list.add(Class::sourceMob), mob);
        }
    }

    void writeEssenceData(ObjectWriter& content) {
        std::vector<MobID> names;
        std::transform(values_.essenceData.begin(), values_.essenceData.end(),
                       std::back_inserter(names),
                       [](const EssenceData& data) { return data.mobID; });
        ObjectList list = content.strongSet(Property::contentStorageEssenceData,
                                            Property::essenceDataMobID, names);
        for (const EssenceData& data : values_.essenceData) {
            ObjectWriter object(file_, list.add(Class::essenceData));
            object.mobID(Property::essenceDataMobID, data.mobID);
            object.stream(Property::essenceDataData, data.byteCount, data.data);
            object.finish();
        }
    }

    const AafFile& values_;
    compound::CompoundFile file_;
};

}  // namespace

void writeAaf(const AafFile& file, const compound::ByteSink& sink) {
    FileWriter writer(file);
    writer.store();
    writer.write(sink);
}

}  // namespace trellant::aaf
