// SPDX-License-Identifier: Apache-2.0
#include "page_writer.h"

#include "look/console_progress.h"
#include "look/inspect.h"
#include "terminal/deliver.h"
#include "terminal/interrupts.h"

#include <trellant/base/printable_text.h>
#include <trellant/extraction/sha256.h>

#include <cstdint>
#include <exception>
#include <filesystem>

namespace trellant::cli {

namespace {

constexpr std::size_t longestShownPath = 4'096;

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
        console.out(printableText(file, longestShownPath) + " -> " +
                    printableText(path, longestShownPath) + " (" +
                    std::to_string((bytes + kilobyte - 1) / kilobyte) + " kB)\n");
    }
}

PageOutcome failedOutcome(const std::string& file, std::string failure) {
    return {.status = ExitStatus::fileFailed,
            .entry = {.file = file, .failure = std::move(failure)}};
}

}  // namespace

PageOutcome writePageOf(const std::string& file, const std::string& path, const PageCall& call,
                        Console& console, const StopToken& stop) {
    const Inspection found = inspect(file, call.mediaFolders, console, stop);
    if (!found.handOff) {
        return failedOutcome(file, found.failure);
    }
    page::PageRequest request{.handOff = *found.handOff,
                              .file = std::filesystem::path(file).filename().native(),
                              .searchedFolders = call.mediaFolders};
    try {
        request.sha256 = digestOf(file, console, stop);
    } catch (const std::exception& error) {
        console.endBar();
        return failedOutcome(file, reportFailure(file, error, console));
    }
    Delivery delivery({.path = path, .force = call.force}, console);
    delivery.protect(file);
    protectMedia(*found.handOff, delivery);
    CountingSink sink(delivery);
    page::writePage(request, sink);
    if (!delivery.finish()) {
        return failedOutcome(file, "its page could not be written");
    }
    sayWritten(file, path, sink.bytes(), console);
    return {.status = verdict(*found.handOff, call.failOn),
            .entry = indexEntry(request, std::filesystem::path(path).filename().native())};
}

}  // namespace trellant::cli
