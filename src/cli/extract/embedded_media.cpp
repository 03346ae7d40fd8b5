#include "embedded_media.h"

#include "isolated.h"
#include "numbered_name.h"

#include <trellant/model/url.h>
#include <trellant/omf/document.h>

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

std::size_t unusedMedia(const OMFDocument& document, const AAFTimeline& timeline) {
    std::unordered_set<OMFObject> used;
    const auto media = audioMedia(document);
    for (const AAFSourceEssence& essence : timeline.essences) {
        const auto found = media.find(essence.mobID.value_or(""));
        if (essence.embedded && found != media.end()) {
            used.insert(found->second.object);
        }
    }
    const std::size_t all = document.objects("WAVE").size() + document.objects("AIFC").size();
    return all - used.size();
}

}  // namespace

EmbeddedMediaCheck separateSources(const std::string& omfFile, AAFTimeline& timeline,
                                   const Staging& staging) {
    const std::vector<Task> tasks = tasksFor(timeline, staging);
    for (const Task& task : tasks) {
        // What is there may be the audio of any of them.
        ::unlink(task.path.c_str());
    }
    const IsolatedAnswer answer = inChildProcess([&] {
        const OMFDocument document(omfFile);
        takeOut(document, timeline, tasks);
        return std::to_string(unusedMedia(document, timeline));
    });
    EmbeddedMediaCheck check;
    if (const auto* failure = std::get_if<IsolatedFailure>(&answer)) {
        if (!tasks.empty()) {
            check.failure = failure->reason;
        }
    } else {
        const std::string& text = std::get<std::string>(answer);
        std::size_t unused = 0;
        std::from_chars(text.data(), text.data() + text.size(), unused);
        check.unused = unused;
    }
    for (const Task& task : tasks) {
        AAFSourceEssence& essence = timeline.essences[task.essence];
        const bool isWhole = !check.failure && staging.holds(task.path);
        essence.fileURL = isWhole ? std::optional(fileURL(task.path)) : std::nullopt;
    }
    return check;
}

}  // namespace trellant::cli
