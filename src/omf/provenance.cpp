// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/text.h>
#include <trellant/io/errors.h>
#include <trellant/omf/provenance.h>

#include <algorithm>

namespace trellant {

namespace {

constexpr std::size_t longestName = 1'024;

std::optional<std::string> shortText(const OMFDocument& document, OMFObject object,
                                     OMFProperty property) {
    auto text = document.string(object, {property});
    if (text) {
        *text = std::string(prefixOfClusters(*text, longestName, longestName));
    }
    return text;
}

}  // namespace

std::optional<std::string> modelVersion(const OMFDocument& document) {
    constexpr std::int64_t longestVersion = 16;
    try {
        const auto bytes =
            document.raw(document.headerObject(), {OMFProperty::headVersion}, longestVersion);
        if (!bytes || bytes->size() < 2) {
            return std::nullopt;
        }
        return std::to_string(std::to_integer<unsigned>((*bytes)[0])) + "." +
               std::to_string(std::to_integer<unsigned>((*bytes)[1]));
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

std::vector<OMFApplication> applications(const OMFDocument& document) {
    std::vector<OMFApplication> found;
    const auto list =
        document.objectRefs(document.headerObject(), {OMFProperty::headIdentificationList});
    // Of a list beyond any history the last ones count: they say who wrote what is there.
    const std::size_t first = list.size() - std::min(list.size(), mostApplications);
    for (std::size_t i = first; i < list.size(); ++i) {
        OMFApplication& application = found.emplace_back();
        application.company = shortText(document, list[i], OMFProperty::identCompanyName);
        application.product = shortText(document, list[i], OMFProperty::identProductName);
        application.version = shortText(document, list[i], OMFProperty::identProductVersionString);
        if (!application.company && !application.product && !application.version) {
            found.pop_back();
        }
    }
    return found;
}

}  // namespace trellant
