// SPDX-License-Identifier: Apache-2.0
// A fault ends the reading and costs nothing that stands before it.
#include "dump_toc.h"

#include <trellant/io/bento_toc_entries.h>
#include <trellant/io/bento_toc_tokens.h>

#include <algorithm>
#include <utility>
#include <vector>

namespace trellant::cli {

namespace {

constexpr std::size_t windowSize = 65'536;

/// The table's bytes through a window that moves forward.
class Window {
  public:
    Window(const RandomAccessFile& file, const BentoFooter& footer)
        : file_(file),
          offset_(footer.tocOffset),
          size_(offset_ < file.size() ? std::min(footer.tocSize, file.size() - offset_) : 0) {}

    /// Bytes of the table that the file holds.
    [[nodiscard]] std::uint64_t size() const noexcept { return size_; }

    /// `count` bytes, at most windowSize, from the table's byte `place`; fewer when they are not
    /// there. Valid until the next call.
    ByteView at(std::uint64_t place, std::size_t count) {
        const auto wanted = std::min<std::uint64_t>(count, size_ - std::min(place, size_));
        if (place < begin_ || place - begin_ > bytes_.size() ||
            wanted > bytes_.size() - (place - begin_)) {
            begin_ = place;
            bytes_.resize(
                static_cast<std::size_t>(std::min<std::uint64_t>(windowSize, size_ - place)));
            bytes_.resize(file_.readAvailable(offset_ + place, bytes_));
        }
        const ByteView rest = ByteView(bytes_).subspan(static_cast<std::size_t>(place - begin_));
        return rest.first(std::min<std::size_t>(rest.size(), static_cast<std::size_t>(wanted)));
    }

  private:
    const RandomAccessFile& file_;
    std::uint64_t offset_;
    std::uint64_t size_;
    std::uint64_t begin_ = 0;
    std::vector<std::byte> bytes_;
};

std::optional<TocFault> readEntries(Window& window, OMFByteOrder order, const TocTaker& take) {
    for (std::uint64_t place = 0; place < window.size(); place += BentoEntry::size) {
        const ByteView bytes = window.at(place, BentoEntry::size);
        if (bytes.size() < BentoEntry::size) {
            return TocFault{place, "the last entry is cut"};
        }
        const BentoEntry entry(bytes.data(), order);
        if (entry.isTooLong()) {
            return TocFault{place, "an entry holds " + std::to_string(entry.length()) +
                                       " bytes of its own, more than its 4"};
        }
        if (!take(entry.item())) {
            break;
        }
    }
    return std::nullopt;
}

/// Of a token with `room` bytes behind its code; absent when all is well.
std::optional<std::string> faultText(BentoToken token, std::size_t room) {
    switch (token.fault(room)) {
        case BentoTokenFault::none:
            break;
        case BentoTokenFault::unknown:
            return "there is no token " + std::to_string(token.code());
        case BentoTokenFault::cut:
            return "the last token is cut";
    }
    return std::nullopt;
}

std::optional<TocFault> readTokens(Window& window, const BentoFooter& footer,
                                   const TocTaker& take) {
    BentoPackedItem state;
    for (std::uint64_t place = 0; place < window.size();) {
        const ByteView bytes = window.at(place, BentoToken::longestSize);
        if (bytes.empty()) {
            return TocFault{place, "the file gives no more bytes"};
        }
        const BentoToken token(bytes.front());
        if (token.isPadding()) {
            ++place;
            continue;
        }
        if (token.isEndOfBlock()) {
            place = bentoNextBlock<std::uint64_t>(place, footer.blockSize);
            continue;
        }
        if (auto text = faultText(token, bytes.size() - 1)) {
            return TocFault{place, std::move(*text)};
        }
        const std::byte* const payload = bytes.data() + 1;
        place += 1 + token.payloadSize();
        if (token.changesState()) {
            token.changeState(payload, footer.byteOrder, state);
            continue;
        }
        BentoPackedItem item = state;
        token.setValue(payload, footer.byteOrder, item);
        if (!take(item)) {
            break;
        }
    }
    return std::nullopt;
}

}  // namespace

std::optional<TocFault> readToc(const RandomAccessFile& file, const BentoFooter& footer,
                                const TocTaker& take) {
    Window window(file, footer);
    auto fault = footer.majorVersion == 1 ? readEntries(window, footer.byteOrder, take)
                                          : readTokens(window, footer, take);
    if (!fault && window.size() < footer.tocSize) {
        fault = TocFault{window.size(), "the file ends here"};
    }
    return fault;
}

}  // namespace trellant::cli
