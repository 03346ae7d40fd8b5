// SPDX-License-Identifier: Apache-2.0
// One file read by one confined worker, and what became of it as a row. Whatever the file does to
// its worker is a status of the row.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/check/profile.h>
#include <trellant/client/worker_client.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/scan/found_files.h>
#include <trellant/scan/row.h>

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>

namespace [[gnu::visibility("default")]] trellant {
namespace scan {

struct ReadingOptions {
    /// Digests of the file and of its samples.
    bool hashes = true;
    /// For one worker; digests take what they take.
    std::chrono::milliseconds timeLimit = std::chrono::minutes(5);
    /// Bytes that a worker may have; absent: what a file of its size can need, as askWorker has it.
    std::optional<std::uint64_t> memoryLimit{};
    /// The rules that files are held against; null: none.
    const check::Profile* profile = nullptr;
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
};

/// Used by several threads at once.
class FileReader {
  public:
    explicit FileReader(ReadingOptions options);
    ~FileReader();
    FileReader(const FileReader&) = delete;
    FileReader& operator=(const FileReader&) = delete;
    FileReader(FileReader&&) = delete;
    FileReader& operator=(FileReader&&) = delete;

    /// The row of `file`; absent when it is no OMF file by its content. Throws AAFCancellationError
    /// after a stop, and AAFWorkerClientError where there is no worker at all.
    [[nodiscard]] std::optional<ScanRow> read(const FoundFile& file, const StopToken& stop) const;

  private:
    class Reading;
    struct Shared;
    std::unique_ptr<Shared> shared_;
};

}  // namespace scan
}  // namespace trellant
