// SPDX-License-Identifier: Apache-2.0
#include "premis.h"

#include "bag_texts.h"

#include <trellant/base/precondition.h>
#include <trellant/version.h>
#include <trellant/xml/xml_text.h>
#include <trellant/xml/xml_tree.h>

#include <algorithm>
#include <functional>
#include <string_view>

namespace trellant::bag {

namespace {

using Origin = PremisFile::Origin;
using xml::XmlElement;

constexpr std::string_view fileKind = "bag path";
constexpr std::string_view localKind = "local";
constexpr std::string_view agentName = "trellant";

/// The events of every bag, each with its number within the record.
struct Events {
    static constexpr std::string_view identification = "event-1";
    static constexpr std::string_view extraction = "event-2";
    static constexpr std::string_view unpacking = "event-3";
    static constexpr std::string_view normalization = "event-4";
    static constexpr std::string_view replication = "event-5";
    static constexpr std::string_view digests = "event-6";
};

void add(const XmlElement& parent, const char* name, std::string_view text) {
    parent.add(name).setText(xml::xmlText(text));
}

/// A word of one of the vocabularies at id.loc.gov.
void addTerm(const XmlElement& parent, const char* name, std::string_view vocabulary,
             std::string_view word) {
    const XmlElement term = parent.add(name);
    term.with("authority", vocabulary)
        .with("authorityURI",
              "http://id.loc.gov/vocabulary/preservation/" + std::string(vocabulary))
        .setText(word);
}

/// The event that a file is from; empty for the one that was given.
std::string_view eventOf(Origin origin) {
    switch (origin) {
        case Origin::interchange:
            return {};
        case Origin::unpacked:
            return Events::unpacking;
        case Origin::normalized:
            return Events::normalization;
        case Origin::found:
            return Events::replication;
        case Origin::timeline:
            return Events::extraction;
    }
    preconditionFailure("enumeration value outside its cases");
}

class Document {
  public:
    explicit Document(const PremisRecord& record) : record_(record) {}

    [[nodiscard]] std::string text() {
        tree_.root()
            .with("xmlns", "http://www.loc.gov/premis/v3")
            .with("xmlns:xsi", "http://www.w3.org/2001/XMLSchema-instance")
            .with("xsi:schemaLocation",
                  "http://www.loc.gov/premis/v3 https://www.loc.gov/standards/premis/premis.xsd")
            .with("version", "3.0");
        for (const PremisFile& file : record_.files) {
            addObject(file);
        }
        addEvents();
        addAgent();
        std::string text;
        tree_.write([&text](ByteView bytes) {
            text.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
        });
        return text;
    }

  private:
    void addObject(const PremisFile& file) const {
        const XmlElement object = tree_.root().add("object");
        object.with("xsi:type", "file");
        const XmlElement identifier = object.add("objectIdentifier");
        add(identifier, "objectIdentifierType", fileKind);
        add(identifier, "objectIdentifierValue", escapedPath(file.path));
        addCharacteristics(object, file);
        if (!file.originalName.empty()) {
            add(object, "originalName", file.originalName);
        }
        const std::string_view event = eventOf(file.origin);
        // What lay outside comes from nothing else in the bag.
        if (!event.empty() && file.origin != Origin::found) {
            addDerivation(object, event);
        }
        if (!event.empty()) {
            addEventLink(object, event);
        } else {
            addEventLink(object, Events::identification);
        }
        addEventLink(object, Events::digests);
    }

    static void addCharacteristics(const XmlElement& object, const PremisFile& file) {
        const XmlElement characteristics = object.add("objectCharacteristics");
        const XmlElement fixity = characteristics.add("fixity");
        addTerm(fixity, "messageDigestAlgorithm", "cryptographicHashFunctions", "SHA-256");
        add(fixity, "messageDigest", file.sha256);
        add(fixity, "messageDigestOriginator", agentName);
        add(characteristics, "size", std::to_string(file.byteCount));
        const XmlElement format = characteristics.add("format");
        const XmlElement designation = format.add("formatDesignation");
        add(designation, "formatName", file.format.name);
        if (!file.format.version.empty()) {
            add(designation, "formatVersion", file.format.version);
        }
        if (!file.format.pronom.empty()) {
            const XmlElement registry = format.add("formatRegistry");
            add(registry, "formatRegistryName", "PRONOM");
            add(registry, "formatRegistryKey", file.format.pronom);
        }
    }

    void addDerivation(const XmlElement& object, std::string_view event) const {
        const XmlElement relationship = object.add("relationship");
        addTerm(relationship, "relationshipType", "relationshipType", "derivation");
        addTerm(relationship, "relationshipSubType", "relationshipSubType", "has source");
        const XmlElement related = relationship.add("relatedObjectIdentifier");
        add(related, "relatedObjectIdentifierType", fileKind);
        add(related, "relatedObjectIdentifierValue", escapedPath(record_.files.front().path));
        const XmlElement cause = relationship.add("relatedEventIdentifier");
        add(cause, "relatedEventIdentifierType", localKind);
        add(cause, "relatedEventIdentifierValue", event);
    }

    static void addEventLink(const XmlElement& object, std::string_view event) {
        const XmlElement link = object.add("linkingEventIdentifier");
        add(link, "linkingEventIdentifierType", localKind);
        add(link, "linkingEventIdentifierValue", event);
    }

