// SPDX-License-Identifier: Apache-2.0
// One rendered file made by as many threads as come. Each takes the next block that nobody has,
// works it out and adds it when the file has grown as far as there: the bytes are the same however
// many there are.
#pragma once

#include "media_reader.h"
#include "sound.h"
#include "wave_file.h"

#include <atomic>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace trellant::render {

/// A sound as a file has it.
class SoundBytes {
  public:
    /// `played` must outlive it. `format`: of the file.
    SoundBytes(std::unique_ptr<Sound> sound, const PlayedFiles& played,
               const audio::PcmFormat& format)
        : sound_(std::move(sound)), media_(played), format_(format) {}

    /// Goes on at that frame, counted from the sound's start; never back.
    void goTo(std::uint64_t frame);
    /// Fills `bytes` with whole frames; gives how many samples were cut off at full scale. Throws
    /// FileSystemError for media that cannot be read.
    [[nodiscard]] std::uint64_t next(std::span<std::byte> bytes);

  private:
    /// Whether it becomes bytes without being worked out.
    [[nodiscard]] bool isPlain(const Stretch& stretch) const;

    std::unique_ptr<Sound> sound_;
    MediaReader media_;
    audio::PcmFormat format_;
    std::uint64_t frame_ = 0;
    std::vector<double> samples_;
};

/// What a file is to be.
struct FileOrder {
    std::string path{};
    WaveForm form{};
    /// Chunks in front of the samples.
    std::function<Bytes()> chunks{};
    /// A new sound from the file's start; from any thread.
    std::function<std::unique_ptr<Sound>()> sound{};
};

class FileMaking {
  public:
    struct Result {
        std::string sha256{};
        /// Samples beyond full scale.
        std::uint64_t cutSamples = 0;
    };

    /// `played` must outlive this.
    FileMaking(FileOrder order, const PlayedFiles& played);

    /// Takes part until no block is left. `whileWaiting` throws when the file is not wanted any
    /// more, `advanced` takes the bytes of further samples. Throws FileSystemError; the others
    /// have to be made to throw then.
    void work(const std::function<void()>& whileWaiting,
              const std::function<void(std::uint64_t)>& advanced);
    /// Once all who took part have returned.
    [[nodiscard]] const Result& result() const noexcept { return result_; }

  private:
    void add(std::uint64_t block, ByteView bytes, const std::function<void()>& whileWaiting);
    void awaitTurn(std::uint64_t block, const std::function<void()>& whileWaiting);

    FileOrder order_;
    const PlayedFiles& played_;
    std::uint64_t blocks_;
    std::atomic<std::uint64_t> nextBlock_{0};
    std::atomic<std::uint64_t> cutSamples_{0};
    std::mutex mutex_;
    std::condition_variable changed_;
    /// Blocks that the file has.
    std::uint64_t added_ = 0;
    /// For whoever has the next block.
    std::optional<WaveFileWriter> writer_;
    Result result_;
};

}  // namespace trellant::render
