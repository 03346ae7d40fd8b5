// SPDX-License-Identifier: Apache-2.0
#include "sound_walks.h"

#include <span>
#include <utility>

namespace trellant::salvage {

namespace {

/// Which of the numbers is least; there is one. Without branches: which header that is cannot be
/// foretold in a file that is made to be slow.
std::size_t placeOfLeast(std::span<const std::uint64_t> numbers) noexcept {
    std::uint64_t least = numbers.front();
    std::size_t place = 0;
    for (std::size_t i = 1; i < numbers.size(); ++i) {
        const bool isLess = numbers[i] < least;
        least = isLess ? numbers[i] : least;
        place = isLess ? i : place;
    }
    return place;
}

bool isBetter(const SoundHead& one, const SoundHead& other) noexcept {
    const bool oneKnows = one.formatChunk.has_value();
    const bool otherKnows = other.formatChunk.has_value();
    return oneKnows != otherKnows ? oneKnows : one.begin > other.begin;
}

}  // namespace

SoundWalk& SoundWalks::candidate(std::uint64_t begin, ByteView bytes) noexcept {
    begins_[count_] = begin;
    return walks_[slots_[count_]].emplace(begin, bytes);
}

void SoundWalks::add() noexcept {
    std::size_t place = count_++;
    if (count_ > most) {
        const std::size_t first = placeOfLeast(std::span(begins_).first(count_));
        remove(first);
        place = first;
    }
    settle(place);
}

std::optional<SoundHead> SoundWalks::step(ByteView bytes) noexcept {
    SoundWalk& next = walk(nextPlace_);
    switch (next.take(bytes)) {
        case SoundWalk::Step::further:
            settle(nextPlace_);
            return std::nullopt;
        case SoundWalk::Step::sound:
            return next.head();
        case SoundWalk::Step::empty:
        case SoundWalk::Step::nonsense:
            break;
    }
    remove(nextPlace_);
    findNext();
    return std::nullopt;
}

void SoundWalks::clear() noexcept {
    count_ = 0;
    next_ = none;
}

void SoundWalks::settle(std::size_t place) noexcept {
    const std::uint64_t chunk = walk(place).next();
    chunks_[place] = chunk;
    for (std::size_t i = 0; i < count_; ++i) {
        if (chunks_[i] != chunk || i == place) {
            continue;
        }
        const SoundHead& own = walk(place).head();
        const SoundHead& other = walk(i).head();
        if (own.isBigEndian() == other.isBigEndian()) {
            remove(isBetter(own, other) ? i : place);
            break;
        }
    }
    findNext();
}

/// The last one takes its place.
void SoundWalks::remove(std::size_t place) noexcept {
    --count_;
    chunks_[place] = chunks_[count_];
    begins_[place] = begins_[count_];
    std::swap(slots_[place], slots_[count_]);
}

void SoundWalks::findNext() noexcept {
    next_ = none;
    if (count_ != 0) {
        nextPlace_ = placeOfLeast(std::span(chunks_).first(count_));
        next_ = chunks_[nextPlace_];
    }
}

}  // namespace trellant::salvage
