// SPDX-License-Identifier: Apache-2.0
// Marks and the headers behind them are followed at the same time: a header that leads nowhere may
// reach over the mark of a sound that is there. Two that come to the same chunk go on as one, so
// the work grows with the bytes, not with what they claim. What comes next is the next mark or the
// next chunk of a header, whichever begins first; the next mark is looked for once, however many
// chunks lie before it.
#include "forward_window.h"
#include "sound_extent.h"
#include "sound_walk.h"
#include "sound_walks.h"
#include "taken_ranges.h"

#include <trellant/base/byte_load.h>
#include <trellant/salvage/sound_search.h>

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

namespace trellant::salvage {

namespace {

/// What is looked at behind a mark: the whole header of nearly every sound.
constexpr std::size_t usualHeader = 512;
/// From one call of `progress` to the next.
constexpr std::uint64_t progressBytes = 262'144;

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
    /// Goes to the next mark before byte `end`, or to that; true for a mark.
    [[nodiscard]] bool goToMark(std::uint64_t end);
    [[nodiscard]] std::uint64_t markAt(std::size_t number) const {
        return marksBegin_ + places_.at(number);
    }
    /// What begins at the mark at position_, if that is told already.
    [[nodiscard]] std::optional<Begun> beginAtMark();
    [[nodiscard]] std::optional<FoundSound> namedByTable(std::uint64_t mark, ByteView bytes);
    [[nodiscard]] std::optional<Begun> stepWalk();
    void tellProgress();
    void skipTaken();
    void takeHeaded(const SoundHead& head);
    void endCut(std::uint64_t end);

    std::uint64_t size_;
    ForwardWindow window_;
    const FoundTable* table_;
    Progress progress_;
    std::uint64_t position_ = 0;
    /// The next marks, as far as they were looked for: their places from marksBegin_ on, and which
    /// of them comes next.
    MarkScan marks_{};
    std::array<std::uint32_t, 64> places_{};
    std::uint64_t marksBegin_ = 0;
    std::size_t mark_ = 0;
    std::uint64_t progressAt_ = 0;
    /// Up to here nothing is taken.
    std::uint64_t freeUntil_;
    /// Pieces that the table names, from a sound's mark on.
    TakenRanges taken_;
    SoundWalks walks_;
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
        tellProgress();
        skipTaken();
        if (position_ >= size_) {
            break;
        }
        const std::uint64_t chunk = std::min(walks_.next(), size_);
        std::optional<Begun> begun;
        if (chunk == position_) {
            begun = stepWalk();
        } else if (goToMark(std::min(chunk, freeUntil_))) {
            begun = beginAtMark();
        }
        if (begun) {
            walks_.clear();
            return begun;
        }
    }
    return std::nullopt;
}

void SoundSearch::Pass::tellProgress() {
    if (progress_ && position_ >= progressAt_) {
        progressAt_ = position_ + progressBytes;
        progress_(position_);
    }
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

bool SoundSearch::Pass::goToMark(std::uint64_t end) {
    while (true) {
        while (mark_ < marks_.count && markAt(mark_) < position_) {
            ++mark_;
        }
        if (mark_ < marks_.count) {
            position_ = std::min(markAt(mark_), end);
            return position_ != end;
        }
        const std::uint64_t scanned = std::max(marksBegin_ + marks_.places, position_);
        if (scanned >= end) {
            position_ = end;
            return false;
        }
        const ByteView view = window_.at(position_, usualHeader);
        if (view.size() < markBytes) {
            // No mark fits any more; a chunk may.
            position_ = end;
            return false;
        }
        if (scanned - position_ > view.size() - markBytes) {
            position_ = scanned;
            continue;
        }
        // What the table names is a sound whatever stands behind its mark.
        marks_ = scanForMarks(view.subspan(static_cast<std::size_t>(scanned - position_)),
                              table_ == nullptr ? MarkLook::withChunk : MarkLook::alone, places_);
        marksBegin_ = scanned;
        mark_ = 0;
        if (marks_.count == 0) {
            position_ = std::min(marksBegin_ + marks_.places, end);
            tellProgress();
        }
    }
}

std::optional<SoundSearch::Pass::Begun> SoundSearch::Pass::beginAtMark() {
    const std::uint64_t mark = position_;
    ++mark_;
    const ByteView bytes = window_.at(mark, usualHeader);
    if (auto named = namedByTable(mark, bytes)) {
        position_ = mark + named->ranges.front().length;
        return Begun{.mark = mark, .named = std::move(named)};
    }
    position_ = mark + 1;
    if (!mayLeadOn(bytes)) {
        return std::nullopt;
    }
    SoundWalk& walk = walks_.candidate(mark, bytes);
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
    walks_.add();
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
    const auto sound = walks_.step(window_.at(position_, chunkLookBytes));
    return sound ? std::optional(Begun{.mark = sound->begin, .head = *sound}) : std::nullopt;
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
