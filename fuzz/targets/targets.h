// SPDX-License-Identifier: Apache-2.0
// The fuzz targets. Each takes one input of any bytes and either comes back or stops the process,
// because something that holds for every input did not. Errors of the documented types are answers.
//
// Nothing here knows the fuzzer: the same functions replay kept inputs in the ordinary tests.
#pragma once

#include <trellant/io/byte_readers.h>

#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace trellant::fuzzing {

/// The bytes are a container: it opens, or not, and all that it holds can be walked.
void runContainer(ByteView input);
/// The bytes are a container: each of its values is read as every type.
void runDocument(ByteView input);
/// One byte of options, then a container: it is mapped, written as JSON and read back.
void runMapping(ByteView input);
/// The bytes are an audio file, or the head of one.
void runAudioProbe(ByteView input);
/// The bytes are a damaged file with audio in it.
void runSalvage(ByteView input);
/// The bytes are the text of a request.
void runRequest(ByteView input);
/// The bytes are the text of a timeline.
void runTimeline(ByteView input);
/// One byte of options, then the name of a source: it is made the name of a file.
void runFileNames(ByteView input);

struct Target {
    std::string_view name;
    void (*run)(ByteView input);
    /// Bytes of the input before its container; absent when it has none.
    std::optional<std::size_t> containerOffset{};
};

inline constexpr std::array<Target, 8> targets{{{"container", runContainer, 0},
                                                {"document", runDocument, 0},
                                                {"mapping", runMapping, 1},
                                                {"audio_probe", runAudioProbe},
                                                {"salvage", runSalvage},
                                                {"request", runRequest},
                                                {"timeline", runTimeline},
                                                {"file_names", runFileNames}}};

/// The target of that name; stops the process when there is none.
[[nodiscard]] const Target& targetNamed(std::string_view name);

}  // namespace trellant::fuzzing
