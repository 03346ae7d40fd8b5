// SPDX-License-Identifier: Apache-2.0
#include "bag_texts.h"
#include "formats.h"
#include "premis.h"

#include <trellant/bag/bag.h>
#include <trellant/base/file_descriptor.h>
#include <trellant/base/printable_path.h>
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/base/write_all.h>
#include <trellant/extraction/file_copy.h>
#include <trellant/extraction/sha256.h>
#include <trellant/handoff/sources.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace trellant::bag {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view payloadManifest = "manifest-sha256.txt";
constexpr std::string_view premisName = "metadata/premis.xml";

void makeFolder(const std::string& path) {
    if (::mkdir(path.c_str(), 0777) != 0) {
        throw FileSystemError("create folder", path, errno);
    }
}

void syncToDisk(const std::string& path) {
    const FileDescriptor opened(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NOFOLLOW));
    if (!opened.isOpen() || ::fsync(opened.number()) != 0) {
        // Some file systems have no such thing for folders.
        if (errno != EINVAL) {
            throw FileSystemError("write", path, errno);
        }
    }
}

void writeWhole(const std::string& path, const std::string& text) {
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666));
    if (!file.isOpen()) {
        throw FileSystemError("create", path, errno);
    }
    if (const int reason = writeAll(file.number(), text); reason != 0) {
        throw FileSystemError("write", path, reason);
    }
}

std::string withPlace(const PlacedLoss& loss, const AAFUnsupportedFeature& feature) {
    std::string text = loss.plain.empty() ? feature.description : loss.plain;
    if (loss.trackName) {
        text += " (track " + *loss.trackName + ")";
    }
    if (loss.clipName) {
        text += " (clip " + *loss.clipName + ")";
    }
    return text;
}

/// Its name in the bag, which has to be UTF-8 there.
std::string nameInBag(const std::string& path) {
    return madeValidUTF8(fs::path(path).filename().native());
}

/// One bag under way.
class Filling {
  public:
    Filling(const BagRequest& request, WorkProgress& progress, const Staging& staging)
        : request_(request), progress_(progress), staging_(staging), bag_(staging.file("bag")) {}

    [[nodiscard]] BagReport run() {
        makeFolder(bag_);
        makeFolder(bag_ + "/data");
        makeFolder(bag_ + "/metadata");
        copyInterchangeFile();
        extract();
        gatherFiles();
        writeTagFiles();
        settle();
        moveReport();
        return std::move(report_);
    }

  private:
    void copyInterchangeFile();
    void extract();
    void gatherFiles();
    void addFile(PremisFile file);
    void addSentences();
    void addTag(std::string_view name, const std::string& text);
    void writeTagFiles();
    void settle();
    [[nodiscard]] bool isThereAlready() const;
    void moveReport();
    void movePath(std::string& path) const;

    const BagRequest& request_;
    WorkProgress& progress_;
    const Staging& staging_;
    std::string bag_;
    std::string original_{};
    BagReport report_{};
    PremisRecord record_{};
    Digests payload_{};
    Digests tags_{};
};

void Filling::copyInterchangeFile() {
    const std::string& file = request_.extraction.file;
    original_ = bag_ + "/data/" + nameInBag(file);
    progress_.begin("Copying the file", bytesOfFile(file));
    copyFile(file, original_, progress_);
}

void Filling::extract() {
    ExtractionRequest request = request_.extraction;
    request.beside = request.file;
    request.file = original_;
    request.directoryPath = bag_ + "/data";
    request.force = false;
    request.absolutePaths = false;
    request.store.reset();
    request.copiesFound = true;
    report_.extraction = Extraction(std::move(request), progress_).run();
    report_.extraction.file = request_.extraction.file;
    // The bag's own does as much.
    const std::string manifest = report_.extraction.manifest.path;
    if (::unlink(manifest.c_str()) != 0) {
        throw FileSystemError("remove", manifest, errno);
    }
}

void Filling::addFile(PremisFile file) {
    if (payload_.contains(file.path)) {
        return;
    }
    file.byteCount = bytesOfFile(bag_ + "/" + file.path);
    payload_.emplace(file.path, file.sha256);
    ++report_.payloadFiles;
    report_.payloadBytes += file.byteCount;
    record_.files.push_back(std::move(file));
}

void Filling::gatherFiles() {
    using Origin = PremisFile::Origin;
    const ExtractionReport& extraction = report_.extraction;
    progress_.begin("Checking the file", bytesOfFile(original_));
    addFile(
        {.origin = Origin::interchange,
         .path = original_.substr(bag_.size() + 1),
         .sha256 = fileDigest(original_, [this](std::uint64_t bytes) { progress_.advance(bytes); }),
         .format = formatOfOmf(extraction.handOff.olderVersion),
         .originalName = textOfBytes(fs::path(request_.extraction.file).filename().native())});
    for (const AudioEntry& entry : extraction.audio) {
        if (!entry.placed) {
            continue;
        }
        const AAFSourceEssence& essence =
            extraction.handOff.timeline.essences[entry.essences.front()];
        addFile({.origin = entry.state == AudioState::converted ? Origin::normalized
                           : entry.state == AudioState::found   ? Origin::found
                                                                : Origin::unpacked,
                 .path = "data/" + entry.placed->name,
                 .sha256 = entry.placed->sha256,
                 .format = formatOfAudio(entry.facts),
                 .originalName = sourceName(essence)});
    }
    addFile({.origin = Origin::timeline,
             .path = "data/" + extraction.timeline.name,
             .sha256 = extraction.timeline.sha256,
             .format = formatOfTimeline()});
    addSentences();
}

