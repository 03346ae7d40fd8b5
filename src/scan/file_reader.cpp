// SPDX-License-Identifier: Apache-2.0
#include "digests.h"
#include "media_beside.h"
#include "row_parts.h"

#include <trellant/base/printable_text.h>
#include <trellant/check/verdict.h>
#include <trellant/client/errors.h>
#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>
#include <trellant/scan/file_reader.h>
#include <trellant/scan/identification.h>
#include <trellant/scan/shard_file.h>
#include <trellant/version.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <map>
#include <string_view>
#include <utility>
#include <variant>

namespace trellant::scan {

namespace fs = std::filesystem;

namespace {

using Extensions = AAFWorkerExtensions;

constexpr std::size_t longestMessage = 1'000;
constexpr std::string_view workerPrefix = "trellant-omf: ";
/// How the worker says that memory did not suffice, and that a file makes no sense.
constexpr std::array memoryWords{std::string_view("out of memory"),
                                 std::string_view("bytes of memory")};
constexpr std::array damageHeads{std::string_view("Malformed"), std::string_view("Read out of"),
                                 std::string_view("Short read")};

std::int64_t nanosecondsNow() {
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::system_clock::now().time_since_epoch())
        .count();
}

/// The worker's own last line, without its name.
std::string_view lastWords(std::string_view logLines) {
    const std::size_t at = logLines.rfind(workerPrefix);
    return at == std::string_view::npos ? logLines : logLines.substr(at + workerPrefix.size());
}

FileStatus statusOf(std::string_view words, const Identification& identification) {
    if (std::any_of(memoryWords.begin(), memoryWords.end(), [words](std::string_view text) {
            return words.find(text) != std::string_view::npos;
        })) {
        return FileStatus::memory;
    }
    if (std::any_of(damageHeads.begin(), damageHeads.end(),
                    [words](std::string_view head) { return words.starts_with(head); })) {
        return FileStatus::damaged;
    }
    return identification.pronom == std::string(pronomOmf1) ? FileStatus::omf1
                                                            : FileStatus::refused;
}

/// Why a call of the worker failed, as status and message.
struct Explain {
    ScanRow& row;
    const Identification& identification;

    void operator()(const AAFWorkerClientError::LaunchFailed& fault) const {
        row.message = "the worker could not be started: " + fault.reason;
    }
    void operator()(const AAFWorkerClientError::NonZeroExit& fault) const {
        const std::string_view words = lastWords(fault.logLines);
        if (words.empty()) {
            row.message = "the worker ended unexpectedly (" + std::to_string(fault.status) + ")";
            return;
        }
        row.status = statusOf(words, identification);
        row.message = words;
    }
    void operator()(const AAFWorkerClientError::InvalidResponse& fault) const {
        row.message = "the worker gave no usable answer: " + fault.reason;
    }
    void operator()(const AAFWorkerClientError::HelperMissing& /*fault*/) const {
        row.message = "the worker is missing";
    }
};

}  // namespace

struct FileReader::Shared {
    explicit Shared(ReadingOptions given) : options(std::move(given)) {}

    ReadingOptions options;
    MediaBeside media{};
};

/// One file on its way to a row.
class FileReader::Reading {
  public:
    Reading(const FoundFile& file, Shared& shared, const StopToken& stop)
        : file_(file), shared_(shared), stop_(stop) {
        row_.path = textOfBytes(file.path);
        row_.size = static_cast<std::int64_t>(file.size);
        row_.modified = file.failure.empty() ? timeText(file.modified) : std::string();
        row_.program = versionText;
        row_.scanned = timeText(nanosecondsNow());
    }

    [[nodiscard]] std::optional<ScanRow> row() {
        const auto began = std::chrono::steady_clock::now();
        if (!file_.failure.empty()) {
            refuse(file_.failure);
        } else if (!readOpened()) {
            return std::nullopt;
        }
        const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
        row_.seconds = took.count();
        if (row_.message) {
            row_.message = printableText(*row_.message, longestMessage);
        }
        return std::move(row_);
    }

  private:
    void refuse(std::string message) {
        row_.status = FileStatus::refused;
        row_.message = std::move(message);
    }

    /// False for what is no OMF file.
    [[nodiscard]] bool readOpened() {
        try {
            const RandomAccessFile file(file_.path);
            identification_ = identified(file);
            if (!identification_) {
                return false;
            }
            if (identification_->pronom) {
                row_.pronom = ScanRow::Pronom{*identification_->pronom, "signature"};
            }
            ask();
            if (shared_.options.hashes) {
                row_.sha256 = digestOf(file, stop_);
                digestSamples(file);
            }
        } catch (const FileSystemError& error) {
            refuse(error.what());
        } catch (const OMFIOError& error) {
            // Digests: the file became shorter meanwhile.
            refuse(error.what());
        }
        return true;
    }

