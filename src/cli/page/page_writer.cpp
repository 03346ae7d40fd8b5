// SPDX-License-Identifier: Apache-2.0
#include "page_writer.h"

#include "check/file_facts.h"
#include "full_files.h"
#include "look/console_progress.h"
#include "look/failure_text.h"
#include "look/inspect.h"
#include "terminal/deliver.h"
#include "terminal/interrupts.h"

#include <trellant/base/printable_path.h>
#include <trellant/extraction/extraction.h>
#include <trellant/extraction/sha256.h>
#include <trellant/listening/audible_hand_off.h>
#include <trellant/page/page_sound.h>

#include <cstdint>
#include <exception>
#include <filesystem>
#include <memory>
#include <optional>
#include <system_error>
#include <utility>

namespace trellant::cli {

namespace {

std::string digestOf(const std::string& file, Console& console, const StopToken& stop) {
    const Cancellable heeded;
    ConsoleProgress progress(console, stop);
    const std::filesystem::path path = std::filesystem::canonical(file);
    progress.begin("checksum", std::filesystem::file_size(path));
    std::string digest =
        fileDigest(path.native(), [&progress](std::uint64_t bytes) { progress.advance(bytes); });
    console.endBar();
    return digest;
}

/// Counts what passes.
class CountingSink final : public JsonSink {
  public:
    explicit CountingSink(Delivery& delivery) : delivery_(delivery) {}
    void write(std::string_view bytes) override {
        bytes_ += bytes.size();
        delivery_.write(bytes);
    }
    [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_; }

  private:
    Delivery& delivery_;
    std::uint64_t bytes_ = 0;
};

void sayWritten(const std::string& file, const std::string& path, std::uint64_t bytes,
                Console& console) {
    constexpr std::uint64_t kilobyte = 1'000;
    if (path != "-" && console.verbosity() != Verbosity::quiet) {
        console.out(printablePath(file) + " -> " + printablePath(path) + " (" +
                    std::to_string((bytes + kilobyte - 1) / kilobyte) + " kB)\n");
    }
}

PageOutcome failedOutcome(const std::string& file, std::string failure) {
    return {.status = ExitStatus::fileFailed,
            .entry = {.file = std::filesystem::path(file).filename().native(),
                      .failure = std::move(failure)}};
}

/// The folder of the page, absolute and without links; for standard output the current one.
std::string folderOf(const std::string& path) {
    std::error_code ignored;
    const std::filesystem::path page(path == "-" ? "." : path);
    const std::filesystem::path folder = path == "-" ? page : page.parent_path();
    return std::filesystem::weakly_canonical(folder.empty() ? "." : folder, ignored).native();
}

/// A hand-off with what is heard of it.
struct Heard {
    std::unique_ptr<listening::AudibleHandOff> audible{};
    std::optional<HandOff> silent{};
    std::optional<page::PageSound> sound{};
    std::string failure{};

    [[nodiscard]] const HandOff* handOff() const {
        return audible ? &audible->handOff() : silent ? &*silent : nullptr;
    }
};

/// Where audio may lie for a while: beside the page, where there is room for it.
std::string roomFor(const std::string& path) {
    return path == "-" ? std::filesystem::temp_directory_path().native() : folderOf(path);
}

Heard heard(const std::string& file, const std::string& path, const PageCall& call,
            Console& console, const StopToken& stop) {
    if (call.noAudio) {
        Inspection found = inspect(
            {.file = file, .mediaFolders = call.mediaFolders, .contents = true}, console, stop);
        return {.silent = std::move(found.handOff), .failure = std::move(found.failure)};
    }
    Heard result;
    if (const auto failure = streamFailure(file)) {
        console.error(printablePath(file) + ": " + *failure);
        return {.failure = *failure};
    }
    try {
        const Cancellable heeded;
        ConsoleProgress progress(console, stop);
        result.audible = std::make_unique<listening::AudibleHandOff>(
            listening::AudibleHandOffRequest{.file = file,
                                             .directory = roomFor(path),
                                             .mediaFolders = call.mediaFolders,
                                             .contents = true},
            progress);
        console.endBar();
        reportRemarks(file, result.audible->handOff(), console);
        reportChanges(file, result.audible->handOff(), console);
        constexpr std::uint64_t megabyte = 1'000'000;
        result.sound = page::listenedTo(*result.audible,
                                        {.converter = installedWaveConverter().value_or(""),
                                         .mostPreviewBytes = call.previewMegabytes * megabyte},
                                        progress);
        console.endBar();
        return result;
    } catch (const OutputClosed&) {
        throw;
    } catch (const std::exception& error) {
        console.endBar();
        return {.failure = reportFailure(file, error, console)};
    }
}

void saySound(const std::string& file, const page::PageSound& sound, Console& console) {
    const auto parts = [](std::size_t count) {
        return std::to_string(count) + (count == 1 ? " part" : " parts");
    };
    if (sound.leftOut != 0) {
        console.note(printablePath(file) + ": " + parts(sound.leftOut) +
                     " of the audio not in the page, which holds no more (--preview-size)");
    }
    if (sound.failed != 0) {
        console.note(printablePath(file) + ": " + parts(sound.failed) +
                     " of the audio could not be had and are not in the page");
    }
}

/// Checksum and links.
void addFiles(page::PageRequest& request, const std::string& file, const std::string& path,
              const PageCall& call, Console& console, const StopToken& stop) {
    request.sha256 = digestOf(file, console, stop);
    if (call.extractedFolder) {
        request.fullFiles =
            fullFiles(request.handOff.timeline, *call.extractedFolder, folderOf(path));
    }
}

}  // namespace

PageOutcome writePageOf(const std::string& file, const std::string& path, const PageCall& call,
                        const check::Profile& profile, Console& console, const StopToken& stop) {
    const Heard found = heard(file, path, call, console, stop);
    const HandOff* const handOff = found.handOff();
    if (handOff == nullptr) {
        return failedOutcome(file, found.failure);
    }
    const check::Verdict checked =
        check::verdictOf(check::CheckedHandOff(*handOff, factsOf(file)), profile);
    page::PageRequest request{.handOff = *handOff,
                              .file = std::filesystem::path(file).filename().native(),
                              .searchedFolders = call.mediaFolders,
                              .sound = found.sound ? &*found.sound : nullptr,
                              .verdict = &checked};
    try {
        addFiles(request, file, path, call, console, stop);
    } catch (const std::exception& error) {
        console.endBar();
        return failedOutcome(file, reportFailure(file, error, console));
    }
    Delivery delivery({.path = path, .force = call.force}, console);
    delivery.protect(file);
    protectMedia(*handOff, delivery);
    CountingSink sink(delivery);
    page::writePage(request, sink);
    if (!delivery.finish()) {
        return failedOutcome(file, "its page could not be written");
    }
    if (found.sound) {
        saySound(file, *found.sound, console);
    }
    sayWritten(file, path, sink.bytes(), console);
    return {.status = verdict(*handOff, call.failOn),
            .entry = indexEntry(request, std::filesystem::path(path).filename().native())};
}

}  // namespace trellant::cli
