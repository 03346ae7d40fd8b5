// SPDX-License-Identifier: Apache-2.0
// What the metadata say, read back by a library that is not the writer's.
#include "premis.h"

#include <gmock/gmock.h>

#include <pugixml.hpp>
#include <string>
#include <vector>

namespace trellant::bag {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Origin = PremisFile::Origin;

PremisFile file(Origin origin, const std::string& path) {
    return {.origin = origin,
            .path = path,
            .sha256 = "00ff",
            .byteCount = 12,
            .format = {.name = "Format", .version = "2.0", .pronom = "fmt/1"},
            .originalName = "was " + path};
}

PremisRecord record() {
    return {.files = {file(Origin::interchange, "data/mix.omf"),
                      file(Origin::unpacked, "data/Kick.wav"),
                      file(Origin::timeline, "data/timeline.json")}};
}

class Read {
  public:
    explicit Read(const PremisRecord& record) {
        const std::string text = premisText(record);
        EXPECT_TRUE(document_.load_buffer(text.data(), text.size()));
    }
    [[nodiscard]] std::vector<std::string> texts(const char* path) const {
        std::vector<std::string> found;
        for (const pugi::xpath_node& node : document_.select_nodes(path)) {
            found.emplace_back(node.node().text().get());
        }
        return found;
    }
    [[nodiscard]] std::vector<std::string> names(const char* path) const {
        std::vector<std::string> found;
        for (const pugi::xml_node& node : document_.select_node(path).node().children()) {
            found.emplace_back(node.name());
        }
        return found;
    }
    [[nodiscard]] const pugi::xml_document& document() const noexcept { return document_; }

  private:
    pugi::xml_document document_;
};

TEST(Premis, SaysItsVersionAndNamespace) {
    const Read read(record());
    const pugi::xml_node root = read.document().document_element();
    EXPECT_STREQ(root.name(), "premis");
    EXPECT_STREQ(root.attribute("version").value(), "3.0");
    EXPECT_STREQ(root.attribute("xmlns").value(), "http://www.loc.gov/premis/v3");
}

TEST(Premis, ElementsStandInTheOrderOfTheSchema) {
    const Read read(record());
    EXPECT_THAT(read.names("/premis"), ElementsAre("object", "object", "object", "event", "event",
                                                   "event", "event", "agent"));
    EXPECT_THAT(read.names("/premis/object[2]"),
                ElementsAre("objectIdentifier", "objectCharacteristics", "originalName",
                            "relationship", "linkingEventIdentifier", "linkingEventIdentifier"));
    EXPECT_THAT(read.names("/premis/object[2]/objectCharacteristics"),
                ElementsAre("fixity", "size", "format"));
    EXPECT_THAT(read.names("/premis/event[1]"),
                ElementsAre("eventIdentifier", "eventType", "eventDateTime",
                            "eventDetailInformation", "eventOutcomeInformation",
                            "linkingAgentIdentifier", "linkingObjectIdentifier"));
    EXPECT_THAT(read.names("/premis/agent"),
                ElementsAre("agentIdentifier", "agentName", "agentType", "agentVersion"));
}

TEST(Premis, EachFileHasFixitySizeAndFormat) {
    const Read read(record());
    EXPECT_THAT(read.texts("/premis/object/objectIdentifier/objectIdentifierValue"),
                ElementsAre("data/mix.omf", "data/Kick.wav", "data/timeline.json"));
    EXPECT_THAT(read.texts("/premis/object[1]//messageDigest"), ElementsAre("00ff"));
    EXPECT_THAT(read.texts("/premis/object[1]//messageDigestAlgorithm"), ElementsAre("SHA-256"));
    EXPECT_THAT(read.texts("/premis/object[1]//size"), ElementsAre("12"));
    EXPECT_THAT(read.texts("/premis/object[1]//formatRegistryKey"), ElementsAre("fmt/1"));
    EXPECT_THAT(read.texts("/premis/object[1]/originalName"), ElementsAre("was data/mix.omf"));
}

TEST(Premis, WhatWasMadeIsDerivedFromTheGivenFileByItsEvent) {
    const Read read(record());
    EXPECT_THAT(read.texts("/premis/object[1]/relationship"), IsEmpty());
    EXPECT_THAT(read.texts("/premis/object/relationship//relatedObjectIdentifierValue"),
                ElementsAre("data/mix.omf", "data/mix.omf"));
    EXPECT_THAT(read.texts("/premis/object/relationship//relatedEventIdentifierValue"),
                ElementsAre("event-3", "event-2"));
    EXPECT_THAT(read.texts("/premis/event/eventType"),
                ElementsAre("format identification", "metadata extraction", "unpacking",
                            "message digest calculation"));
}

TEST(Premis, WhatLayOutsideIsCopiedAndDerivedFromNothing) {
    PremisRecord given = record();
    given.files.push_back(file(Origin::found, "data/Door.wav"));
    given.files.push_back(file(Origin::normalized, "data/Theme.wav"));
    const Read read(given);
    EXPECT_THAT(read.texts("/premis/object[4]/relationship"), IsEmpty());
    EXPECT_THAT(read.texts("/premis/event[eventType='replication']//linkingObjectIdentifierValue"),
                ElementsAre("data/Door.wav"));
    EXPECT_THAT(
        read.texts("/premis/event[eventType='normalization']//linkingObjectIdentifierValue"),
        ElementsAre("data/mix.omf", "data/Theme.wav"));
}

TEST(Premis, LossesAndChangesAreTheOutcomeOfReading) {
    PremisRecord given = record();
    given.losses = {"An effect was dropped"};
    given.lossCount = 1;
    given.changes = {"changed: a"};
    given.changeCount = 3;
    const Read read(given);
    EXPECT_THAT(read.texts("/premis/event[2]//eventOutcome"),
                ElementsAre("success, with 1 loss and 3 changes"));
    EXPECT_THAT(read.texts("/premis/event[2]//eventOutcomeDetailNote"),
                ElementsAre("An effect was dropped", "changed: a", "and 2 more"));
    EXPECT_THAT(Read(record()).texts("/premis/event[2]//eventOutcome"),
                ElementsAre("success, without losses"));
}

TEST(Premis, AudioThatIsMissingIsTheOutcomeOfUnpacking) {
    PremisRecord given = record();
    given.missing = {"Steps.wav was not found"};
    given.missingCount = 1;
    const Read read(given);
    EXPECT_THAT(read.texts("/premis/event[3]//eventOutcome"), ElementsAre("audio is missing"));
    EXPECT_THAT(read.texts("/premis/event[3]//eventOutcomeDetailNote"),
                ElementsAre("Steps.wav was not found"));
}

TEST(Premis, HostileNamesStayText) {
    PremisRecord given = record();
    given.files[1].originalName = "</object>\x1b[2J\xff&\"";
    const Read read(given);
    EXPECT_THAT(read.texts("/premis/object[2]/originalName"),
                ElementsAre("</object> [2J\xEF\xBF\xBD&\""));
}

}  // namespace
}  // namespace trellant::bag
