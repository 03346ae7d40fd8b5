// SPDX-License-Identifier: Apache-2.0
// From an opened document to a timeline. The one public door of this folder.
#pragma once

#include <trellant/mapper/loss_places.h>
#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// Where a mapping finds and leaves media. All paths are absolute, bytes as the system knows them.
struct MappingPlaces {
    /// The interchange file; becomes the timeline's `sourceAAF`.
    std::string sourcePath{};
    /// Where embedded audio is written when `extract` is set.
    std::string workDirectory{};
    /// Where external media are looked for, folders within too; absent: only where locators say.
    std::optional<std::string> mediaSearchDirectory{};
    /// Take embedded audio out; without it nothing is written anywhere.
    bool extract = false;
    /// Keep the place of every loss; costs a place's memory for each.
    bool placesLosses = false;
};

/// One mapping, on one thread; several mappers may share a document.
class Mapper {
  public:
    /// Called on the mapping's thread before each slot of the composition, with a fraction from
    /// 0.15 to below 0.95. What it throws ends the mapping and comes out of it.
    using Progress = std::function<void(double)>;

    /// Called once, before the composition is read, with every file that the mapping will read
    /// beside the document and what it writes itself: external media that are there. What it
    /// throws comes out of the constructor.
    using BeforeMapping = std::function<void(const std::vector<std::string>&)>;

    /// `document` must outlive the mapper. External media are looked for beforehand only when
    /// somebody wants to be told.
    Mapper(const OMFDocument& document, MappingPlaces places,
           const BeforeMapping& beforeMapping = {});
    ~Mapper();
    Mapper(const Mapper&) = delete;
    Mapper& operator=(const Mapper&) = delete;
    Mapper(Mapper&&) = delete;
    Mapper& operator=(Mapper&&) = delete;

    /// Maps the composition; call once. Throws OMFIOError malformed when there is no composition
    /// or no resolvable audio, unsupported when the composition expands beyond all bounds, and
    /// what extraction throws. Every other loss is a record of the timeline.
    [[nodiscard]] AAFTimeline makeTimeline(const Progress& progress);

    /// Remarks for a person, in the order made. Empty before makeTimeline.
    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept;

    /// Where the losses lie: one place for each of the timeline's `unsupportedFeatures`, in their
    /// order. Empty before makeTimeline has returned, and unless the places given say
    /// `placesLosses`.
    [[nodiscard]] const std::vector<LossPlace>& lossPlaces() const noexcept;

  private:
    class Assembly;
    std::unique_ptr<Assembly> assembly_;
};

}  // namespace trellant
