// SPDX-License-Identifier: Apache-2.0
#include "wave_copy.h"

#include <trellant/base/host_watch.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <limits>
#include <memory>
#include <optional>
#include <sndfile.h>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace trellant::wav {

namespace {

/// What a RIFF size can say, less more than the chunks around the samples take.
constexpr std::uint64_t plainFormLimit = std::numeric_limits<std::uint32_t>::max() - 65'536ULL;
/// Samples of all channels that are moved at once.
constexpr sf_count_t blockSamples = 65'536;

struct SoundCloser {
    void operator()(SNDFILE* sound) const noexcept { ::sf_close(sound); }
};
using Sound = std::unique_ptr<SNDFILE, SoundCloser>;

constexpr std::string_view notWritten = "the WAVE file could not be written";

std::string systemText(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

/// In words, and behind them the text of whoever refused, which is not always for people.
ConversionError because(std::string_view words, std::string detail) {
    while (!detail.empty() && (detail.back() == '.' || detail.back() == '\n')) {
        detail.pop_back();
    }
    detail = detail.empty() ? std::string() : " (" + detail + ")";
    const std::string text = std::string(words).append(detail);
    return ConversionError{text};
}

/// How a kind of sample is called in a WAVE file, and what it takes there.
struct SampleForm {
    int subtype;
    std::uint64_t bytes;
    bool isFloatingPoint = false;
};

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

struct Source {
    SF_INFO info{};
    Sound sound;
};

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

Source openSource(const std::string& path) {
    if (!beginsAsKnown(path)) {
        throw ConversionError("it is no AIFF, AIFC or WAVE file");
    }
    Source source;
    source.sound.reset(::sf_open(path.c_str(), SFM_READ, &source.info));
    if (source.sound == nullptr) {
        throw because("it cannot be read as audio", ::sf_strerror(nullptr));
    }
    if (!isKnown(source.info.format)) {
        throw ConversionError("it is no AIFF, AIFC or WAVE file");
    }
    return source;
}

/// A new file that goes again unless it is kept.
class NewFile {
  public:
    explicit NewFile(const std::string& path) : path_(path) {
        const EndPutOff untilItIsKnown;
        descriptor_ =
            ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
        if (descriptor_ < 0) {
            throw because("no WAVE file could be created", systemText(errno));
        }
        unfinished_.emplace(path_.c_str());
    }
    ~NewFile() {
        if (!kept_) {
            ::unlink(path_.c_str());
        }
        ::close(descriptor_);
    }
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    NewFile(NewFile&&) = delete;
    NewFile& operator=(NewFile&&) = delete;

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }
    void keep() noexcept { kept_ = true; }

  private:
    const std::string& path_;
    int descriptor_ = -1;
    bool kept_ = false;
    std::optional<UnfinishedFile> unfinished_;
};

template <class Sample>
using Transfer = sf_count_t (*)(SNDFILE*, Sample*, sf_count_t);
template <class Sample>
using Delivery = sf_count_t (*)(SNDFILE*, const Sample*, sf_count_t);

/// Leaves of the interleaved `frames` in `block` the samples of one channel, at its front.
template <class Sample>
void keepChannel(std::vector<Sample>& block, sf_count_t frames, sf_count_t channels,
                 sf_count_t channel) {
    for (sf_count_t frame = 0; frame < frames; ++frame) {
        block[static_cast<std::size_t>(frame)] =
            block[static_cast<std::size_t>(frame * channels + channel)];
    }
}

template <class Sample>
void moveFrames(const Source& source, SNDFILE* target, const std::optional<int>& channel,
                Transfer<Sample> read, Delivery<Sample> write) {
    const sf_count_t channels = source.info.channels;
    const sf_count_t blockFrames = std::max<sf_count_t>(1, blockSamples / channels);
    std::vector<Sample> block(static_cast<std::size_t>(blockFrames * channels));
    sf_count_t moved = 0;
    while (moved < source.info.frames) {
        const sf_count_t wanted = std::min(blockFrames, source.info.frames - moved);
        if (read(source.sound.get(), block.data(), wanted) != wanted) {
            throw ConversionError("it ends before its last sample");
        }
        if (channel) {
            keepChannel(block, wanted, channels, *channel);
        }
        if (write(target, block.data(), wanted) != wanted) {
            throw because(notWritten, ::sf_strerror(target));
        }
        moved += wanted;
        endIfHostIsGone();
    }
}

}  // namespace

bool needsLargeForm(std::uint64_t sampleBytes) noexcept {
    return sampleBytes > plainFormLimit;
}

void copyAsWave(const std::string& source, const std::string& destination,
                const std::optional<int>& channel) {
    const Source input = openSource(source);
    const SampleForm form = sampleForm(input.info.format);
    if (channel && (*channel < 0 || *channel >= input.info.channels)) {
        throw ConversionError("it has no channel " + std::to_string(*channel + 1));
    }
    SF_INFO info{};
    info.samplerate = input.info.samplerate;
    info.channels = channel ? 1 : input.info.channels;
    const auto samples =
        static_cast<std::uint64_t>(input.info.frames) * static_cast<std::uint64_t>(info.channels);
    info.format =
        (needsLargeForm(samples * form.bytes) ? SF_FORMAT_RF64 : SF_FORMAT_WAV) | form.subtype;
    NewFile file(destination);
    Sound output(::sf_open_fd(file.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (output == nullptr) {
        throw because(notWritten, ::sf_strerror(nullptr));
    }
    // The chunk of peaks holds the time of day, and equal audio is to give equal files.
    ::sf_command(output.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE);
    if (form.subtype == SF_FORMAT_FLOAT) {
        moveFrames<float>(input, output.get(), channel, ::sf_readf_float, ::sf_writef_float);
    } else if (form.isFloatingPoint) {
        moveFrames<double>(input, output.get(), channel, ::sf_readf_double, ::sf_writef_double);
    } else {
        moveFrames<int>(input, output.get(), channel, ::sf_readf_int, ::sf_writef_int);
    }
    // Closing writes the sizes into the head.
    if (const int failure = ::sf_close(output.release()); failure != 0) {
        throw because(notWritten, ::sf_error_number(failure));
    }
    file.keep();
}

}  // namespace trellant::wav
