// SPDX-License-Identifier: Apache-2.0
#include "bounded_reads.h"

#include <trellant/io/errors.h>

#include <limits>
#include <string>

namespace trellant {

namespace {

/// What lists and texts take, in steps.
constexpr std::uint64_t referencesOfStep = 4;
constexpr std::uint64_t stepsOfText = 4;
constexpr std::uint64_t textBytesOfStep = 32;

void hold(std::uint64_t total, std::uint64_t most, const char* what) {
    if (total > most) {
        throw OMFIOError::unsupported("composition holds more than " + std::to_string(most) + what);
    }
}

/// `times` times the file's size and `extra`, as far as numbers go: what a request may ask for, in
/// bytes, when it depends on what the file has.
std::uint64_t allowanceFor(const OMFDocument& document, std::uint64_t times, std::uint64_t extra) {
    constexpr auto largest = std::numeric_limits<std::uint64_t>::max();
    const std::uint64_t size = document.bento().file().size();
    return size > (largest - extra) / times ? largest : times * size + extra;
}

}  // namespace

BoundedReads::BoundedReads(const OMFDocument& document)
    : document_(document),
      maximumLongTextBytes_(allowanceFor(document, 1, extraLongTextBytes)),
      maximumTextBytes_(allowanceFor(document, 1, extraTextBytes)),
      maximumLongReads_(allowanceFor(document, timesTheFile, extraLongReads)),
      maximumCopiedBytes_(allowanceFor(document, copiedTimesTheFile, extraCopiedBytes)),
      maximumSteps_(allowanceFor(document, stepsTimesTheFile, extraSteps)),
      longReadsBefore_(document.bento().longReads()) {}

std::vector<OMFObject> BoundedReads::objectRefs(OMFObject object, OMFDocument::Candidates names) {
    auto references = document_.objectRefs(object, names);
    checkWork();
    countSteps(1 + references.size() / referencesOfStep);
    if (references.size() > longList) {
        countReferences(references.size());
    }
    return references;
}

std::optional<std::string> BoundedReads::string(OMFObject object, OMFDocument::Candidates names) {
    auto text = document_.string(object, names);
    checkWork();
    countSteps(stepsOfText + (text ? text->size() / textBytesOfStep : 0));
    if (text) {
        countText(text->size());
    }
    return text;
}

std::optional<Bytes> BoundedReads::head(OMFObject object, OMFProperty property,
                                        std::int64_t maxBytes) const {
    return document_.bento().valuePrefix(number(object), nameOf(property), maxBytes);
}

bool BoundedReads::copy(OMFObject object, OMFProperty property, const std::string& destination) {
    countCopied(object, property);
    return document_.bento().copyValue(number(object), nameOf(property), destination);
}

void BoundedReads::countCopied(OMFObject object, OMFProperty property) {
    const auto& bento = document_.bento();
    const std::uint64_t count = bento.copiedBytes(number(object), nameOf(property));
    if (count > maximumCopiedBytes_ - copiedBytes_) {
        throw OMFIOError::unsupported(
            "embedded audio lies over itself: more than " + std::to_string(maximumCopiedBytes_) +
            " bytes to extract from a file of " + std::to_string(bento.file().size()));
    }
    copiedBytes_ += count;
}

std::span<const OMFRemark> BoundedReads::olderRemarksOf(OMFObject object) const {
    countSteps(1);
    return document_.olderModel()->remarksOf(object);
}

void BoundedReads::refuseSteps() const {
    throw OMFIOError::unsupported("composition takes more than " + std::to_string(maximumSteps_) +
                                  " steps to map");
}

void BoundedReads::countReferences(std::uint64_t count) {
    references_ += count;
    hold(references_, maximumReferences, " entries in its lists");
}

void BoundedReads::countText(std::uint64_t size) {
    textBytes_ += size;
    if (size > longText) {
        longTextBytes_ += size;
        hold(longTextBytes_, maximumLongTextBytes_, " bytes of long texts");
    }
    hold(textBytes_, maximumTextBytes_, " bytes of texts");
}

void BoundedReads::checkWork() const {
    const std::uint64_t done = document_.bento().longReads() - longReadsBefore_;
    if (done > maximumLongReads_) {
        throw OMFIOError::unsupported("composition asks for more than " +
                                      std::to_string(maximumLongReads_) +
                                      " bytes of its long values");
    }
}

}  // namespace trellant
