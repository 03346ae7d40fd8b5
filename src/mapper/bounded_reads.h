// SPDX-License-Identifier: Apache-2.0
// All that a mapping reads of a document's values: lists, texts and embedded audio, which may be
// long, with a bound on all of them together, and the small values beside them.
//
// Values may lie over one another in a file: many small objects can each claim the same long list
// or text, and a file of a megabyte could ask for work without end. Short lists need no bound: each
// costs its object. Texts do: an object in ten million places is named ten million times. And what
// a read gives may be less than it takes: rubbish that is no text, a list of nothing.
//
// Small values cost little, but ten million places that look at a hundred small values each take a
// minute. So all that a mapping does is counted in steps, each about as long as one read of a small
// value, some 25 ns.
#pragma once

#include <trellant/omf/document.h>

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace trellant {

class BoundedReads {
  public:
    /// References in all lists longer than `longList` that one request reads; the largest
    /// compositions hold a few million.
    static constexpr std::uint64_t maximumReferences = 67'108'864;
    static constexpr std::size_t longList = 64;
    /// Bytes in all texts of more than `longText` bytes, and in all texts, each beyond as many as
    /// the file has: texts that do not lie over one another, in objects of one place each, never
    /// reach that.
    static constexpr std::uint64_t extraLongTextBytes = 268'435'456;
    static constexpr std::size_t longText = 4096;
    static constexpr std::uint64_t extraTextBytes = 1'073'741'824;
    /// What may be read of long values (BentoContainer::longReads): so many times the file's size,
    /// since some are read more than once, and these.
    static constexpr std::uint64_t timesTheFile = 16;
    static constexpr std::uint64_t extraLongReads = 2'147'483'648;
    /// Embedded media may lie over one another: what is copied out of a file has at most so many
    /// times its bytes, and these. Two media that share one value are no rarity.
    static constexpr std::uint64_t copiedTimesTheFile = 16;
    static constexpr std::uint64_t extraCopiedBytes = 67'108'864;
    /// Steps of one request: so many times the file's size, which an unshared composition never
    /// needs, and these.
    static constexpr std::uint64_t stepsTimesTheFile = 16;
    static constexpr std::uint64_t extraSteps = 167'772'160;

    /// `document` must outlive this.
    explicit BoundedReads(const OMFDocument& document);

    /// As OMFDocument reads them. Past a bound both throw OMFIOError unsupported.
    [[nodiscard]] std::vector<OMFObject> objectRefs(OMFObject object,
                                                    OMFDocument::Candidates names);
    [[nodiscard]] std::optional<std::string> string(OMFObject object,
                                                    OMFDocument::Candidates names);

    /// At most the first `maxBytes` bytes of a value (BentoContainer::valuePrefix).
    [[nodiscard]] std::optional<Bytes> head(OMFObject object, OMFProperty property,
                                            std::int64_t maxBytes) const;
    /// Copies a value into a new file (BentoContainer::copyValue). Throws OMFIOError unsupported
    /// when all that is copied would be too much for such a file.
    [[nodiscard]] bool copy(OMFObject object, OMFProperty property, const std::string& destination);

    /// Values of a few bytes as OMFDocument reads them, a step each. Past the bound of the steps
    /// they throw OMFIOError unsupported.
    [[nodiscard]] std::optional<std::int16_t> int16(OMFObject object,
                                                    OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.int16(object, names);
    }
    [[nodiscard]] std::optional<std::int32_t> int32(OMFObject object,
                                                    OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.int32(object, names);
    }
    [[nodiscard]] std::optional<std::uint32_t> uint32(OMFObject object,
                                                      OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.uint32(object, names);
    }
    [[nodiscard]] std::optional<std::int64_t> int64(OMFObject object,
                                                    OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.int64(object, names);
    }
    [[nodiscard]] std::optional<OMFRationalValue> rational(OMFObject object,
                                                           OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.rational(object, names);
    }
    [[nodiscard]] std::optional<OMFUID> uid(OMFObject object, OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.uid(object, names);
    }
    [[nodiscard]] std::optional<OMFObject> objectRef(OMFObject object,
                                                     OMFDocument::Candidates names) const {
        countSteps(1);
        return document_.objectRef(object, names);
    }

    /// What a document of an older model cannot tell of an object; empty for any other. Lives as
    /// long as the document.
    [[nodiscard]] std::span<const OMFRemark> remarksOf(OMFObject object) const {
        return document_.olderModel() ? olderRemarksOf(object) : std::span<const OMFRemark>();
    }

    /// What a document of an older model says of audio by its descriptor; null where it says
    /// nothing, and in any other document. Lives as long as the document.
    [[nodiscard]] const AudioFormatInfo* describedFormat(OMFObject descriptor) const {
        countSteps(1);
        return document_.olderModel() ? document_.olderModel()->formatOf(descriptor) : nullptr;
    }

    /// Classes were read when the document was opened.
    [[nodiscard]] std::optional<std::string_view> classID(OMFObject object) const noexcept {
        return document_.classID(object);
    }
    [[nodiscard]] OMFClass classOf(OMFObject object) const noexcept {
        return document_.classOf(object);
    }
    [[nodiscard]] std::vector<OMFObject> objects(std::string_view ofClass) const {
        return document_.objects(ofClass);
    }

    /// Counts so many steps of work beside the reads. Throws OMFIOError unsupported past the bound.
    void countSteps(std::uint64_t count) const {
        steps_ += count;
        if (steps_ > maximumSteps_) {
            refuseSteps();
        }
    }
    /// Counted so far.
    [[nodiscard]] std::uint64_t steps() const noexcept { return steps_; }

    /// Counts what was read from a list once and is given out again.
    void countReferences(std::uint64_t count);
    /// The same for a text, of so many bytes.
    void countText(std::uint64_t size);
    /// Throws OMFIOError unsupported when the document was asked for too much of its long values,
    /// by whomever. For walks that read much else.
    void checkWork() const;

  private:
    [[noreturn]] void refuseSteps() const;
    [[nodiscard]] std::span<const OMFRemark> olderRemarksOf(OMFObject object) const;
    void countCopied(OMFObject object, OMFProperty property);

    const OMFDocument& document_;
    std::uint64_t maximumLongTextBytes_;
    std::uint64_t maximumTextBytes_;
    std::uint64_t maximumLongReads_;
    std::uint64_t maximumCopiedBytes_;
    std::uint64_t maximumSteps_;
    /// Of the document when this began.
    std::uint64_t longReadsBefore_;
    /// Reading changes nothing that anybody sees but this.
    mutable std::uint64_t steps_ = 0;
    std::uint64_t references_ = 0;
    std::uint64_t textBytes_ = 0;
    std::uint64_t longTextBytes_ = 0;
    std::uint64_t copiedBytes_ = 0;
};

}  // namespace trellant
