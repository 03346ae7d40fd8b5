// SPDX-License-Identifier: Apache-2.0
#include "placement.h"
#include "told_origin.h"

#include <trellant/base/keyed_hash.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/client/errors.h>
#include <trellant/extraction/audio_store.h>
#include <trellant/extraction/extraction.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/extraction/file_naming.h>
#include <trellant/extraction/staging.h>
#include <trellant/extraction/taken_out.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/io/errors.h>
#include <trellant/model/timeline_json.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>
#include <system_error>
#include <utility>

namespace trellant {

namespace fs = std::filesystem;

namespace {

std::string absoluteText(const std::string& path) {
    return fs::absolute(path).native();
}

/// The path with the links of its folders followed: the system would follow them on the way back
/// up. The last name stays, it may be a link of its own.
std::string linkless(const fs::path& path) {
    std::error_code error;
    const fs::path folder = fs::weakly_canonical(path.parent_path(), error);
    return error ? path.native() : (folder / path.filename()).native();
}

std::optional<std::string> pathOf(const AAFSourceEssence& essence) {
    return essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
}

/// As sha256sum has it in lines that begin with a backslash.
std::string escapedName(std::string_view name) {
    std::string text;
    for (const char byte : name) {
        switch (byte) {
            case '\\':
                text += "\\\\";
                break;
            case '\n':
                text += "\\n";
                break;
            case '\r':
                text += "\\r";
                break;
            default:
                text += byte;
        }
    }
    return text;
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

class Extraction::Run {
  public:
    Run(ExtractionRequest request, WorkProgress& progress)
        : request_(std::move(request)),
          progress_(progress),
          staging_(request_.directoryPath),
          placement_(request_.directoryPath, request_.force, progress) {}

    [[nodiscard]] ExtractionReport all();
    [[nodiscard]] const Staging& staging() const noexcept { return staging_; }
    [[nodiscard]] const Placement& placement() const noexcept { return placement_; }

  private:
    void convert();
    void protectWhatIsRead();
    void placeAudio();
    void storeAudio();
    void search();
    void copyFound();
    [[nodiscard]] const std::string& beside() const {
        return request_.beside.empty() ? request_.file : request_.beside;
    }
    [[nodiscard]] AAFTimeline writtenTimeline() const;
    PlacedFile writeDocument(const std::string& name, const std::string& text);
    [[nodiscard]] std::string manifestText() const;
    [[nodiscard]] std::vector<AudioEntry> entries();
    [[nodiscard]] AudioEntry entryOf(std::size_t index) const;

    ExtractionRequest request_;
    WorkProgress& progress_;
    Staging staging_;
    Placement placement_;
    HandOff handOff_;
    Boxed<AAFWorkerExtensions::EmbeddedMedia> embedded_;
    WaveConversions conversions_;
    /// By essence id.
    KeyedMap<std::string, PlacedFile> placedByEssence_;
    KeyedSet<std::string> namedByMasterMob_;
    KeyedMap<std::string, StoredFile> storedByEssence_;
    /// Names in the folder of files that only the store has now, and the way to them there.
    KeyedMap<std::string, std::string> wayToStored_;
};

ExtractionReport Extraction::Run::all() {
    try {
        TakenOut taken = takeOut(request_.file, staging_, request_.helperURLProvider, progress_);
        handOff_ = std::move(taken.handOff);
        embedded_ = std::move(taken.embedded);
    } catch (const AAFCancellationError&) {
        for (const std::string& name : staging_.wholeFiles()) {
            placement_.keep(staging_.file(name), name);
        }
        throw;
    }
    convert();
    protectWhatIsRead();
    placeAudio();
    storeAudio();
    search();
    copyFound();
    makeUsable(handOff_);
    ExtractionReport report;
    report.file = request_.file;
    report.directory = request_.directory;
    if (embedded_) {
        report.embedded = *embedded_;
    }
    report.audio = entries();
    report.timeline = writeDocument("timeline.json", sortedJson(writtenTimeline()) + "\n");
    report.manifest = writeDocument("MANIFEST.sha256", manifestText());
    report.handOff = std::move(handOff_);
    return report;
}

void Extraction::Run::convert() {
    if (request_.waveConverter) {
        conversions_ = convertAll(*request_.waveConverter, handOff_.timeline, staging_, progress_,
                                  toldOrigins(handOff_, request_.date));
    }
}

/// Files are replaced before the search for media, so what that may find is looked up first.
void Extraction::Run::protectWhatIsRead() {
    if (!request_.force) {
        return;
    }
    placement_.protect(absoluteText(request_.file));
    HandOff found = handOff_;
    findMedia(found, beside(), request_.mediaFolders, {}, progress_);
    for (const AAFSourceEssence& essence : found.timeline.essences) {
        const auto path = pathOf(essence);
        if (path && !essence.embedded) {
            placement_.protect(*path);
        }
    }
    for (const std::string& path : found.openChoices.read) {
        placement_.protect(path);
    }
}

void Extraction::Run::placeAudio() {
    auto& essences = handOff_.timeline.essences;
    KeyedSet<std::string> names;
    for (const AAFSourceEssence& essence : essences) {
        if (const auto path = pathOf(essence); essence.embedded && path) {
            names.insert(staging_.nameOf(*path));
        }
    }
    progress_.begin("Checking the audio files", staging_.bytes());
    std::vector<std::optional<std::string>> mobNames(essences.size());
    if (request_.naming == FileNaming::masterMob) {
        mobNames = namesOfMasterMobs(handOff_, request_.file);
    }
    for (std::size_t i = 0; i < essences.size(); ++i) {
        AAFSourceEssence& essence = essences[i];
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
        if (mobNames[i]) {
            wanted = {.stem = *mobNames[i], .extension = NumberedName::whole(name).extension};
            namedByMasterMob_.insert(essence.id);
        }
        const PlacedFile placed = placement_.place(*path, wanted);
        essence.fileURL = fileURL(placed.path);
        placedByEssence_.emplace(essence.id, placed);
    }
}

void Extraction::Run::storeAudio() {
    if (!request_.store) {
        return;
    }
    AudioStore store(*request_.store, request_.storeLeaving, progress_);
    const std::string directory =
        fs::path(linkless(request_.directoryPath + "/x")).parent_path().native();
    for (AAFSourceEssence& essence : handOff_.timeline.essences) {
        const auto found = placedByEssence_.find(essence.id);
        if (found == placedByEssence_.end()) {
            continue;
        }
        PlacedFile& placed = found->second;
        StoredFile stored = store.keep(placed.path, placed.sha256, staging_.path());
        if (!stored.isLinked) {
            const std::string way =
                fs::path(linkless(stored.path)).lexically_relative(directory).native();
            wayToStored_.emplace(placed.name, way);
            placed.name = way;
            placed.path = stored.path;
            essence.fileURL = fileURL(stored.path);
        }
        storedByEssence_.emplace(essence.id, std::move(stored));
    }
}

void Extraction::Run::search() {
    std::vector<std::string> written;
    for (const PlacedFile& file : placement_.placed()) {
        written.push_back(file.path);
    }
    findMedia(handOff_, beside(), request_.mediaFolders, written, progress_);
}

/// Each file once, under its own name or the next free number of it.
void Extraction::Run::copyFound() {
    if (!request_.copiesFound) {
        return;
    }
    KeyedMap<std::string, PlacedFile> copies;
    for (AAFSourceEssence& essence : handOff_.timeline.essences) {
        const auto path = pathOf(essence);
        if (essence.embedded || !path) {
            continue;
        }
        auto copy = copies.find(*path);
        if (copy == copies.end()) {
            const NumberedName name =
                NumberedName::whole(madeValidUTF8(fs::path(*path).filename().native()));
            const std::string staged = staging_.file("copy");
            progress_.begin("Copying audio files", bytesOfFile(*path));
            copyFile(*path, staged, progress_);
            copy = copies.emplace(*path, placement_.place(staged, name)).first;
        }
        essence.fileURL = fileURL(copy->second.path);
        placedByEssence_.emplace(essence.id, copy->second);
    }
}

/// The timeline as it is written: in a document, ways are shorter than paths and last longer.
AAFTimeline Extraction::Run::writtenTimeline() const {
    AAFTimeline timeline = handOff_.timeline;
    if (request_.absolutePaths) {
        return timeline;
    }
    const std::string directory =
        fs::path(linkless(request_.directoryPath + "/timeline.json")).parent_path().native();
    const auto shorten = [&directory](AAFURL& url) {
        if (const auto path = pathOfFileURL(url.text)) {
            url = relativeFileURL(linkless(*path), directory);
        }
    };
    shorten(timeline.sourceAAF);
    for (AAFSourceEssence& essence : timeline.essences) {
        if (essence.fileURL) {
            shorten(*essence.fileURL);
        }
    }
    return timeline;
}

PlacedFile Extraction::Run::writeDocument(const std::string& name, const std::string& text) {
    const std::string staged = staging_.freeFile(NumberedName::whole(name));
    writeText(staged, text);
    const NumberedName wanted = NumberedName::whole(name);
    PlacedFile placed = placement_.place(staged, wanted);
    if (placed.renumbered) {
        progress_.say(WorkProgress::Remark::note,
                      name + " is there with other contents and stays; this one is " + placed.name);
    }
    return placed;
}

/// As sha256sum reads it.
std::string Extraction::Run::manifestText() const {
    std::map<std::string, std::string> digests;
    for (const PlacedFile& file : placement_.placed()) {
        const auto way = wayToStored_.find(file.name);
        digests.emplace(way == wayToStored_.end() ? file.name : way->second, file.sha256);
    }
    std::string text;
    for (const auto& [name, digest] : digests) {
        // Names in the folder need no escape, since the worker replaces what would; ways may.
        const std::string escaped = escapedName(name);
        text.append(escaped == name ? "" : "\\").append(digest).append("  ");
        text.append(escaped).append("\n");
    }
    return text;
}

AudioEntry Extraction::Run::entryOf(std::size_t index) const {
    const AAFSourceEssence& essence = handOff_.timeline.essences[index];
    AudioEntry entry{.essences = {index}, .path = pathOf(essence)};
    if (const auto placed = placedByEssence_.find(essence.id); placed != placedByEssence_.end()) {
        entry.placed = placed->second;
        entry.isNamedByMasterMob = namedByMasterMob_.contains(essence.id);
        entry.state = !essence.embedded                             ? AudioState::found
                      : conversions_.converted.contains(essence.id) ? AudioState::converted
                                                                    : AudioState::takenOut;
        const auto stored = storedByEssence_.find(essence.id);
        entry.stored =
            stored == storedByEssence_.end() ? std::nullopt : std::optional(stored->second);
    } else if (essence.embedded) {
        entry.state = AudioState::failed;
    } else if (entry.path) {
        entry.state = AudioState::found;
    } else if (const auto open = handOff_.openChoices.bySource.find(essence.id);
               open != handOff_.openChoices.bySource.end()) {
        entry.state = AudioState::undecided;
        entry.candidates = open->second.candidates;
        entry.filesOfName = open->second.files;
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

std::vector<AudioEntry> Extraction::Run::entries() {
    const AAFTimeline& timeline = handOff_.timeline;
    std::vector<AudioEntry> entries;
    KeyedMap<std::string, std::size_t> entryByPath;
    KeyedMap<std::string_view, std::size_t> entryByEssence;
    for (std::size_t index = 0; index < timeline.essences.size(); ++index) {
        progress_.check();
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

Extraction::Extraction(ExtractionRequest request, WorkProgress& progress)
    : run_(std::make_unique<Run>(std::move(request), progress)) {}

Extraction::~Extraction() = default;

ExtractionReport Extraction::run() {
    return run_->all();
}

std::string Extraction::stagingName() const {
    return run_->staging().name();
}

std::size_t Extraction::placedCount() const noexcept {
    return run_->placement().placed().size();
}

}  // namespace trellant
