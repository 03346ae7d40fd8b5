// SPDX-License-Identifier: Apache-2.0
// Marks and the headers behind them are followed at the same time: a header that leads nowhere may
// reach over the mark of a sound that is there. Two that come to the same chunk go on as one, so
// the work grows with the bytes, not with what they claim.
#include "forward_window.h"
#include "sound_extent.h"
#include "sound_walk.h"
#include "taken_ranges.h"

#include <trellant/base/byte_load.h>
#include <trellant/salvage/sound_search.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace trellant::salvage {

namespace {

/// Headers that are followed at the same time; of more the first is given up.
constexpr std::size_t mostWalks = 8;
/// What is looked at behind a mark: the whole header of nearly every sound.
constexpr std::size_t usualHeader = 512;

/// Whether the header in `bytes`, which begin with a mark, says that no samples follow.
bool isEmptySound(std::uint64_t mark, ByteView bytes) {
    SoundWalk walk(mark, bytes);
    auto step = SoundWalk::Step::further;
    while (step == SoundWalk::Step::further && walk.next() - mark < bytes.size()) {
        step = walk.take(bytes.subspan(static_cast<std::size_t>(walk.next() - mark)));
    }
    return step == SoundWalk::Step::empty;
}

}  // namespace

class SoundSearch::Pass {
  public:
    Pass(const RandomAccessFile& file, const FoundTable* table, Progress progress,
         std::uint64_t searchedBytes)
        : size_(std::min(file.size(), searchedBytes)),
          window_(file),
          table_(table),
          progress_(std::move(progress)),
          freeUntil_(size_) {}

    [[nodiscard]] std::optional<FoundSound> next();
    [[nodiscard]] std::uint64_t position() const noexcept { return position_; }

  private:
    /// A sound that begins at the mark: with its header, or as the table names it.
    struct Begun {
        std::uint64_t mark = 0;
        std::optional<SoundHead> head{};
        std::optional<FoundSound> named{};
    };

    [[nodiscard]] std::optional<Begun> search();
    /// Goes to the next mark before byte `end`, or to that.
    [[nodiscard]] std::optional<Begun> searchMarks(std::uint64_t end);
    /// What begins at the mark at position_, if that is told already.
    [[nodiscard]] std::optional<Begun> beginAt(ByteView bytes);
    [[nodiscard]] std::optional<FoundSound> namedByTable(std::uint64_t mark, ByteView bytes);
    [[nodiscard]] std::optional<Begun> stepWalk();
    void addWalk(const SoundWalk& walk);
    void skipTaken();
    void takeHeaded(const SoundHead& head);
    void endCut(std::uint64_t end);

    std::uint64_t size_;
    ForwardWindow window_;
    const FoundTable* table_;
    Progress progress_;
    std::uint64_t position_ = 0;
    /// Up to here nothing is taken.
    std::uint64_t freeUntil_;
    /// Pieces that the table names, from a sound's mark on.
    TakenRanges taken_;
    /// By the chunk that comes next, the last one first.
    std::vector<SoundWalk> walks_;
    /// A sound that reaches beyond what there is, while its end is looked for.
    std::optional<SoundHead> cut_;
    std::vector<FoundSound> ready_;
};

std::optional<FoundSound> SoundSearch::Pass::next() {
    while (ready_.empty()) {
        auto begun = search();
        if (cut_) {
            endCut(begun ? begun->mark : size_);
        }
        if (begun && begun->named) {
            ready_.push_back(std::move(*begun->named));
        } else if (begun) {
            takeHeaded(*begun->head);
        } else {
            break;
        }
    }
    if (ready_.empty()) {
        return std::nullopt;
    }
    FoundSound sound = std::move(ready_.front());
    ready_.erase(ready_.begin());
    return sound;
}

std::optional<SoundSearch::Pass::Begun> SoundSearch::Pass::search() {
    while (position_ < size_) {
        skipTaken();
        if (position_ >= size_) {
            break;
        }
        const bool hasWalk = !walks_.empty() && walks_.back().next() < size_;
        const std::uint64_t chunk = hasWalk ? walks_.back().next() : size_;
        auto begun = chunk == position_ ? stepWalk() : searchMarks(std::min(chunk, freeUntil_));
        if (begun) {
            walks_.clear();
            return begun;
        }
    }
    return std::nullopt;
}

void SoundSearch::Pass::skipTaken() {
    if (position_ < freeUntil_) {
        return;
    }
    while (const auto end = taken_.endAt(position_)) {
        position_ = *end;
        walks_.clear();
    }
    freeUntil_ = taken_.nextFrom(position_, size_);
}

std::optional<SoundSearch::Pass::Begun> SoundSearch::Pass::searchMarks(std::uint64_t end) {
    const ByteView view = window_.at(position_, usualHeader);
    if (view.size() < markBytes) {
        // No mark fits any more; a chunk may.
        position_ = end;
        return std::nullopt;
    }
    const std::uint64_t begin = position_;
    const auto places =
        static_cast<std::size_t>(std::min<std::uint64_t>(view.size() - markBytes + 1, end - begin));
    for (std::size_t from = 0; from < places;) {
        const ByteView left = view.first(places + markBytes - 1).subspan(from);
        const std::size_t at = from + firstMark(left);
        if (at >= places) {
            break;
        }
        position_ = begin + at;
        if (auto begun = beginAt(view.subspan(at))) {
            return begun;
        }
        from = at + 1;
        position_ = begin + from;
        if (!walks_.empty() && walks_.back().next() < begin + places) {
            return std::nullopt;
        }
    }
    position_ = begin + places;
    if (progress_) {
        progress_(position_);
    }
    return std::nullopt;
}

