// SPDX-License-Identifier: Apache-2.0
#include "formats.h"

namespace trellant::bag {

FileFormat formatOfOmf(const std::optional<std::string>& olderVersion) {
    return {.name = "Open Media Framework Interchange Format",
            .version = olderVersion.value_or("2.0"),
            .pronom = olderVersion ? "fmt/1854" : "fmt/1855"};
}

FileFormat formatOfAudio(const std::optional<AudioFacts>& facts) {
    if (!facts || !facts->format.codec) {
        return {.name = "unknown"};
    }
    // The words of AudioFormatInfo: what is none of these is the compression type of an AIFC.
    const std::string& codec = *facts->format.codec;
    if (codec == "AIFF") {
        return {.name = "Audio Interchange File Format", .pronom = "x-fmt/135"};
    }
    if (codec == "PCM" || codec == "IEEE Float" || codec.starts_with("WAVE format ")) {
        return {.name = "Waveform Audio", .pronom = "fmt/6"};
    }
    return {.name = "Audio Interchange File Format (compressed)", .pronom = "x-fmt/136"};
}

FileFormat formatOfTimeline() {
    return {.name = "JSON Data Interchange Format", .pronom = "fmt/817"};
}

}  // namespace trellant::bag
