#include "bounded_reads.h"

#include <trellant/io/errors.h>

namespace trellant {

namespace {

void hold(std::uint64_t total, std::uint64_t most, const char* what) {
    if (total > most) {
        throw OMFIOError::unsupported("composition holds more than " + std::to_string(most) + what);
    }
}

}  // namespace

std::vector<OMFObject> BoundedReads::objectRefs(OMFObject object, OMFDocument::Candidates names) {
    auto references = document_.objectRefs(object, names);
    if (references.size() > longList) {
        countReferences(references.size());
    }
    return references;
}

std::optional<std::string> BoundedReads::string(OMFObject object, OMFDocument::Candidates names) {
    auto text = document_.string(object, names);
    if (text) {
        countText(text->size());
    }
    return text;
}

void BoundedReads::countReferences(std::uint64_t count) {
    references_ += count;
    hold(references_, maximumReferences, " entries in its lists");
}

void BoundedReads::countText(std::uint64_t size) {
    textBytes_ += size;
    if (size > longText) {
        longTextBytes_ += size;
        hold(longTextBytes_, maximumLongTextBytes, " bytes of long texts");
    }
    hold(textBytes_, maximumTextBytes_, " bytes of texts");
}

}  // namespace trellant
