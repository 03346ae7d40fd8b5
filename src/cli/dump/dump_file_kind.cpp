// SPDX-License-Identifier: Apache-2.0
// Told from the first bytes, as people mistake files: audio, archives, other interchange formats,
// what systems leave beside a file, and containers that lost their end on the way.
#include "dump_file_kind.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>

#include <algorithm>
#include <array>
#include <string_view>

namespace trellant::cli {

namespace {

using namespace std::string_view_literals;

constexpr std::size_t headBytes = 4096;
/// At either end of a file; names of the object model lie somewhere there.
constexpr std::size_t searchedBytes = 1'048'576;

struct Signature {
    std::string_view bytes;
    std::size_t offset;
    std::string_view kind;
};

constexpr std::array signatures{
    Signature{"WAVE"sv, 8, "a WAVE audio file, not a session"sv},
    Signature{"AIFF"sv, 8, "an AIFF audio file, not a session"sv},
    Signature{"AIFC"sv, 8, "an AIFC audio file, not a session"sv},
    Signature{"PK\x03\x04"sv, 0, "a ZIP archive: unpack it first"sv},
    Signature{"\x1F\x8B"sv, 0, "a gzip archive: unpack it first"sv},
    Signature{"SIT!"sv, 0, "a StuffIt archive: unpack it first"sv},
    Signature{"StuffIt"sv, 0, "a StuffIt archive: unpack it first"sv},
    Signature{"\xD0\xCF\x11\xE0\xA1\xB1\x1A\xE1"sv, 0,
              "a compound file, as AAF files are: export the session as OMF"sv},
    Signature{"\x06\x0E\x2B\x34"sv, 0, "an MXF file: export the session as OMF"sv},
    Signature{"\x00\x05\x16\x07"sv, 0,
              "what a Mac leaves beside a file on other disks: the file itself has the same name "
              "without \"._\" in front"sv},
    Signature{"ftyp"sv, 4, "an MP4 or QuickTime film"sv},
    Signature{"moov"sv, 4, "a QuickTime film"sv},
    Signature{"fLaC"sv, 0, "a FLAC audio file, not a session"sv},
    Signature{"OggS"sv, 0, "an Ogg audio file, not a session"sv},
    Signature{"ID3"sv, 0, "an MP3 audio file, not a session"sv},
    Signature{"%PDF"sv, 0, "a PDF document"sv},
    Signature{"<?xml"sv, 0, "an XML document"sv},
};

std::string readText(const RandomAccessFile& file, std::uint64_t offset, std::size_t count) {
    std::string text(count, '\0');
    const auto got = file.readAvailable(offset, std::as_writable_bytes(std::span(text)));
    text.resize(got);
    return text;
}

bool isPlainText(std::string_view text) {
    const bool hasControls = std::any_of(text.begin(), text.end(), [](char byte) {
        const auto code = static_cast<unsigned char>(byte);
        return code == 0x7F || (code < 0x20 && code != '\t' && code != '\n' && code != '\r');
    });
    if (hasControls) {
        return false;
    }
    // Where the look ends, it may have cut a character of up to four bytes.
    const std::size_t cutBytes = text.size() == headBytes ? 3 : 0;
    for (std::size_t cut = 0; cut <= cutBytes; ++cut) {
        if (isValidUTF8(text.substr(0, text.size() - cut))) {
            return true;
        }
    }
    return false;
}

/// What a file has in it that a container of the object model has.
struct Marks {
    /// A name of the object model, which workstations write at the front in lower case too.
    bool name = false;
    /// An audio file that begins inside this one.
    bool audio = false;
};

bool holdsAudio(std::string_view text) {
    for (std::size_t at = text.find("FORM", 1); at != std::string_view::npos;
         at = text.find("FORM", at + 1)) {
        const std::string_view kind = text.substr(std::min(at + 8, text.size()), 4);
        if (kind == "AIFC" || kind == "AIFF") {
            return true;
        }
    }
    for (std::size_t at = text.find("RIFF", 1); at != std::string_view::npos;
         at = text.find("RIFF", at + 1)) {
        if (text.substr(std::min(at + 8, text.size()), 4) == "WAVE") {
            return true;
        }
    }
    return false;
}

Marks marksOf(const RandomAccessFile& file) {
    Marks marks;
    const auto look = [&](std::uint64_t offset) {
        const std::string text = readText(
            file, offset,
            static_cast<std::size_t>(std::min<std::uint64_t>(file.size() - offset, searchedBytes)));
        marks.name |=
            text.find("OMFI:") != std::string::npos || text.find("omfi:") != std::string::npos;
        marks.audio |= offset == 0 && holdsAudio(text);
    };
    look(0);
    if (file.size() > searchedBytes) {
        look(file.size() - searchedBytes);
    }
    return marks;
}

}  // namespace

std::optional<std::string> fileKind(const RandomAccessFile& file) {
    const std::string head = readText(
        file, 0, static_cast<std::size_t>(std::min<std::uint64_t>(file.size(), headBytes)));
    if (head.empty()) {
        return "an empty file";
    }
    for (const Signature& signature : signatures) {
        if (head.size() >= signature.offset &&
            head.compare(signature.offset, signature.bytes.size(), signature.bytes) == 0) {
            return std::string(signature.kind);
        }
    }
    if (const Marks marks = marksOf(file); marks.name || marks.audio) {
        return std::string(marks.name ? "" : "what may be ") + std::string(frontOfFile) + ": " +
               std::to_string(file.size()) + " bytes are there. Copy or export it again";
    }
    if (std::all_of(head.begin(), head.end(), [](char byte) { return byte == '\0'; })) {
        return "zero bytes, as an unfinished copy leaves them";
    }
    if (isPlainText(head)) {
        return "a text";
    }
    return std::nullopt;
}

}  // namespace trellant::cli
