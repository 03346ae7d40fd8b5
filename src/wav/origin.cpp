// SPDX-License-Identifier: Apache-2.0
#include "origin.h"

#include <trellant/base/bytes.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>

namespace trellant::wav {

namespace {

/// The library keeps the head of a file in no more memory than 100 KiB.
constexpr std::size_t mostOtherBytes = 32'768;
constexpr std::string_view notWritten = "the WAVE file could not be written";

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t number = 0;
    const auto read = std::from_chars(text.data(), text.data() + text.size(), number);
    const bool isWhole = read.ec == std::errc() && read.ptr == text.data() + text.size();
    return isWhole ? std::optional(number) : std::nullopt;
}

/// "30000/1001", "25", from 0 on.
std::optional<AAFRational> fraction(std::string_view text) {
    const auto slash = text.find('/');
    const auto numerator = wholeNumber(text.substr(0, slash));
    const auto denominator = slash == std::string_view::npos ? std::optional<std::int64_t>(1)
                                                             : wholeNumber(text.substr(slash + 1));
    if (!numerator || !denominator || *numerator < 0 || *denominator < 1) {
        return std::nullopt;
    }
    return AAFRational(*numerator, *denominator);
}

/// What is told so far; the numbers apart, since all of them must come.
struct Told {
    Origin origin{};
    std::optional<AAFRational> sinceMidnight{};
    std::optional<AAFRational> rate{};
    std::optional<bool> dropFrame{};

    /// False for a word that says nothing.
    [[nodiscard]] bool take(std::string_view key, std::string_view value) {
        if (key == "date") {
            origin.date = wholeNumber(value);
            return origin.date.has_value();
        }
        if (key == "since-midnight") {
            sinceMidnight = fraction(value);
            return sinceMidnight.has_value();
        }
        if (key == "rate") {
            rate = fraction(value);
            return rate && *rate > AAFRational::zero();
        }
        if (key == "counting") {
            dropFrame = value == "DF";
            return value == "DF" || value == "NDF";
        }
        return takeText(key, std::string(value));
    }

  private:
    [[nodiscard]] bool takeText(std::string_view key, std::string value) {
        if (key == "description") {
            origin.description = std::move(value);
        } else if (key == "originator") {
            origin.originator = std::move(value);
        } else if (key == "reference") {
            origin.reference = std::move(value);
        } else if (key == "project") {
            origin.project = std::move(value);
        } else if (key == "tape") {
            origin.tape = std::move(value);
        } else {
            return false;
        }
        return true;
    }
};

/// `content` filled up to whole words of four bytes, which the library else does by itself with
/// whatever lies there.
void setChunk(SNDFILE* target, std::string_view id, Bytes content, std::byte filler) {
    constexpr std::size_t word = 4;
    content.resize((content.size() + word - 1) / word * word, filler);
    SF_CHUNK_INFO chunk{};
    std::copy(id.begin(), id.end(), std::begin(chunk.id));
    chunk.id_size = static_cast<unsigned>(id.size());
    chunk.datalen = static_cast<unsigned>(content.size());
    chunk.data = content.data();
    if (const int failure = ::sf_set_chunk(target, &chunk); failure != SF_ERR_NO_ERROR) {
        throw because(notWritten, ::sf_error_number(failure));
    }
}

bool isOfTheSound(std::string_view id) {
    constexpr std::array<std::string_view, 11> ids{"RIFF", "RF64", "WAVE", "ds64", "fmt ", "fact",
                                                   "PEAK", "data", "JUNK", "PAD ", "FLLR"};
    return std::find(ids.begin(), ids.end(), id) != ids.end();
}

}  // namespace

std::optional<Origin> originOf(std::span<const std::string_view> words) {
    Told told;
    for (const std::string_view word : words) {
        const auto equals = word.find('=');
        if (equals == std::string_view::npos ||
            !told.take(word.substr(0, equals), word.substr(equals + 1))) {
            return std::nullopt;
        }
    }
    if (!told.sinceMidnight || !told.rate || !told.dropFrame) {
        return std::nullopt;
    }
    told.origin.sinceMidnight = *told.sinceMidnight;
    told.origin.timecode = {.rate = *told.rate, .dropFrame = *told.dropFrame};
    return std::move(told.origin);
}

void setOrigin(SNDFILE* target, const Origin& origin, std::uint32_t sampleRate,
               std::uint32_t bits) {
    const auto reference = static_cast<std::uint64_t>(
        std::max<std::int64_t>((origin.sinceMidnight * AAFRational(sampleRate)).roundedInt64(), 0));
    setChunk(target, audio::broadcastChunkID,
             audio::broadcastChunk({.description = origin.description,
                                    .originator = origin.originator,
                                    .originatorReference = origin.reference,
                                    .originated = origin.date,
                                    .timeReference = reference}),
             std::byte{0});
    setChunk(target, audio::productionChunkID,
             audio::productionChunk({.project = origin.project,
                                     .tape = origin.tape,
                                     .sampleRate = sampleRate,
                                     .bitDepth = bits,
                                     .timecode = origin.timecode,
                                     .timeReference = reference}),
             std::byte{'\n'});
}

void copyOtherChunks(const Source& source, SNDFILE* target) {
    std::size_t bytes = 0;
    for (SF_CHUNK_ITERATOR* at = ::sf_get_chunk_iterator(source.sound.get(), nullptr);
         at != nullptr; at = ::sf_next_chunk_iterator(at)) {
        SF_CHUNK_INFO chunk{};
        if (::sf_get_chunk_size(at, &chunk) != SF_ERR_NO_ERROR) {
            throw ConversionError("what it holds beside its sound cannot be read");
        }
        Bytes content(std::min<std::size_t>(chunk.datalen, mostOtherBytes + 1));
        chunk.datalen = static_cast<unsigned>(content.size());
        chunk.data = content.data();
        static_cast<void>(::sf_get_chunk_data(at, &chunk));
        const std::string_view id(chunk.id, ::strnlen(chunk.id, sizeof chunk.id));
        if (isOfTheSound(id)) {
            continue;
        }
        if (id == audio::broadcastChunkID || id == audio::productionChunkID) {
            throw ConversionError("it says itself where its sound comes from");
        }
        bytes += content.size();
        if (bytes > mostOtherBytes) {
            throw ConversionError("it holds more beside its sound than is carried over");
        }
        setChunk(target, id, std::move(content), std::byte{0});
    }
}

}  // namespace trellant::wav
