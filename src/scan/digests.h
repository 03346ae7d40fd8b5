// SPDX-License-Identifier: Apache-2.0
// SHA-256 of a file, and of the samples of audio in it, read a piece at a time.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/io/random_access_file.h>
#include <trellant/protocol/extensions.h>

#include <cstdint>
#include <optional>
#include <string>

namespace trellant::scan {

struct SampleDigest {
    std::string sha256{};
    /// Of all samples.
    std::uint64_t bytes = 0;
};

/// In lower-case hexadecimal. Throws AAFCancellationError, and what reading throws.
[[nodiscard]] std::string digestOf(const RandomAccessFile& file, const StopToken& stop);

/// Of the samples as a WAVE file has them: the least significant byte first, those of one byte
/// without a sign. Absent for pieces that leave the file and samples of a size that no audio has:
/// what a worker says of a stranger's file is not believed. Throws as digestOf does.
[[nodiscard]] std::optional<SampleDigest> digestOf(const RandomAccessFile& file,
                                                   const AAFWorkerExtensions::Samples& samples,
                                                   const StopToken& stop);

}  // namespace trellant::scan