void Filling::addSentences() {
    const HandOff& handOff = report_.extraction.handOff;
    record_.date = request_.date;
    record_.lossCount = handOff.losses.size();
    for (std::size_t i = 0; i < std::min(record_.lossCount, mostNotes); ++i) {
        record_.losses.push_back(
            withPlace(handOff.losses[i], handOff.timeline.unsupportedFeatures[i]));
    }
    record_.changeCount = handOff.changes.size();
    for (std::size_t i = 0; i < std::min(record_.changeCount, mostNotes); ++i) {
        record_.changes.push_back("changed: " + handOff.changes[i].what);
    }
    for (const AudioEntry& entry : report_.extraction.audio) {
        if (entry.placed) {
            continue;
        }
        ++record_.missingCount;
        if (record_.missing.size() < mostNotes) {
            record_.missing.push_back(
                sourceName(handOff.timeline.essences[entry.essences.front()]) +
                (entry.isMissing() ? " was not found" : " could not be taken out"));
        }
    }
}

void Filling::addTag(std::string_view name, const std::string& text) {
    const std::string path = bag_ + "/" + std::string(name);
    writeWhole(path, text);
    Sha256 digest;
    digest.add(std::as_bytes(std::span(text)));
    tags_.emplace(name, digest.hexadecimal());
}

void Filling::writeTagFiles() {
    addTag("bagit.txt", std::string(declaration));
    addTag("bag-info.txt",
           infoText({.organization = request_.organization,
                     .identifier = request_.identifier.value_or(nameInBag(original_)),
                     .date = request_.date,
                     .payloadBytes = report_.payloadBytes,
                     .payloadFiles = report_.payloadFiles}));
    addTag(payloadManifest, manifestText(payload_));
    addTag(premisName, premisText(record_));
    writeWhole(bag_ + "/tagmanifest-sha256.txt", manifestText(tags_));
    for (const Digests* const part : {&payload_, &tags_}) {
        for (const auto& [path, digest] : *part) {
            syncToDisk(bag_ + "/" + path);
        }
    }
    for (const char* const path : {"/tagmanifest-sha256.txt", "/data", "/metadata", ""}) {
        syncToDisk(bag_ + path);
    }
}

void Filling::settle() {
    const std::string& place = request_.extraction.directoryPath;
    // An empty folder gives way, and nothing else does.
    if (std::rename(bag_.c_str(), place.c_str()) == 0) {
        syncToDisk(fs::path(place).parent_path().native());
        return;
    }
    if (errno != ENOTEMPTY && errno != EEXIST && errno != ENOTDIR) {
        throw FileSystemError("create", place, errno);
    }
    if (!isThereAlready()) {
        throw BagError(printablePath(request_.extraction.directory) +
                       " is there already with other files; name another folder");
    }
    report_.wasThere = true;
}

/// Of equal manifests every file is there in its size.
bool Filling::isThereAlready() const {
    const std::string& place = request_.extraction.directoryPath;
    const std::string manifest = place + "/" + std::string(payloadManifest);
    if (bytesOfFile(manifest) != manifestText(payload_).size() ||
        fileDigest(manifest, [](std::uint64_t /*bytes*/) {}) !=
            tags_.at(std::string(payloadManifest))) {
        return false;
    }
    return std::all_of(record_.files.begin(), record_.files.end(),
                       [&place](const PremisFile& file) {
                           return bytesOfFile(place + "/" + file.path) == file.byteCount;
                       });
}

void Filling::movePath(std::string& path) const {
    if (path.starts_with(bag_ + "/")) {
        path.replace(0, bag_.size(), request_.extraction.directoryPath);
    }
}

/// The report names files where they are now.
void Filling::moveReport() {
    ExtractionReport& extraction = report_.extraction;
    const auto moveURL = [this](AAFURL& url) {
        if (auto path = pathOfFileURL(url.text)) {
            movePath(*path);
            url = fileURL(*path);
        }
    };
    moveURL(extraction.handOff.timeline.sourceAAF);
    for (AAFSourceEssence& essence : extraction.handOff.timeline.essences) {
        if (essence.fileURL) {
            moveURL(*essence.fileURL);
        }
    }
    for (AudioEntry& entry : extraction.audio) {
        if (entry.path) {
            movePath(*entry.path);
        }
        if (entry.placed) {
            movePath(entry.placed->path);
            entry.placed->name.insert(0, "data/");
            entry.placed->wasThere = report_.wasThere;
        }
    }
    movePath(extraction.timeline.path);
    extraction.timeline.name.insert(0, "data/");
    extraction.manifest.name = payloadManifest;
    extraction.manifest.path =
        request_.extraction.directoryPath + "/" + std::string(payloadManifest);
    extraction.manifest.sha256 = tags_.at(std::string(payloadManifest));
}

/// A folder that holds something and no manifest is none of ours.
void checkPlace(const BagRequest& request) {
    const std::string& place = request.extraction.directoryPath;
    struct stat status {};
    if (::lstat(place.c_str(), &status) != 0) {
        return;
    }
    std::error_code unknown;
    const bool mayBeBag =
        S_ISDIR(status.st_mode) &&
        (fs::is_empty(place, unknown) ||
         fs::is_regular_file(place + "/" + std::string(payloadManifest), unknown));
    if (!mayBeBag) {
        throw BagError(printablePath(request.extraction.directory) +
                       " is there already and is no bag; name another folder");
    }
}

std::string parentOf(const BagRequest& request) {
    checkPlace(request);
    return fs::path(request.extraction.directoryPath).parent_path().native();
}

}  // namespace

Bagging::Bagging(BagRequest request, WorkProgress& progress)
    : request_(std::move(request)), progress_(progress), staging_(parentOf(request_)) {}

BagReport Bagging::run() {
    return Filling(request_, progress_, staging_).run();
}

}  // namespace trellant::bag
