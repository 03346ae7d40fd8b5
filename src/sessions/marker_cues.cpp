// SPDX-License-Identifier: Apache-2.0
// A silent WAVE file, numbers little-endian, that marks places in itself:
//
//   chunk   content
//   fmt     16 bit PCM, mono, at the session's rate
//   data    zeros, as long as the session
//   cue     a count, then of each mark: number, sample, "data", 0, 0, sample (24 bytes)
//   LIST    "adtl", then of each mark: "labl" with number and text, ended by a zero byte; of one
//   with
//           an extent also "ltxt" with number, length in samples, "rgn " and 8 bytes of language
#include "marker_limits.h"
#include "marker_list.h"

#include <trellant/base/bytes.h>

#include <algorithm>
#include <cstdint>
#include <span>
#include <string_view>

namespace trellant::sessions {

namespace {

using exchange::Samples;

/// The length behind "RIFF" has 32 bits.
constexpr std::uint64_t mostBytes = 0xFFFFFFFF;
constexpr std::uint64_t bytesPerSample = 2;
constexpr std::uint64_t headerSize = 8;
constexpr std::uint64_t formatSize = 16;
constexpr std::uint64_t cueSize = 24;
constexpr std::uint64_t regionSize = 20;
/// "WAVE", the headers of all chunks, the format, the count of cues, "adtl".
constexpr std::uint64_t frameSize = 4 + 4 * headerSize + formatSize + 4 + 4;

std::uint64_t even(std::uint64_t size) noexcept {
    return size + size % 2;
}

std::uint64_t labelSize(const Mark& mark) noexcept {
    return 4 + mark.text.size() + 1;
}

/// What the mark takes in the list of texts.
std::uint64_t textBytes(const Mark& mark) noexcept {
    return headerSize + even(labelSize(mark)) + (mark.length > 0 ? headerSize + regionSize : 0);
}

/// The marks that the file holds, their extents cut at its end.
struct Cues {
    Samples length = 0;
    std::vector<Mark> marks{};
    std::uint64_t textByteCount = 0;
};

Cues cuesOf(const Session& session, std::uint64_t mostMarkBytes) {
    std::vector<Mark> marks = marksOf(session);
    std::uint64_t markBytes = 0;
    const auto full =
        std::find_if(marks.begin(), marks.end(), [&markBytes, mostMarkBytes](const Mark& mark) {
            const std::uint64_t bytes = cueSize + textBytes(mark);
            const bool fits = bytes <= mostMarkBytes - markBytes;
            markBytes += fits ? bytes : 0;
            return !fits;
        });
    marks.erase(full, marks.end());
    const std::uint64_t room = (mostBytes - frameSize - markBytes) / bytesPerSample;
    Cues cues{.length = std::min(session.plan.length, static_cast<Samples>(room))};
    for (Mark& mark : marks) {
        if (mark.start > cues.length) {
            break;
        }
        mark.length = std::min(mark.length, cues.length - mark.start);
        cues.textByteCount += textBytes(mark);
        cues.marks.push_back(std::move(mark));
    }
    return cues;
}

class CueFile {
  public:
    CueFile(const Cues& cues, std::int64_t rate, const PlacedSink& sink)
        : cues_(cues), rate_(rate), sink_(sink) {}

    void write() {
        const std::uint64_t dataSize = static_cast<std::uint64_t>(cues_.length) * bytesPerSample;
        const std::uint64_t cuesSize = 4 + cueSize * cues_.marks.size();
        word("RIFF");
        number(frameSize + dataSize + cueSize * cues_.marks.size() + cues_.textByteCount, 4);
        word("WAVE");
        format();
        chunk("data", dataSize);
        silence(dataSize);
        chunk("cue ", cuesSize);
        number(cues_.marks.size(), 4);
        for (std::size_t i = 0; i < cues_.marks.size(); ++i) {
            cue(i + 1, static_cast<std::uint64_t>(cues_.marks[i].start));
        }
        chunk("LIST", 4 + cues_.textByteCount);
        word("adtl");
        for (std::size_t i = 0; i < cues_.marks.size(); ++i) {
            label(i + 1, cues_.marks[i]);
        }
        flush();
    }

  private:
    static constexpr std::size_t pieceSize = 65536;

    void format() {
        constexpr std::uint64_t pcm = 1;
        const auto rate = static_cast<std::uint64_t>(rate_);
        chunk("fmt ", formatSize);
        number(pcm, 2);
        number(1, 2);
        number(rate, 4);
        number(rate * bytesPerSample, 4);
        number(bytesPerSample, 2);
        number(8 * bytesPerSample, 2);
    }
    void silence(std::uint64_t size) {
        flush();
        place_ += size;
    }
    void cue(std::uint64_t identifier, std::uint64_t sample) {
        number(identifier, 4);
        number(sample, 4);
        word("data");
        number(0, 4);
        number(0, 4);
        number(sample, 4);
        flushFullPiece();
    }
    void label(std::uint64_t identifier, const Mark& mark) {
        constexpr std::uint64_t utf8 = 65001;
        chunk("labl", labelSize(mark));
        number(identifier, 4);
        word(mark.text);
        number(0, 1 + labelSize(mark) % 2);
        if (mark.length > 0) {
            chunk("ltxt", regionSize);
            number(identifier, 4);
            number(static_cast<std::uint64_t>(mark.length), 4);
            word("rgn ");
            number(0, 6);
            number(utf8, 2);
        }
        flushFullPiece();
    }
    void chunk(std::string_view name, std::uint64_t size) {
        word(name);
        number(size, 4);
    }
    void word(std::string_view text) {
        const auto bytes = std::as_bytes(std::span(text));
        bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
    }
    void number(std::uint64_t value, std::uint64_t width) {
        for (std::uint64_t i = 0; i < width; ++i) {
            bytes_.push_back(static_cast<std::byte>(value >> (8 * i) & 0xFFU));
        }
    }
    void flushFullPiece() {
        if (bytes_.size() >= pieceSize) {
            flush();
        }
    }
    void flush() {
        if (!bytes_.empty()) {
            sink_(place_, bytes_);
            place_ += bytes_.size();
            bytes_.clear();
        }
    }

    const Cues& cues_;
    std::int64_t rate_;
    const PlacedSink& sink_;
    /// Where `bytes_` go.
    std::uint64_t place_ = 0;
    Bytes bytes_;
};

}  // namespace

CueFileShare cueFileShare(const Session& session, std::uint64_t mostMarkBytes) {
    const Cues cues = cuesOf(session, mostMarkBytes);
    return {.length = cues.length,
            .held = cues.marks.size(),
            .leftOut = marksOf(session).size() - cues.marks.size()};
}

void writeCuePoints(const Session& session, const PlacedSink& sink) {
    const Cues cues = cuesOf(session, mostCueBytes);
    CueFile(cues, session.plan.rate, sink).write();
}

}  // namespace trellant::sessions