    void addEvents() {
        const auto is = [](Origin origin) {
            return [origin](const PremisFile& file) { return file.origin == origin; };
        };
        const PremisFile& given = record_.files.front();
        const XmlElement found = addEvent(Events::identification, "format identification",
                                          "told by the container and the object model in it");
        addOutcome(found, given.format.pronom, {}, 0);
        linkAll(found, Events::identification, is(Origin::interchange));

        std::vector<std::string> notes = record_.losses;
        notes.insert(notes.end(), record_.changes.begin(), record_.changes.end());
        const XmlElement read = addEvent(Events::extraction, "metadata extraction",
                                         "the composition written as a timeline");
        addOutcome(read, outcomeText(), notes,
                   record_.lossCount - record_.losses.size() + record_.changeCount -
                       record_.changes.size());
        linkAll(read, Events::extraction, is(Origin::timeline));

        const XmlElement unpacked =
            addEvent(Events::unpacking, "unpacking", "audio taken out as it lies in the file");
        addOutcome(unpacked, record_.missingCount == 0 ? "success" : "audio is missing",
                   record_.missing, record_.missingCount - record_.missing.size());
        linkAll(unpacked, Events::unpacking, is(Origin::unpacked));

        addWhere("normalization", Events::normalization,
                 "audio taken out and written as WAVE, sample by sample", is(Origin::normalized));
        addWhere("replication", Events::replication, "audio that lay outside the file copied",
                 is(Origin::found));
        const XmlElement digests =
            addEvent(Events::digests, "message digest calculation", "SHA-256 of each file");
        addOutcome(digests, "success", {}, 0);
        linkAll(digests, Events::digests, [](const PremisFile& /*file*/) { return true; });
    }

    /// An event that a bag need not have.
    void addWhere(std::string_view type, std::string_view id, std::string_view detail,
                  const std::function<bool(const PremisFile&)>& isPart) {
        if (std::any_of(record_.files.begin(), record_.files.end(), isPart)) {
            const XmlElement event = addEvent(id, type, detail);
            addOutcome(event, "success", {}, 0);
            linkAll(event, id, isPart);
        }
    }

    [[nodiscard]] std::string outcomeText() const {
        const auto counted = [](std::size_t count, std::string_view one, std::string_view many) {
            return std::to_string(count) + " " + std::string(count == 1 ? one : many);
        };
        if (record_.lossCount == 0 && record_.changeCount == 0) {
            return "success, without losses";
        }
        return "success, with " + counted(record_.lossCount, "loss", "losses") + " and " +
               counted(record_.changeCount, "change", "changes");
    }

    [[nodiscard]] XmlElement addEvent(std::string_view id, std::string_view type,
                                      std::string_view detail) const {
        const XmlElement event = tree_.root().add("event");
        const XmlElement identifier = event.add("eventIdentifier");
        add(identifier, "eventIdentifierType", localKind);
        add(identifier, "eventIdentifierValue", id);
        addTerm(event, "eventType", "eventType", type);
        add(event, "eventDateTime", dateTimeText(record_.date));
        add(event.add("eventDetailInformation"), "eventDetail", detail);
        return event;
    }

    static void addOutcome(const XmlElement& event, std::string_view outcome,
                           const std::vector<std::string>& notes, std::size_t more) {
        const XmlElement information = event.add("eventOutcomeInformation");
        add(information, "eventOutcome", outcome);
        for (const std::string& note : notes) {
            add(information.add("eventOutcomeDetail"), "eventOutcomeDetailNote", note);
        }
        if (more != 0) {
            add(information.add("eventOutcomeDetail"), "eventOutcomeDetailNote",
                "and " + std::to_string(more) + " more");
        }
    }

    /// The agent, and every file that the event is about.
    void linkAll(const XmlElement& event, std::string_view id,
                 const std::function<bool(const PremisFile&)>& isPart) const {
        const XmlElement agent = event.add("linkingAgentIdentifier");
        add(agent, "linkingAgentIdentifierType", localKind);
        add(agent, "linkingAgentIdentifierValue", agentName);
        addTerm(agent, "linkingAgentRole", "eventRelatedAgentRole", "executing program");
        for (std::size_t i = 0; i < record_.files.size(); ++i) {
            const PremisFile& file = record_.files[i];
            // What was made was made of the interchange file, what was found was not.
            const bool isSource = i == 0 && id != Events::replication;
            if (isSource || isPart(file)) {
                const XmlElement object = event.add("linkingObjectIdentifier");
                add(object, "linkingObjectIdentifierType", fileKind);
                add(object, "linkingObjectIdentifierValue", escapedPath(file.path));
                addTerm(object, "linkingObjectRole", "eventRelatedObjectRole",
                        i == 0 ? "source" : "outcome");
            }
        }
    }

    void addAgent() const {
        const XmlElement agent = tree_.root().add("agent");
        const XmlElement identifier = agent.add("agentIdentifier");
        add(identifier, "agentIdentifierType", localKind);
        add(identifier, "agentIdentifierValue", agentName);
        add(agent, "agentName", agentName);
        addTerm(agent, "agentType", "agentType", "software");
        add(agent, "agentVersion", versionText);
    }

    const PremisRecord& record_;
    xml::XmlTree tree_{"premis"};
};

}  // namespace

std::string premisText(const PremisRecord& record) {
    return Document(record).text();
}

}  // namespace trellant::bag
