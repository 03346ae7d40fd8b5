// SPDX-License-Identifier: Apache-2.0
#include "essences.h"

#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <utility>

namespace trellant {

namespace {

/// Bytes of an embedded value that are read for its header when nothing is extracted.
constexpr std::int64_t headerPrefix = 262'144;
/// When neither the audio nor its descriptor tells; the rate of nearly all audio post.
constexpr std::int64_t fallbackSampleRate = 48'000;

}  // namespace

struct Essences::EmbeddedMedia {
    OMFObject object = OMFObject::none;
    OMFProperty data;
    std::string_view extension;
};

Essences::Essences(BoundedReads& reads, const OMFDocument::MobMap& mediaMap,
                   const MappingPlaces& places, MediaSearch& search, MappingNotes& notes)
    : reads_(reads),
      mediaMap_(mediaMap),
      notes_(notes),
      extract_(places.extract),
      names_(places.workDirectory),
      search_(search),
      external_(reads, search) {}

const AAFSourceEssence* Essences::makeEssence(const ResolvedSource& source) {
    if (const auto known = essenceCache_.find(source.mob); known != essenceCache_.end()) {
        return &known->second;
    }
    const auto descriptor = reads_.objectRef(source.mob, {OMFProperty::sourceMobDescription});
    if (!descriptor) {
        return nullptr;
    }
    auto name = reads_.string(source.mob, {OMFProperty::mobName});
    const auto embedded = embeddedMedia(source.mobID);
    auto media =
        embedded ? takeEmbedded(*embedded, source.mobID, name) : findExternal(*descriptor, name);
    const auto* const described = media.format ? nullptr : reads_.describedFormat(*descriptor);
    const auto format = media.format.value_or(described ? *described : AudioFormatInfo{});
    const auto describedRate = reads_.rational(*descriptor, {OMFProperty::fileSampleRate});
    const auto uid = source.mobID.description();
    AAFSourceEssence essence{
        .id = "omf-essence-" + uid,
        .mobID = uid,
        .sourceName = std::move(name),
        .embedded = embedded.has_value(),
        .sampleRate = format.sampleRate.value_or(describedRate ? describedRate->aaf()
                                                               : AAFRational(fallbackSampleRate)),
        .channelCount = format.channels.value_or(1),
        .bitDepth = format.bitDepth,
        .codec = format.codec,
        .originalPath = std::move(media.originalPath)};
    if (media.path) {
        essence.fileURL = fileURL(*media.path);
    }
    if (!essence.codec) {
        essence.codec = reads_.classID(*descriptor).value_or("MDES");
    }
    const auto& kept = essenceCache_.emplace(source.mob, std::move(essence)).first->second;
    reportMissing(source.mob, kept);
    return &kept;
}

void Essences::reportMissing(OMFObject mob, const AAFSourceEssence& essence) {
    if (essence.fileURL) {
        return;
    }
    if (!essence.embedded) {
        notes_.diagnose("external essence not located: " +
                        essence.originalPath.value_or(essence.sourceName.value_or(essence.id)));
    } else if (extract_) {
        notes_.addUnsupported(notes_.lossOfClip(LossKind::essenceNotExtracted),
                              "embedded audio essence could not be extracted",
                              ObjectPath("SMOB", mob));
    }
}

std::optional<Essences::EmbeddedMedia> Essences::embeddedMedia(const OMFUID& mobID) const {
    const auto media = mediaMap_.find(mobID);
    if (media == mediaMap_.end()) {
        return std::nullopt;
    }
    const auto kind = reads_.classOf(media->second);
    if (kind == OMFClass::waveMedia) {
        return EmbeddedMedia{media->second, OMFProperty::waveAudioData, "wav"};
    }
    if (kind == OMFClass::aifcMedia) {
        return EmbeddedMedia{media->second, OMFProperty::aifcAudioData, "aifc"};
    }
    return std::nullopt;
}

Essences::FoundMedia Essences::takeEmbedded(const EmbeddedMedia& media, const OMFUID& mobID,
                                            const std::optional<std::string>& name) {
    if (extract_) {
        return extract(media, name ? *name : "OMF_" + mobID.description());
    }
    FoundMedia found;
    try {
        if (const auto header = reads_.head(media.object, media.data, headerPrefix)) {
            found.format = AudioProbe::probe(*header);
        }
    } catch (const OMFIOError&) {
        found.format.reset();
    } catch (const FileSystemError&) {
        found.format.reset();
    }
    return found;
}

Essences::FoundMedia Essences::extract(const EmbeddedMedia& media, std::string_view name) {
    const auto base = safeName(withoutExtension(lastPathComponent(name)));
    auto path = names_.uniqueURL(base, media.extension);
    if (!reads_.copy(media.object, media.data, path)) {
        return {};
    }
    FoundMedia found{.format = AudioProbe::probeFile(path)};
    if (!found.format && !regularFileExists(path)) {
        // Gone again, with its folder perhaps: a timeline names no file that is not there.
        return {};
    }
    search_.fileAppeared(path);
    found.path = std::move(path);
    return found;
}

Essences::FoundMedia Essences::findExternal(OMFObject descriptor,
                                            const std::optional<std::string>& name) {
    auto located = external_.resolve(descriptor, name);
    FoundMedia found{.path = std::move(located.path),
                     .originalPath = std::move(located.originalPath)};
    if (found.path) {
        const auto [known, isNew] = externalFormats_.try_emplace(*found.path);
        if (isNew) {
            known->second = AudioProbe::probeFile(*found.path);
        }
        found.format = known->second;
    }
    return found;
}

std::vector<AAFSourceEssence> Essences::takeSorted() {
    std::vector<AAFSourceEssence> sorted;
    sorted.reserve(essenceCache_.size());
    for (auto& [mob, essence] : essenceCache_) {
        sorted.push_back(std::move(essence));
    }
    essenceCache_.clear();
    std::sort(sorted.begin(), sorted.end(),
              [](const AAFSourceEssence& left, const AAFSourceEssence& right) {
                  return left.id < right.id;
              });
    return sorted;
}

}  // namespace trellant
