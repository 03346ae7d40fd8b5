#include "embedded_media.h"

#include "numbered_name.h"
#include "process/isolated.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/url.h>
#include <trellant/omf/document.h>

#include <algorithm>
#include <charconv>
#include <map>
#include <unistd.h>
#include <unordered_map>
#include <unordered_set>
#include <variant>
#include <vector>

namespace trellant::cli {

namespace {

/// The number after the last that the worker gives to sources of one name.
constexpr std::uint64_t firstFurtherNumber = 1'000;
/// Unused media that are named; more would bury the message.
constexpr std::size_t namedUnused = 5;
constexpr std::size_t longestShownName = 80;

struct Media {
    OMFObject object = OMFObject::none;
    OMFProperty data{};
};

/// A source that is taken out again.
struct Task {
    std::size_t essence;
    std::string path;
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
std::unordered_map<std::string, Media> audioMedia(const OMFDocument& document) {
    std::unordered_map<std::string, Media> media;
    for (const auto& [mobID, object] : document.mediaDataMap()) {
        if (const auto data = dataProperty(document.classOf(object))) {
            media.emplace(mobID.description(), Media{object, *data});
        }
    }
    return media;
}

/// Every source but the first of those that share a file gets another; all of them are tasks,
/// because nobody knows whose audio the shared file holds.
std::vector<Task> tasksFor(AAFTimeline& timeline, const Staging& staging) {
    std::map<std::string, std::vector<std::size_t>> sharers;
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        const AAFSourceEssence& essence = timeline.essences[index];
        const auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
        if (essence.embedded && path && staging.holds(*path)) {
            sharers[*path].push_back(index);
        }
    }
    std::vector<Task> tasks;
    std::unordered_set<std::string> given;
    for (const auto& [path, sources] : sharers) {
        if (sources.size() < 2) {
            continue;
        }
        tasks.push_back({sources.front(), path});
        const NumberedName name = NumberedName::whole(staging.nameOf(path));
        std::uint64_t number = firstFurtherNumber;
        for (std::size_t index = 1; index < sources.size(); ++index) {
            std::string free = staging.file(name.withNumber(number));
            // A source may be called by such a number itself.
            while (staging.holds(free) || !given.insert(free).second) {
                free = staging.file(name.withNumber(++number));
            }
            tasks.push_back({sources[index], std::move(free)});
        }
    }
    return tasks;
}

void takeOut(const OMFDocument& document, const AAFTimeline& timeline,
             const std::vector<Task>& tasks) {
    const auto media = audioMedia(document);
    for (const Task& task : tasks) {
        const auto found = media.find(timeline.essences[task.essence].mobID.value_or(""));
        if (found != media.end()) {
            static_cast<void>(document.bento().copyValue(number(found->second.object),
                                                         nameOf(found->second.data), task.path));
        }
    }
}

/// A name from a stranger's file, as one line.
std::string nameOfMedia(const OMFDocument& document, const OMFDocument::MobMap& mobs,
                        OMFObject object) {
    const auto mobID = document.uid(object, {OMFProperty::mediaMobID});
    const auto mob = mobID ? mobs.find(*mobID) : mobs.end();
    const auto name =
        mob == mobs.end() ? std::nullopt : document.string(mob->second, {OMFProperty::mobName});
    return name ? printableText(*name, longestShownName)
                : "object " + std::to_string(number(object));
}

/// The number of unused media, then the first names, a line each.
std::string unusedMedia(const OMFDocument& document, const AAFTimeline& timeline) {
    std::unordered_set<OMFObject> used;
    const auto media = audioMedia(document);
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto found = media.find(essence.mobID.value_or(""));
        if (essence.embedded && found != media.end()) {
            used.insert(found->second.object);
        }
    }
    std::vector<OMFObject> unused;
    for (const char* const kind : {"WAVE", "AIFC"}) {
        for (const OMFObject object : document.objects(kind)) {
            if (!used.contains(object)) {
                unused.push_back(object);
            }
        }
    }
    std::string text = std::to_string(unused.size());
    const auto mobs = unused.empty() ? OMFDocument::MobMap() : document.mobMap();
    for (std::size_t index = 0; index < std::min(unused.size(), namedUnused); ++index) {
        text += "\n" + nameOfMedia(document, mobs, unused[index]);
    }
    return text;
}

/// Reads what unusedMedia wrote.
UnusedMedia readUnused(const std::string& text) {
    UnusedMedia unused;
    std::from_chars(text.data(), text.data() + text.size(), unused.count);
    for (auto end = text.find('\n'); end != std::string::npos;) {
        const auto begin = end + 1;
        end = text.find('\n', begin);
        unused.names.push_back(text.substr(begin, end - begin));
    }
    return unused;
}

}  // namespace

EmbeddedMediaCheck separateSources(const std::string& omfFile, AAFTimeline& timeline,
                                   const Staging& staging) {
    const std::vector<Task> tasks = tasksFor(timeline, staging);
    for (const Task& task : tasks) {
        // What is there may be the audio of any of them.
        ::unlink(task.path.c_str());
    }
    const auto work = [&] {
        const OMFDocument document(omfFile);
        takeOut(document, timeline, tasks);
        return unusedMedia(document, timeline);
    };
    const IsolatedAnswer answer = inConfinedChild(work, staging.path());
    EmbeddedMediaCheck check;
    if (const auto* failure = std::get_if<IsolatedFailure>(&answer)) {
        if (!tasks.empty()) {
            check.failure = failure->reason;
        }
    } else {
        check.unused = readUnused(std::get<std::string>(answer));
    }
    for (const Task& task : tasks) {
        AAFSourceEssence& essence = timeline.essences[task.essence];
        const bool isWhole = !check.failure && staging.holds(task.path);
        essence.fileURL = isWhole ? std::optional(fileURL(task.path)) : std::nullopt;
    }
    return check;
}

}  // namespace trellant::cli