std::optional<SoundSearch::Pass::Begun> SoundSearch::Pass::beginAt(ByteView bytes) {
    const std::uint64_t mark = position_;
    if (auto named = namedByTable(mark, bytes)) {
        position_ = mark + named->ranges.front().length;
        return Begun{.mark = mark, .named = std::move(named)};
    }
    SoundWalk walk(mark, bytes);
    // Nearly all that is no sound ends here.
    if (bytes.size() >= markBytes + chunkLookBytes) {
        const auto step = walk.take(bytes.subspan(markBytes));
        if (step == SoundWalk::Step::sound) {
            return Begun{.mark = mark, .head = walk.head()};
        }
        if (step != SoundWalk::Step::further) {
            return std::nullopt;
        }
    }
    addWalk(walk);
    return std::nullopt;
}

std::optional<FoundSound> SoundSearch::Pass::namedByTable(std::uint64_t mark, ByteView bytes) {
    const auto pieces = table_ == nullptr ? std::span<const BentoRange>{} : table_->valueAt(mark);
    // Writers go forward; what lies behind may be part of another sound by now.
    const bool isAhead = std::all_of(pieces.begin(), pieces.end(),
                                     [&](const BentoRange& piece) { return piece.offset >= mark; });
    if (pieces.empty() || !isAhead || isEmptySound(mark, bytes) || !taken_.take(pieces)) {
        return std::nullopt;
    }
    const SoundHead head = SoundWalk(mark, bytes).head();
    FoundSound sound;
    sound.kind = head.kind;
    sound.origin = SoundOrigin::table;
    sound.ranges.assign(pieces.begin(), pieces.end());
    sound.claimedBytes = sound.bytes();
    const std::uint64_t said = head.formBytes.value_or(sound.claimedBytes);
    if (said != sound.claimedBytes && said + said % 2 != sound.claimedBytes) {
        sound.doubts.push_back(Doubt::lengthsDiffer);
    }
    freeUntil_ = std::min(freeUntil_, taken_.nextFrom(mark + 1, size_));
    return sound;
}

std::optional<SoundSearch::Pass::Begun> SoundSearch::Pass::stepWalk() {
    SoundWalk walk = walks_.back();
    walks_.pop_back();
    switch (walk.take(window_.at(position_, chunkLookBytes))) {
        case SoundWalk::Step::further:
            addWalk(walk);
            break;
        case SoundWalk::Step::sound:
            return Begun{.mark = walk.head().begin, .head = walk.head()};
        case SoundWalk::Step::empty:
        case SoundWalk::Step::nonsense:
            break;
    }
    return std::nullopt;
}

void SoundSearch::Pass::addWalk(const SoundWalk& walk) {
    const auto place = std::lower_bound(
        walks_.begin(), walks_.end(), walk,
        [](const SoundWalk& left, const SoundWalk& right) { return left.next() > right.next(); });
    const bool meetsOther = place != walks_.end() && place->next() == walk.next() &&
                            place->head().isBigEndian() == walk.head().isBigEndian();
    if (meetsOther) {
        // What knows its format goes on; of two the one that began later.
        const bool isBetter =
            walk.head().formatChunk.has_value() || !place->head().formatChunk.has_value();
        if (isBetter) {
            *place = walk;
        }
        return;
    }
    walks_.insert(place, walk);
    if (walks_.size() > mostWalks) {
        walks_.erase(std::min_element(walks_.begin(), walks_.end(),
                                      [](const SoundWalk& left, const SoundWalk& right) {
                                          return left.head().begin < right.head().begin;
                                      }));
    }
}

void SoundSearch::Pass::takeHeaded(const SoundHead& head) {
    const std::uint64_t limit = taken_.nextFrom(head.begin, size_);
    if (hasAllSamples(head, limit)) {
        FoundSound sound = soundWithTail(head, limit, window_);
        position_ = head.begin + sound.bytes();
        ready_.push_back(std::move(sound));
    } else {
        cut_ = head;
        position_ = head.soundChunk + chunkHeadBytes;
    }
}

void SoundSearch::Pass::endCut(std::uint64_t end) {
    const std::uint64_t limit = std::min(end, taken_.nextFrom(cut_->begin, size_));
    auto sound = cutSound(*cut_, limit, limit == size_ ? Doubt::cutByEnd : Doubt::cutByNext);
    cut_.reset();
    if (sound) {
        ready_.push_back(std::move(*sound));
    }
}

SoundSearch::SoundSearch(const RandomAccessFile& file, const FoundTable* table, Progress progress,
                         std::uint64_t searchedBytes)
    : pass_(std::make_unique<Pass>(file, table, std::move(progress), searchedBytes)) {}

SoundSearch::~SoundSearch() = default;

std::optional<FoundSound> SoundSearch::next() {
    return pass_->next();
}

std::uint64_t SoundSearch::position() const noexcept {
    return pass_->position();
}

}  // namespace trellant::salvage
