// Reads of lists and texts, which may be long, with a bound on all of them together.
//
// Values may lie over one another in a file: many small objects can each claim the same long list
// or text, and a file of a megabyte could ask for work without end. Short lists need no bound: each
// costs its object. Texts do: an object in ten million places is named ten million times. And what
// a read gives may be less than it takes: rubbish that is no text, a list of nothing.
#pragma once

#include <trellant/omf/document.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant {

/// `times` times the file's size and `extra`, as far as numbers go: what a request may ask for,
/// in bytes, when it depends on what the file has.
[[nodiscard]] std::uint64_t allowanceFor(const OMFDocument& document, std::uint64_t times,
                                         std::uint64_t extra);

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

    /// `document` must outlive this.
    explicit BoundedReads(const OMFDocument& document);

    [[nodiscard]] const OMFDocument& document() const noexcept { return document_; }

    /// As OMFDocument reads them. Past a bound both throw OMFIOError unsupported.
    [[nodiscard]] std::vector<OMFObject> objectRefs(OMFObject object,
                                                    OMFDocument::Candidates names);
    [[nodiscard]] std::optional<std::string> string(OMFObject object,
                                                    OMFDocument::Candidates names);

    /// Counts what was read from a list once and is given out again.
    void countReferences(std::uint64_t count);
    /// The same for a text, of so many bytes.
    void countText(std::uint64_t size);
    /// Throws OMFIOError unsupported when the document was asked for too much of its long values,
    /// by whomever. For walks that read much else.
    void checkWork() const;

  private:
    const OMFDocument& document_;
    std::uint64_t maximumLongTextBytes_;
    std::uint64_t maximumTextBytes_;
    std::uint64_t maximumLongReads_;
    /// Of the document when this began.
    std::uint64_t longReadsBefore_;
    std::uint64_t references_ = 0;
    std::uint64_t textBytes_ = 0;
    std::uint64_t longTextBytes_ = 0;
};

}  // namespace trellant
