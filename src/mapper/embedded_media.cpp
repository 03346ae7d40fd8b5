// SPDX-License-Identifier: Apache-2.0
#include "bounded_reads.h"

#include <trellant/base/free_numbers.h>
#include <trellant/base/keyed_hash.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/embedded_media.h>

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
        for (const OMFObject object : document.objects(kind)) {
            if (used.contains(object)) {
                continue;
            }
            if (unused.count == 0) {
                mobs = document.mobMap();
            }
            if (unused.count++ < namedUnused) {
                unused.names.push_back(nameOfMedia(document, reads, mobs, object));
            }
        }
    }
    return unused;
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
