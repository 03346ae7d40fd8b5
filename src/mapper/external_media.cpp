// SPDX-License-Identifier: Apache-2.0
#include "external_media.h"

#include "data_kinds.h"
#include "file_names.h"
#include "source_resolution.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <string_view>
#include <utility>

namespace trellant {

namespace {

/// Descriptors have one or two locators. Mobs may share a descriptor, and then following more than
/// these again for each would cost mobs times locators.
constexpr std::size_t fewLocators = 16;

/// The file that a locator's path names when it can be tried as it stands.
std::optional<std::string> directPath(const std::string& locator) {
    constexpr std::string_view scheme = "file:";
    if (lowerCased(locator.substr(0, scheme.size())) == scheme) {
        return pathOfFileURL(locator);
    }
    if (locator.starts_with('/')) {
        return locator;
    }
    return std::nullopt;
}

/// The lower-cased file name within a path as any system writes it.
std::string wantedName(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    return lowerCased(lastPathComponent(path));
}

/// Source Mobs whose audio, if they have any, is not embedded. Those of tapes and films have no
/// sample rate and are left out before more is asked of them.
std::vector<OMFObject> externalSources(const OMFDocument& document, BoundedReads& reads,
                                       const OMFDocument::MobMap& media) {
    std::vector<OMFObject> sources;
    for (const OMFObject mob : document.objects("SMOB")) {
        const auto descriptor = reads.objectRef(mob, {OMFProperty::sourceMobDescription});
        if (!descriptor) {
            continue;
        }
        const OMFClass kind = reads.classOf(*descriptor);
        if (kind != OMFClass::waveDescriptor && kind != OMFClass::aifcDescriptor &&
            !reads.rational(*descriptor, {OMFProperty::fileSampleRate})) {
            continue;
        }
        const auto mobID = reads.uid(mob, {OMFProperty::mobID});
        const auto found = mobID ? media.find(*mobID) : media.end();
        const OMFClass data =
            found == media.end() ? OMFClass::absent : reads.classOf(found->second);
        if (data != OMFClass::waveMedia && data != OMFClass::aifcMedia) {
            sources.push_back(mob);
        }
    }
    return sources;
}

}  // namespace

ExternalMedia::Found ExternalMedia::resolve(OMFObject descriptor,
                                            const std::optional<std::string>& sourceName) {
    auto found = followLocators(descriptor);
    if (found.path) {
        return found;
    }
    if (!found.originalPath) {
        found.originalPath = sourceName;
    }
    if (found.originalPath && search_.hasDirectory()) {
        found.path = search_.locate(wantedName(*found.originalPath));
    }
    return found;
}

ExternalMedia::Found ExternalMedia::followLocators(OMFObject descriptor) {
    if (const auto known = manyLocators_.find(descriptor); known != manyLocators_.end()) {
        reads_.countText(known->second.originalPath ? known->second.originalPath->size() : 0);
        return known->second;
    }
    Found found;
    const auto locators = reads_.objectRefs(
        descriptor,
        {OMFProperty::descriptorLocator, OMFProperty::fileLocator, OMFProperty::fileLocators});
    for (const auto locator : locators) {
        const auto path =
            reads_.string(locator, {OMFProperty::networkLocatorURL, OMFProperty::unixLocatorPath,
                                    OMFProperty::dosLocatorPath, OMFProperty::windowsLocatorPath,
                                    OMFProperty::textLocatorName});
        if (path) {
            if (!found.originalPath) {
                found.originalPath = path;
            }
            if (auto direct = directPath(*path); direct && search_.isInReach(*direct)) {
                found.path = std::move(direct);
                break;
            }
        }
        if (!found.originalPath && reads_.classOf(locator) == OMFClass::macLocator) {
            found.originalPath = reads_.string(locator, {OMFProperty::macLocatorFileName});
        }
    }
    if (locators.size() > fewLocators) {
        manyLocators_.emplace(descriptor, found);
    }
    return found;
}

std::vector<std::string> externalFiles(const OMFDocument& document, const OMFDocument::MobMap& mobs,
                                       const OMFDocument::MobMap& media, MediaSearch& search) {
    std::vector<std::string> files;
    BoundedReads reads(document);
    try {
        const auto sources = externalSources(document, reads, media);
        if (sources.empty()) {
            return files;
        }
        DataKinds kinds(reads);
        SourceResolution resolution(reads, mobs, kinds);
        ExternalMedia external(reads, search);
        for (const OMFObject mob : sources) {
            const auto descriptor = reads.objectRef(mob, {OMFProperty::sourceMobDescription});
            if (!descriptor || !resolution.isAudioSource(mob)) {
                continue;
            }
            auto found = external.resolve(*descriptor, reads.string(mob, {OMFProperty::mobName}));
            if (found.path) {
                files.push_back(*std::move(found.path));
            }
        }
    } catch (const OMFIOError&) {
        return files;
    }
    return files;
}

}  // namespace trellant
