// SPDX-License-Identifier: Apache-2.0
#include "bounded_reads.h"

#include <trellant/base/free_numbers.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/embedded_media.h>
#include <trellant/omf/audio_probe.h>

#include <algorithm>
#include <cstdint>
#include <limits>
#include <map>
#include <sys/stat.h>

namespace trellant {

namespace {

/// The number after the last that sources of one name are given.
constexpr std::uint64_t firstFurtherNumber = 1'000;
/// Unused media that are named; more would bury the message.
constexpr std::size_t namedUnused = 5;
constexpr std::size_t longestShownName = 80;
/// Bytes of a header that are read: those that nearly every one fits into, then those that one with
/// much about the audio before it takes.
constexpr std::int64_t usualHeader = 4'096;
constexpr std::int64_t longHeader = 262'144;

struct Media {
    OMFObject object = OMFObject::none;
    OMFProperty data{};
};

std::optional<OMFProperty> dataProperty(OMFClass kind) {
    if (kind == OMFClass::waveMedia) {
        return OMFProperty::waveAudioData;
    }
    if (kind == OMFClass::aifcMedia) {
        return OMFProperty::aifcAudioData;
    }
    return std::nullopt;
}

/// Audio media by the text of the mob's identifier.
KeyedMap<std::string, Media> audioMedia(const OMFDocument& document) {
    KeyedMap<std::string, Media> media;
    for (const auto& [mobID, object] : document.mediaDataMap()) {
        if (const auto data = dataProperty(document.classOf(object))) {
            media.emplace(mobID.description(), Media{object, *data});
        }
    }
    return media;
}

std::string nameOfMedia(const OMFDocument& document, BoundedReads& reads,
                        const OMFDocument::MobMap& mobs, OMFObject object) {
    const auto mobID = document.uid(object, {OMFProperty::mediaMobID});
    const auto mob = mobID ? mobs.find(*mobID) : mobs.end();
    const auto name =
        mob == mobs.end() ? std::nullopt : reads.string(mob->second, {OMFProperty::mobName});
    return name ? printableText(*name, longestShownName)
                : "object " + std::to_string(number(object));
}

/// Samples of one channel; absent where the header does not tell or cannot be read.
std::optional<std::uint64_t> framesOf(const OMFDocument& document, const BoundedReads& reads,
                                      const Media& media) {
    const std::uint64_t size =
        document.bento().copiedBytes(number(media.object), nameOf(media.data));
    try {
        for (const std::int64_t bytes : {usualHeader, longHeader}) {
            const auto header = reads.head(media.object, media.data, bytes);
            const auto frames = header ? AudioProbe::frames(*header, size) : std::nullopt;
            if (frames || !header || header->size() < static_cast<std::size_t>(bytes)) {
                return frames;
            }
        }
    } catch (const OMFIOError&) {
        return std::nullopt;
    } catch (const FileSystemError&) {
        return std::nullopt;
    }
    return std::nullopt;
}

bool isThere(const std::string& path) {
    struct stat status {};
    return ::lstat(path.c_str(), &status) == 0;
}

/// Paths beside shared files, each given once.
class FurtherPaths {
  public:
    [[nodiscard]] std::string beside(const std::string& shared) {
        const std::string folder = shared.substr(0, shared.rfind('/') + 1);
        const NumberedName name = NumberedName::whole(shared.substr(folder.size()));
        const auto numbered = [&](std::uint64_t number) {
            return folder + name.withNumber(number);
        };
        // A source may be called by such a number itself.
        const auto isTaken = [this](const std::string& path) {
            return given_.contains(path) || isThere(path);
        };
        constexpr auto last = std::numeric_limits<std::uint64_t>::max();
        const auto free = numbers_.find(firstFurtherNumber, last, numbered, isTaken);
        return *given_.insert(numbered(free.value_or(last))).first;
    }

  private:
    FreeNumbers numbers_;
    KeyedSet<std::string> given_;
};

/// Positions of embedded essences by the file that they name.
std::map<std::string, std::vector<std::size_t>> sharers(const AAFTimeline& timeline) {
    std::map<std::string, std::vector<std::size_t>> byPath;
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        const AAFSourceEssence& essence = timeline.essences[index];
        const auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
        if (essence.embedded && path) {
            byPath[*path].push_back(index);
        }
    }
    std::erase_if(byPath, [](const auto& entry) { return entry.second.size() < 2; });
    return byPath;
}

class Separation {
  public:
    explicit Separation(const OMFDocument& document)
        : reads_(document), media_(audioMedia(document)) {}

    [[nodiscard]] SeparatedSource take(const AAFSourceEssence& essence, std::string path) {
        SeparatedSource source{.essenceID = essence.id};
        const auto found = media_.find(essence.mobID.value_or(""));
        if (found != media_.end() && write(found->second, path)) {
            source.path = std::move(path);
        }
        return source;
    }

  private:
    /// Damage and bounds cost this source, not the answer.
    [[nodiscard]] bool write(const Media& media, const std::string& path) {
        try {
            return reads_.copy(media.object, media.data, path);
        } catch (const OMFIOError&) {
            return false;
        }
    }

    BoundedReads reads_;
    KeyedMap<std::string, Media> media_;
};

}  // namespace

UnusedMedia unusedMedia(const OMFDocument& document, const AAFTimeline& timeline) {
    KeyedSet<OMFObject> used;
    const auto media = audioMedia(document);
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto found = media.find(essence.mobID.value_or(""));
        if (essence.embedded && found != media.end()) {
            used.insert(found->second.object);
        }
    }
    UnusedMedia unused;
    BoundedReads reads(document);
    OMFDocument::MobMap mobs;
    for (const char* const kind : {"WAVE", "AIFC"}) {
        const OMFProperty data = kind == std::string_view("WAVE") ? OMFProperty::waveAudioData
                                                                  : OMFProperty::aifcAudioData;
        for (const OMFObject object : document.objects(kind)) {
            if (used.contains(object)) {
                continue;
            }
            if (unused.count == 0) {
                mobs = document.mobMap();
            }
            const std::uint64_t bytes = document.bento().copiedBytes(number(object), nameOf(data));
            unused.bytes +=
                std::min(bytes, std::numeric_limits<std::uint64_t>::max() - unused.bytes);
            if (unused.count++ < namedUnused) {
                unused.names.push_back(nameOfMedia(document, reads, mobs, object));
            }
        }
    }
    return unused;
}

std::vector<MediaLength> mediaLengths(const OMFDocument& document, const AAFTimeline& timeline) {
    const auto media = audioMedia(document);
    const BoundedReads reads(document);
    std::vector<MediaLength> lengths;
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto found = media.find(essence.mobID.value_or(""));
        if (essence.embedded && found != media.end()) {
            if (const auto frames = framesOf(document, reads, found->second)) {
                lengths.push_back({essence.id, *frames});
            }
        }
    }
    return lengths;
}

std::vector<SeparatedSource> separateSources(const OMFDocument& document,
                                             const AAFTimeline& timeline) {
    std::vector<SeparatedSource> separated;
    const auto shared = sharers(timeline);
    if (shared.empty()) {
        return separated;
    }
    Separation separation(document);
    FurtherPaths paths;
    for (const auto& [path, positions] : shared) {
        for (const std::size_t index : positions) {
            separated.push_back(separation.take(timeline.essences[index], paths.beside(path)));
        }
    }
    return separated;
}

}  // namespace trellant
