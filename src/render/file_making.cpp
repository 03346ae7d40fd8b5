// SPDX-License-Identifier: Apache-2.0
#include "file_making.h"

#include <algorithm>
#include <chrono>
#include <utility>

namespace trellant::render {

namespace {

/// Added to the file at a time.
constexpr std::uint64_t blockFrames = 65'536;
/// Worked out at a time: what that takes stays in a processor's cache.
constexpr std::size_t workedOutFrames = 8'192;

}  // namespace

void SoundBytes::goTo(std::uint64_t frame) {
    if (frame != frame_) {
        sound_->skip(media_, static_cast<exchange::Samples>(frame - frame_));
        frame_ = frame;
    }
}

bool SoundBytes::isPlain(const Stretch& stretch) const {
    return stretch.kind == Stretch::Kind::silent ||
           (stretch.kind == Stretch::Kind::copied && media_.canCopy(stretch.media, format_));
}

std::uint64_t SoundBytes::next(std::span<std::byte> bytes) {
    const std::size_t frameBytes = sound_->channels() * format_.bytes();
    std::uint64_t cut = 0;
    while (!bytes.empty()) {
        Stretch stretch = sound_->ahead(media_, bytes.size() / frameBytes);
        if (!isPlain(stretch)) {
            stretch.frames = std::min(stretch.frames, workedOutFrames);
        }
        const auto part = bytes.first(stretch.frames * frameBytes);
        if (stretch.kind == Stretch::Kind::silent) {
            std::fill(part.begin(), part.end(), audio::silentByte(format_));
            sound_->skip(media_, static_cast<exchange::Samples>(stretch.frames));
        } else if (isPlain(stretch)) {
            media_.copy(stretch.media, stretch.channel, stretch.first, format_, part);
            sound_->skip(media_, static_cast<exchange::Samples>(stretch.frames));
        } else {
            samples_.resize(stretch.frames * sound_->channels());
            sound_->next(media_, samples_);
            cut += audio::encodePcm(format_, samples_, part);
        }
        frame_ += stretch.frames;
        bytes = bytes.subspan(part.size());
    }
    return cut;
}

FileMaking::FileMaking(FileOrder order, const PlayedFiles& played)
    : order_(std::move(order)),
      played_(played),
      blocks_(std::max<std::uint64_t>(
          1, order_.form.frames / blockFrames + (order_.form.frames % blockFrames == 0 ? 0 : 1))) {}

void FileMaking::work(const std::function<void()>& whileWaiting,
                      const std::function<void(std::uint64_t)>& advanced) {
    const WaveForm& form = order_.form;
    std::uint64_t block = nextBlock_++;
    if (block >= blocks_) {
        return;
    }
    SoundBytes sound(order_.sound(), played_, form.format);
    Bytes bytes;
    for (; block < blocks_; block = nextBlock_++) {
        whileWaiting();
        const std::uint64_t first = block * blockFrames;
        const std::uint64_t frames = std::min(blockFrames, form.frames - first);
        bytes.resize(frames * form.channels * form.format.bytes());
        sound.goTo(first);
        cutSamples_ += sound.next(bytes);
        add(block, bytes, whileWaiting);
        advanced(bytes.size());
    }
}

void FileMaking::add(std::uint64_t block, ByteView bytes,
                     const std::function<void()>& whileWaiting) {
    awaitTurn(block, whileWaiting);
    if (block == 0) {
        writer_.emplace(order_.path, order_.form, order_.chunks());
    }
    writer_->add(bytes);
    if (block + 1 == blocks_) {
        result_ = {writer_->finish(), cutSamples_};
        writer_.reset();
    }
    {
        const std::lock_guard lock(mutex_);
        ++added_;
    }
    changed_.notify_all();
}

/// All blocks before this one have been taken, so that none of them waits for it.
void FileMaking::awaitTurn(std::uint64_t block, const std::function<void()>& whileWaiting) {
    constexpr std::chrono::milliseconds tick{100};
    std::unique_lock lock(mutex_);
    while (!changed_.wait_for(lock, tick, [&] { return added_ == block; })) {
        lock.unlock();
        whileWaiting();
        lock.lock();
    }
}

}  // namespace trellant::render
