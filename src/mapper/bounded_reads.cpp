#include "bounded_reads.h"

#include <trellant/io/errors.h>

namespace trellant {

std::vector<OMFObject> BoundedReads::objectRefs(OMFObject object, OMFDocument::Candidates names) {
    auto references = document_.objectRefs(object, names);
    if (references.size() > longList) {
        countReferences(references.size());
    }
    return references;
}

std::optional<std::string> BoundedReads::string(OMFObject object, OMFDocument::Candidates names) {
    auto text = document_.string(object, names);
    if (text && text->size() > longText) {
        longTextBytes_ += text->size();
        if (longTextBytes_ > maximumLongTextBytes) {
            throw OMFIOError::unsupported("composition holds more than " +
                                          std::to_string(maximumLongTextBytes) +
                                          " bytes of long texts");
        }
    }
    return text;
}

void BoundedReads::countReferences(std::uint64_t count) {
    references_ += count;
    if (references_ > maximumReferences) {
        throw OMFIOError::unsupported("composition holds more than " +
                                      std::to_string(maximumReferences) + " entries in its lists");
    }
}

}  // namespace trellant
