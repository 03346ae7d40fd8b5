// Both written forms, told in the container reader's bento_toc_*.cpp: entries of 24 bytes, and
// tokens of one code byte and a payload in blocks. Unlike there a fault ends the reading and costs
// nothing that stands before it.
#include "dump_toc.h"

#include <algorithm>
#include <array>
#include <span>
#include <vector>

namespace trellant::cli {

namespace {

constexpr std::size_t windowSize = 65'536;
constexpr std::size_t entrySize = 24;
constexpr std::uint8_t endOfBlock = 24;
constexpr std::uint8_t padding = 0xFF;
constexpr std::array<std::uint8_t, 27> payloadBytes{0, 12, 8, 4, 4, 8, 8, 12, 12, 0,  4, 4,  4, 4,
                                                    4, 4,  4, 4, 8, 8, 8, 12, 12, 12, 0, 16, 16};

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

BentoImmediate immediate(ByteView bytes) {
    BentoImmediate value;
    // At most four, as the callers say too: g++ 12 cannot tell from them and warns of an overflow.
    const std::size_t count = std::min(bytes.size(), value.bytes.size());
    for (std::size_t index = 0; index < count; ++index) {
        value.bytes[index] = std::to_integer<std::uint8_t>(bytes[index]);
    }
    value.count = static_cast<std::uint8_t>(count);
    return value;
}

std::optional<TocFault> readEntries(Window& window, OMFByteOrder order, const TocTaker& take) {
    for (std::uint64_t place = 0; place < window.size(); place += entrySize) {
        const ByteView entry = window.at(place, entrySize);
        if (entry.size() < entrySize) {
            return TocFault{place, "the last entry is cut"};
        }
        const auto length = u32(entry, 16, order);
        const unsigned flags = u16(entry, 22, order);
        BentoTOCItem item{
            .object = u32(entry, 0, order),
            .property = u32(entry, 4, order),
            .type = u32(entry, 8, order),
            .generation = u16(entry, 20, order),
            .segment = {BentoRange{u32(entry, 12, order), length}, (flags & 2U) != 0}};
        if ((flags & 1U) != 0) {
            if (length > 4) {
                return TocFault{place, "an entry holds " + std::to_string(length) +
                                           " bytes of its own, more than its 4"};
            }
            item.segment.storage = immediate(entry.subspan(12, length));
        }
        if (!take(item)) {
            break;
        }
    }
    return std::nullopt;
}

class TokenReader {
  public:
    TokenReader(Window& window, const BentoFooter& footer, const TocTaker& take)
        : window_(window), order_(footer.byteOrder), blockSize_(footer.blockSize), take_(take) {}

    std::optional<TocFault> read() {
        while (place_ < window_.size()) {
            const ByteView head = window_.at(place_, 1);
            if (head.empty()) {
                return TocFault{place_, "the file gives no more bytes"};
            }
            const auto code = std::to_integer<std::uint8_t>(head.front());
            if (code == padding) {
                ++place_;
            } else if (code == endOfBlock) {
                place_ = (place_ / blockSize_ + 1) * blockSize_;
            } else if (auto fault = readToken(code)) {
                return fault;
            }
            if (isEnough_) {
                break;
            }
        }
        return std::nullopt;
    }

  private:
    std::optional<TocFault> readToken(std::uint8_t code) {
        if (code == 0 || code >= payloadBytes.size()) {
            return TocFault{place_, "there is no token " + std::to_string(code)};
        }
        const std::size_t size = payloadBytes.at(code);
        const ByteView token = window_.at(place_, 1 + size);
        if (token.size() < 1 + size) {
            return TocFault{place_, "the last token is cut"};
        }
        const ByteView payload = token.subspan(1);
        if (code <= 4) {
            changeState(code, payload);
        } else {
            setValue(code, payload);
            isEnough_ = !take_(item_);
        }
        place_ += 1 + size;
        return std::nullopt;
    }

    void changeState(std::uint8_t code, ByteView payload) {
        if (code == 4) {
            item_.generation = static_cast<std::uint16_t>(
                std::min<std::uint32_t>(u32(payload, 0, order_), 0xFFFF));
            return;
        }
        std::int64_t at = 0;
        if (code == 1) {
            item_.object = u32(payload, at, order_);
            at += 4;
        }
        if (code <= 2) {
            item_.property = u32(payload, at, order_);
            at += 4;
        }
        item_.type = u32(payload, at, order_);
        item_.generation = 0;
    }

    void setValue(std::uint8_t code, ByteView payload) {
        item_.segment.continued = code == 6 || code == 8 || code == 14 || code == 26;
        if (code == 5 || code == 6) {
            item_.segment.storage = BentoRange{u32(payload, 0, order_), u32(payload, 4, order_)};
        } else if (code == 7 || code == 8) {
            item_.segment.storage = BentoRange{u64(payload, 0, order_), u32(payload, 8, order_)};
        } else if (code == 25 || code == 26) {
            item_.segment.storage = BentoRange{u64(payload, 0, order_), u64(payload, 8, order_)};
        } else if (code == 15) {
            item_.segment.storage = BentoReferenceList{u32(payload, 0, order_)};
        } else {
            // The reserved codes from 16 are items without bytes, as 9 is.
            const std::size_t count = code > 14 ? 0 : std::min<std::size_t>(code - 9U, 4);
            item_.segment.storage = immediate(payload.first(count));
        }
    }

    Window& window_;
    OMFByteOrder order_;
    std::uint64_t blockSize_;
    const TocTaker& take_;
    std::uint64_t place_ = 0;
    bool isEnough_ = false;
    /// What the following value tokens belong to, and the last of them.
    BentoTOCItem item_;
};

}  // namespace

std::optional<TocFault> readToc(const RandomAccessFile& file, const BentoFooter& footer,
                                const TocTaker& take) {
    Window window(file, footer);
    auto fault = footer.majorVersion == 1 ? readEntries(window, footer.byteOrder, take)
                                          : TokenReader(window, footer, take).read();
    if (!fault && window.size() < footer.tocSize) {
        fault = TocFault{window.size(), "the file ends here"};
    }
    return fault;
}

}  // namespace trellant::cli
