// SPDX-License-Identifier: Apache-2.0
#include <trellant/omf/older_model.h>

#include <algorithm>

namespace trellant {

namespace {

struct ByObject {
    bool operator()(const OMFRemark& left, const OMFRemark& right) const noexcept {
        return left.object < right.object;
    }
    bool operator()(const OMFRemark& remark, OMFObject object) const noexcept {
        return remark.object < object;
    }
    bool operator()(OMFObject object, const OMFRemark& remark) const noexcept {
        return object < remark.object;
    }
};

}  // namespace

OMFOlderModel::OMFOlderModel(std::string version, std::vector<OMFRemark> remarks,
                             std::vector<OMFDescribedFormat> formats)
    : version_(std::move(version)), remarks_(std::move(remarks)), formats_(std::move(formats)) {
    std::stable_sort(remarks_.begin(), remarks_.end(), ByObject());
    std::stable_sort(formats_.begin(), formats_.end(),
                     [](const OMFDescribedFormat& left, const OMFDescribedFormat& right) {
                         return left.descriptor < right.descriptor;
                     });
}

const AudioFormatInfo* OMFOlderModel::formatOf(OMFObject descriptor) const noexcept {
    const auto found = std::lower_bound(formats_.begin(), formats_.end(), descriptor,
                                        [](const OMFDescribedFormat& described, OMFObject wanted) {
                                            return described.descriptor < wanted;
                                        });
    return found == formats_.end() || found->descriptor != descriptor ? nullptr : &found->format;
}

std::span<const OMFRemark> OMFOlderModel::remarksOf(OMFObject object) const noexcept {
    const auto [first, last] =
        std::equal_range(remarks_.begin(), remarks_.end(), object, ByObject());
    return {first, last};
}

}  // namespace trellant
