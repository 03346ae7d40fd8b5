#include "mapping_notes.h"

namespace trellant {

void MappingNotes::add(std::string_view kind, AAFUnsupportedFeature::Severity severity,
                       std::string message, std::string at) {
    unsupported_.push_back({.id = std::string(kind) + std::to_string(unsupported_.size()),
                            .severity = severity,
                            .description = std::move(message),
                            .objectPath = std::move(at)});
}

void MappingNotes::addLoss(std::string message, const ObjectPath& at) {
    add("omf-loss-", AAFUnsupportedFeature::Severity::informational, std::move(message), at.text());
}

void MappingNotes::addUnsupported(std::string message, const ObjectPath& at) {
    add("omf-unsupported-", AAFUnsupportedFeature::Severity::renderAffecting, std::move(message),
        at.text());
}

void MappingNotes::addUnsupportedOncePerPath(std::string message, const ObjectPath& at) {
    if (pathsRecordedOnce_.insert(at.text()).second) {
        addUnsupported(std::move(message), at);
    }
}

}  // namespace trellant
