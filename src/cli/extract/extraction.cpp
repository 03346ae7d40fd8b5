#include "extraction.h"

#include <trellant/base/url.h>
#include <trellant/io/errors.h>
#include <trellant/model/record_fields.h>
#include <trellant/model/timeline_json.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <unordered_set>
#include <utility>

namespace trellant::cli {

namespace fs = std::filesystem;

namespace {

constexpr std::chrono::milliseconds betweenLooks{100};

std::string absoluteText(const std::string& path) {
    return fs::absolute(path).native();
}

std::optional<std::string> pathOf(const AAFSourceEssence& essence) {
    return essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
}

struct FileCloser {
    void operator()(std::FILE* file) const noexcept { static_cast<void>(std::fclose(file)); }
};

void writeText(const std::string& path, const std::string& text) {
    std::unique_ptr<std::FILE, FileCloser> file(std::fopen(path.c_str(), "wbx"));
    if (file == nullptr) {
        throw FileSystemError("create", path, errno);
    }
    const bool isWritten = std::fwrite(text.data(), 1, text.size(), file.get()) == text.size();
    if (std::fclose(file.release()) != 0 || !isWritten) {
        throw FileSystemError("write", path, errno);
    }
}

}  // namespace

Extraction::Extraction(const ExtractOptions& options, std::string directory, StepProgress& progress)
    : options_(options),
      directory_(std::move(directory)),
      progress_(progress),
      staging_(directory_),
      placement_(directory_, options.call.force, progress) {}

ExtractReport Extraction::run() {
    runWorker();
    separate();
    convert();
    placeAudio();
    search();
    makeUsable();
    ExtractReport report;
    report.file = options_.call.file;
    report.directory = options_.call.directory;
    report.unused = unused_;
    report.audio = entries();
    report.timeline = writeDocument("timeline.json", sortedJson(inspection_.timeline) + "\n");
    report.manifest = writeDocument("MANIFEST.sha256", manifestText());
    report.inspection = std::move(inspection_);
    return report;
}

void Extraction::runWorker() {
    AAFWorkerProtocol::Request request;
    request.operation = AAFWorkerProtocol::Request::Operation::extractAndInspect;
    request.aafPath = absoluteText(options_.call.file);
    request.workDirectory = staging_.path();
    // It gets no media folder: it would take a file by its name alone, and what an earlier run
    // wrote too. Our own search compares what is in the files.
    // Whatever the file is called, only one worker reads such files.
    const AAFWorkerClient client{.helperName = "trellant-omf",
                                 .helperURLProvider = options_.helperURLProvider};
    progress_.begin("Taking the audio out", bytesOfFile(request.aafPath));
    auto answer = client.run(request, {}, progress_.stop(), TimelineChecks::none);
    while (answer.wait_for(betweenLooks) != std::future_status::ready) {
        progress_.at(staging_.bytes());
    }
    AAFWorkerProtocol::Result result = answer.get();
    inspection_.timeline = std::move(result.timeline);
    inspection_.diagnostics = std::move(result.diagnostics);
    // A file is moved from where the worker says it is: only what it was told to write is ours.
    for (AAFSourceEssence& essence : inspection_.timeline.essences) {
        const auto path = pathOf(essence);
        if (essence.embedded && (!path || !staging_.holds(*path))) {
            essence.fileURL.reset();
        }
    }
}

void Extraction::separate() {
    const EmbeddedMediaCheck check =
        separateSources(absoluteText(options_.call.file), inspection_.timeline, staging_);
    // An interrupt ends the reading too.
    progress_.check();
    unused_ = check.unused;
    if (check.failure) {
        progress_.console().error(
            "audio files of one name could not be told apart and are left "
            "out: " +
            *check.failure);
    }
}

void Extraction::convert() {
    if (options_.call.wav) {
        conversions_ = convertAll(options_.waveConverter.value_or(""), inspection_.timeline,
                                  staging_, progress_);
    }
}

void Extraction::placeAudio() {
    auto& essences = inspection_.timeline.essences;
    std::unordered_set<std::string> names;
    for (const AAFSourceEssence& essence : essences) {
        if (const auto path = pathOf(essence); essence.embedded && path) {
            names.insert(staging_.nameOf(*path));
        }
    }
    progress_.begin("Checking the audio files", staging_.bytes());
    for (AAFSourceEssence& essence : essences) {
        const auto path = pathOf(essence);
        if (!essence.embedded || !path) {
            continue;
        }
        const std::string name = staging_.nameOf(*path);
        // A number counts as one where the name without it is there, else it is part of the name.
        NumberedName wanted = NumberedName::numbered(name);
        if (!names.contains(wanted.withNumber(1))) {
            wanted = NumberedName::whole(name);
        }
        const PlacedFile placed = placement_.place(*path, wanted);
        essence.fileURL = fileURL(placed.path);
        placedByEssence_.emplace(essence.id, placed);
    }
}

void Extraction::search() {
    const auto& essences = inspection_.timeline.essences;
    const bool isComplete = std::all_of(
        essences.begin(), essences.end(),
        [](const AAFSourceEssence& essence) { return essence.embedded || essence.fileURL; });
    if (isComplete || options_.call.mediaFolders.empty()) {
        return;
    }
    std::vector<std::string> written;
    for (const PlacedFile& file : placement_.placed()) {
        written.push_back(file.path);
    }
    progress_.begin("Looking for audio files", 0);
    std::vector<std::string> folders;
    for (const std::string& folder : options_.call.mediaFolders) {
        folders.push_back(absoluteText(folder));
    }
    const MediaFolders media(folders, written, progress_);
    if (media.incomplete()) {
        progress_.console().note("the media folders hold too many files; not all were looked at");
    }
    choices_ = findMissing(inspection_.timeline, media);
    for (const auto& [id, candidates] : choices_) {
        inspection_.ambiguousEssences.push_back(id);
    }
}

void Extraction::makeUsable() {
    try {
        AAFRawTimelineValidation::validate(inspection_.timeline);
    } catch (const AAFRawTimelineValidation::Failure&) {
        AAFRepair repair = repairedTimeline(inspection_.timeline);
        inspection_.changes = toldChanges(inspection_.timeline, repair.changes);
        inspection_.timeline = std::move(repair.timeline);
    }
}

PlacedFile Extraction::writeDocument(const std::string& name, const std::string& text) {
    const std::string staged = staging_.freeFile(NumberedName::whole(name));
    writeText(staged, text);
    const NumberedName wanted = NumberedName::whole(name);
    PlacedFile placed = placement_.place(staged, wanted);
    if (placed.renumbered) {
        progress_.console().note(name + " is there with other contents and stays; this one is " +
                                 placed.name);
    }
    return placed;
}

/// As sha256sum reads it. No name in it needs an escape: line feeds and backslashes are among what
/// the worker replaces.
std::string Extraction::manifestText() const {
    std::map<std::string, std::string> digests;
    for (const PlacedFile& file : placement_.placed()) {
        digests.emplace(file.name, file.sha256);
    }
    std::string text;
    for (const auto& [name, digest] : digests) {
        text.append(digest).append("  ").append(name).append("\n");
    }
    return text;
}

AudioEntry Extraction::entryOf(std::size_t index) const {
    const AAFSourceEssence& essence = inspection_.timeline.essences[index];
    AudioEntry entry{.essences = {index}, .path = pathOf(essence)};
    if (const auto placed = placedByEssence_.find(essence.id); placed != placedByEssence_.end()) {
        entry.placed = placed->second;
        entry.state = conversions_.converted.contains(essence.id) ? AudioState::converted
                                                                  : AudioState::takenOut;
    } else if (essence.embedded) {
        entry.state = AudioState::failed;
    } else if (entry.path) {
        entry.state = AudioState::found;
    } else if (const auto open = choices_.find(essence.id); open != choices_.end()) {
        entry.state = AudioState::undecided;
        entry.candidates = open->second;
    }
    if (const auto why = conversions_.failures.find(essence.id);
        why != conversions_.failures.end()) {
        entry.notConverted = why->second;
    }
    if (entry.path) {
        entry.facts = audioFacts(*entry.path);
    }
    return entry;
}

std::vector<AudioEntry> Extraction::entries() {
    const AAFTimeline& timeline = inspection_.timeline;
    std::vector<AudioEntry> entries;
    std::unordered_map<std::string, std::size_t> entryByPath;
    std::unordered_map<std::string_view, std::size_t> entryByEssence;
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        const AAFSourceEssence& essence = timeline.essences[index];
        const auto path = pathOf(essence);
        const auto known = path ? entryByPath.find(*path) : entryByPath.end();
        if (known != entryByPath.end()) {
            entries[known->second].essences.push_back(index);
            entryByEssence.emplace(essence.id, known->second);
            continue;
        }
        if (path) {
            entryByPath.emplace(*path, entries.size());
        }
        entryByEssence.emplace(essence.id, entries.size());
        entries.push_back(entryOf(index));
    }
    for (const AAFClipEvent& event : timeline.events) {
        if (const auto found = entryByEssence.find(event.essenceID);
            found != entryByEssence.end()) {
            ++entries[found->second].clips;
        }
    }
    return entries;
}

}  // namespace trellant::cli
