// SPDX-License-Identifier: Apache-2.0
// An uncompressed AIFF, AIFC or WAVE file, open to be read. No other parser of the library behind
// it gets to see the file.
#pragma once

#include <cstdint>
#include <memory>
#include <sndfile.h>
#include <string>

namespace trellant::wav {

struct SoundCloser {
    void operator()(SNDFILE* sound) const noexcept { ::sf_close(sound); }
};
using Sound = std::unique_ptr<SNDFILE, SoundCloser>;

struct Source {
    SF_INFO info{};
    Sound sound;
};

/// There is one channel at least. Throws ConversionError.
[[nodiscard]] Source openSource(const std::string& path);

/// How a kind of sample is called in a WAVE file, and what it takes there.
struct SampleForm {
    int subtype;
    std::uint64_t bytes;
    bool isFloatingPoint = false;
};

/// Of a source's format. Throws ConversionError for compressed audio.
[[nodiscard]] SampleForm sampleForm(int format);

}  // namespace trellant::wav
