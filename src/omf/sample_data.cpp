// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/keyed_hash.h>
#include <trellant/io/errors.h>
#include <trellant/omf/audio_probe.h>
#include <trellant/omf/sample_data.h>

#include <algorithm>
#include <optional>
#include <utility>
#include <variant>

namespace trellant {

namespace {

constexpr std::int64_t usualHead = 4'096;
constexpr std::int64_t longHead = 262'144;

struct Media {
    OMFObject object = OMFObject::none;
    OMFProperty data{};
};

KeyedMap<std::string, Media> audioByMob(const OMFDocument& document) {
    KeyedMap<std::string, Media> media;
    for (const auto& [mobID, object] : document.mediaDataMap()) {
        const OMFClass kind = document.classOf(object);
        if (kind == OMFClass::waveMedia) {
            media.emplace(mobID.description(), Media{object, OMFProperty::waveAudioData});
        } else if (kind == OMFClass::aifcMedia) {
            media.emplace(mobID.description(), Media{object, OMFProperty::aifcAudioData});
        }
    }
    return media;
}

/// Where the samples lie within the audio file that the value is.
std::optional<SamplePlace> placeWithin(const OMFDocument& document, const Media& media,
                                       std::uint64_t size) {
    for (const std::int64_t bytes : {usualHead, longHead}) {
        const auto head =
            document.bento().valuePrefix(number(media.object), nameOf(media.data), bytes);
        if (!head) {
            return std::nullopt;
        }
        const auto place = AudioProbe::samples(*head, size);
        if (place || head->size() < static_cast<std::size_t>(bytes)) {
            return place;
        }
    }
    return std::nullopt;
}

/// The stretches of the file that hold bytes `place` of a value of these segments; empty when any
/// part of them is no stretch of the file.
std::vector<SamplePiece> piecesOf(const std::vector<BentoValueSegment>& segments,
                                  const SamplePlace& place, std::uint64_t fileSize) {
    std::vector<SamplePiece> pieces;
    std::uint64_t skipped = place.offset;
    std::uint64_t wanted = place.length;
    for (const BentoValueSegment& segment : segments) {
        const auto* const range = std::get_if<BentoRange>(&segment.storage);
        if (wanted == 0) {
            break;
        }
        if (range == nullptr || range->offset > fileSize ||
            range->length > fileSize - range->offset) {
            return {};
        }
        const std::uint64_t before = std::min(skipped, range->length);
        const std::uint64_t taken = std::min(wanted, range->length - before);
        if (taken > 0) {
            pieces.push_back({range->offset + before, taken});
        }
        skipped -= before;
        wanted -= taken;
    }
    return wanted == 0 ? pieces : std::vector<SamplePiece>();
}

std::optional<SampleData> samplesOf(const OMFDocument& document, const Media& media) {
    try {
        const auto name = nameOf(media.data);
        const std::uint64_t size = document.bento().copiedBytes(number(media.object), name);
        const auto place = placeWithin(document, media, size);
        if (!place) {
            return std::nullopt;
        }
        auto pieces = piecesOf(document.bento().valueSegments(number(media.object), name), *place,
                               document.bento().file().size());
        if (pieces.empty()) {
            return std::nullopt;
        }
        return SampleData{.sampleBytes = place->sampleBytes,
                          .isBigEndian = place->isBigEndian,
                          .pieces = std::move(pieces)};
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
}

}  // namespace

std::vector<SampleData> sampleData(const OMFDocument& document, const AAFTimeline& timeline) {
    const auto media = audioByMob(document);
    std::vector<SampleData> found;
    std::size_t pieces = 0;
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto of = media.find(essence.mobID.value_or(""));
        if (!essence.embedded || of == media.end()) {
            continue;
        }
        auto samples = samplesOf(document, of->second);
        if (samples && samples->pieces.size() <= mostSamplePieces - pieces) {
            pieces += samples->pieces.size();
            samples->essenceID = essence.id;
            found.push_back(std::move(*samples));
        }
    }
    return found;
}

}  // namespace trellant
