// SPDX-License-Identifier: Apache-2.0
// What a document knows of objects that were written in an older model and are presented as those
// of OMF 2.x: the version, and what of them could not be told.
#pragma once

#include <trellant/model/loss_kind.h>
#include <trellant/omf/audio_probe.h>
#include <trellant/omf/values.h>

#include <span>
#include <string>
#include <utility>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// Something about an object that OMF 2.x has no value for, in words of the interchange format.
struct OMFRemark {
    OMFObject object = OMFObject::none;
    LossKind kind = LossKind::olderModelUnknown;
    std::string sentence{};
    bool operator==(const OMFRemark&) const = default;
};

/// What a descriptor says of audio whose own header nobody has: channels and bits.
struct OMFDescribedFormat {
    OMFObject descriptor = OMFObject::none;
    AudioFormatInfo format{};
    bool operator==(const OMFDescribedFormat&) const = default;
};

class OMFOlderModel {
  public:
    /// `version` as the file has it: "1.0". Remarks of one object keep their order; of several
    /// formats of one descriptor the first counts.
    OMFOlderModel(std::string version, std::vector<OMFRemark> remarks,
                  std::vector<OMFDescribedFormat> formats = {});

    [[nodiscard]] const std::string& version() const noexcept { return version_; }
    /// By ascending object.
    [[nodiscard]] const std::vector<OMFRemark>& remarks() const noexcept { return remarks_; }
    /// Those of one object; empty for nearly every one. Lives as long as this.
    [[nodiscard]] std::span<const OMFRemark> remarksOf(OMFObject object) const noexcept;

    /// Null for a descriptor that says nothing. Lives as long as this.
    [[nodiscard]] const AudioFormatInfo* formatOf(OMFObject descriptor) const noexcept;

  private:
    std::string version_;
    std::vector<OMFRemark> remarks_;
    /// By ascending descriptor.
    std::vector<OMFDescribedFormat> formats_;
};

}  // namespace trellant