    void ask() {
        try {
            AAFWorkerProtocol::Result answer =
                askWorker({.file = file_.path,
                           .extensions = extensions(),
                           .helperURLProvider = shared_.options.helperURLProvider,
                           .timeLimit = shared_.options.timeLimit,
                           .memoryLimit = shared_.options.memoryLimit},
                          stop_);
            tell(std::move(answer));
        } catch (const AAFTimeLimitError&) {
            row_.status = FileStatus::timeout;
            row_.message = "reading took longer than " +
                           std::to_string(std::chrono::duration_cast<std::chrono::seconds>(
                                              shared_.options.timeLimit)
                                              .count()) +
                           " seconds";
        } catch (const AAFWorkerClientError& error) {
            if (std::holds_alternative<AAFWorkerClientError::HelperMissing>(error.fault())) {
                throw;
            }
            row_.status = FileStatus::refused;
            std::visit(Explain{row_, *identification_}, error.fault());
            judgeUnread();
        }
    }

    [[nodiscard]] std::vector<std::string> extensions() const {
        std::vector<std::string> names{
            std::string(Extensions::lossPlacesName), std::string(Extensions::compositionsName),
            std::string(Extensions::contentsName), std::string(Extensions::provenanceName),
            std::string(Extensions::omf1Name)};
        if (shared_.options.hashes) {
            names.emplace_back(Extensions::sampleDataName);
        }
        return names;
    }

    void tell(AAFWorkerProtocol::Result answer) {
        const Boxed<Extensions> extensions = answer.extensions;
        HandOff handOff = handOffOf(std::move(answer));
        findMissingMedia(handOff);
        makeUsable(handOff);
        measureMedia(handOff, WorkProgress(stop_));
        tellHandOff(handOff, row_);
        if (extensions && extensions->provenance) {
            tellProvenance(*extensions->provenance, row_);
        }
        if (extensions) {
            samples_ = extensions->sampleData;
        }
        const bool isOlder = handOff.olderVersion.has_value();
        if (isOlder) {
            row_.omfVersion = handOff.olderVersion;
        }
        row_.pronom = ScanRow::Pronom{std::string(isOlder ? pronomOmf1 : pronomOmf2), "read"};
        if (const check::Profile* const profile = shared_.options.profile) {
            check::FileFacts facts = factsOfFile();
            facts.objectModel = isOlder ? 1 : 2;
            const check::CheckedHandOff checked(handOff, std::move(facts));
            row_.check = toldVerdict(check::verdictOf(checked, *profile));
        }
    }

    void findMissingMedia(HandOff& handOff) const {
        const auto& essences = handOff.timeline.essences;
        if (!std::all_of(essences.begin(), essences.end(), [](const AAFSourceEssence& essence) {
                return essence.embedded || essence.fileURL;
            })) {
            handOff.openChoices = findMissing(handOff.timeline, *shared_.media.of(file_.path));
        }
    }

    void judgeUnread() {
        const check::Profile* const profile = shared_.options.profile;
        if (profile != nullptr && row_.status == FileStatus::omf1) {
            check::FileFacts facts = factsOfFile();
            facts.objectModel = 1;
            row_.check = toldVerdict(check::verdictOfUnread(facts, *profile));
        }
    }

    [[nodiscard]] check::FileFacts factsOfFile() const {
        return {.name = fs::path(file_.path).filename().native(), .bytes = file_.size};
    }

    void digestSamples(const RandomAccessFile& file) {
        if (!samples_) {
            return;
        }
        std::map<std::string_view, ScanRow::Source*> sources;
        for (ScanRow::Source& source : row_.sources) {
            sources.emplace(source.id, &source);
        }
        for (const Extensions::Samples& samples : samples_->samples) {
            const auto source = sources.find(samples.essenceID);
            // Each source once, whatever the worker says.
            if (source == sources.end() || source->second->sampleDigest) {
                continue;
            }
            if (auto digest = digestOf(file, samples, stop_)) {
                source->second->sampleDigest = std::move(digest->sha256);
                source->second->sampleBytes = static_cast<std::int64_t>(digest->bytes);
            }
        }
    }

    const FoundFile& file_;
    Shared& shared_;
    const StopToken& stop_;
    ScanRow row_{};
    std::optional<Identification> identification_{};
    Boxed<Extensions::SampleData> samples_{};
};

FileReader::FileReader(ReadingOptions options)
    : shared_(std::make_unique<Shared>(std::move(options))) {}
FileReader::~FileReader() = default;

std::optional<ScanRow> FileReader::read(const FoundFile& file, const StopToken& stop) const {
    return Reading(file, *shared_, stop).row();
}

}  // namespace trellant::scan
