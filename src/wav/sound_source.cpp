// SPDX-License-Identifier: Apache-2.0
#include "sound_source.h"

#include "conversion_error.h"

#include <trellant/base/system_error_text.h>

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <string_view>

namespace trellant::wav {

namespace {

/// Whether the file begins as AIFF, AIFC and WAVE do: no other parser of the library gets to see
/// it.
bool beginsAsKnown(const std::string& path) {
    std::array<char, 12> head{};
    std::ifstream file(path, std::ios::binary);
    file.read(head.data(), head.size());
    const std::string_view text(head.data(), static_cast<std::size_t>(file.gcount()));
    if (text.size() != head.size()) {
        return false;
    }
    const bool isAiff =
        text.starts_with("FORM") && (text.ends_with("AIFF") || text.ends_with("AIFC"));
    return isAiff ||
           ((text.starts_with("RIFF") || text.starts_with("RF64")) && text.ends_with("WAVE"));
}

bool isKnown(int format) {
    const int type = format & SF_FORMAT_TYPEMASK;
    return type == SF_FORMAT_AIFF || type == SF_FORMAT_WAV || type == SF_FORMAT_WAVEX ||
           type == SF_FORMAT_RF64;
}

}  // namespace

SampleForm sampleForm(int format) {
    switch (format & SF_FORMAT_SUBMASK) {
        case SF_FORMAT_PCM_S8:
        case SF_FORMAT_PCM_U8:
            return {SF_FORMAT_PCM_U8, 1};
        case SF_FORMAT_PCM_16:
            return {SF_FORMAT_PCM_16, 2};
        case SF_FORMAT_PCM_24:
            return {SF_FORMAT_PCM_24, 3};
        case SF_FORMAT_PCM_32:
            return {SF_FORMAT_PCM_32, 4};
        case SF_FORMAT_FLOAT:
            return {SF_FORMAT_FLOAT, 4, true};
        case SF_FORMAT_DOUBLE:
            return {SF_FORMAT_DOUBLE, 8, true};
        default:
            throw ConversionError("its audio is compressed");
    }
}

Source openSource(const std::string& path) {
    if (!beginsAsKnown(path)) {
        throw ConversionError("it is no AIFF, AIFC or WAVE file");
    }
    // By its descriptor: the library takes no path of more than 1,000 bytes.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0) {
        throw because("it cannot be read as audio", systemErrorText(errno));
    }
    Source source;
    source.sound.reset(::sf_open_fd(descriptor, SFM_READ, &source.info, SF_TRUE));
    if (source.sound == nullptr) {
        throw because("it cannot be read as audio", ::sf_strerror(nullptr));
    }
    if (!isKnown(source.info.format)) {
        throw ConversionError("it is no AIFF, AIFC or WAVE file");
    }
    if (source.info.channels < 1 || source.info.frames < 0) {
        throw ConversionError("its header makes no sense");
    }
    return source;
}

}  // namespace trellant::wav
