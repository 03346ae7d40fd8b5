// SPDX-License-Identifier: Apache-2.0
// What is made of an uncompressed AIFF, AIFC or WAVE file, each time as a new file:
//
//   trellant-wav IN OUT [CHANNEL]
//       its audio, or one channel of it (from 1), as plain WAVE
//   trellant-wav --origin IN OUT KEY=VALUE...
//       the same, with chunks that say where it comes from: the keys of originOf (origin.h)
//   trellant-wav --measure IN OUT PAIRS [BITS]
//       what is measured of it, its outline of no more than PAIRS pairs a channel; BITS: the depth
//       that its header names
//   trellant-wav --waveform IN OUT FRAMES BITS
//       its outline, a pair of 8 or 16 BITS for each so many FRAMES
//   trellant-wav --preview IN OUT RATE FIRST FRAMES [CHANNEL]
//       a small copy in Opus, of RATE bits in a second for each channel, from the frame FIRST on;
//       FRAMES of 0: up to the end
//   trellant-wav --resample IN OUT NUMERATOR DENOMINATOR RATE
//       its audio, which has NUMERATOR / DENOMINATOR samples in a second, as plain WAVE at RATE
//
// Exit status 0 done, 1 wrong use, 2 not done, with the reason on standard error.
//
// Several pieces of work with the word --then between them are done one after the other, all into
// one folder. The status is then 0, and each that was not done has a line on standard error, "3:
// reason".
#include "measuring.h"
#include "preview.h"
#include "resampling.h"
#include "wave_copy.h"

#include <trellant/base/host_watch.h>
#include <trellant/confine/confinement.h>
#include <trellant/confine/memory_allowance.h>

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace {

using Words = std::span<const std::string_view>;

constexpr std::uint64_t mostChannels = 65'536;
constexpr std::uint64_t mostBits = 64;
constexpr std::uint64_t highestRate = 384'000;
constexpr std::uint64_t mostFrames = std::numeric_limits<std::int64_t>::max();

/// What is to be done, once this process has confined itself.
struct Work {
    std::string source;
    std::string destination;
    std::function<void(const std::string& source, const std::string& destination)> run;
};

/// A whole number from `least` to `most`; absent for what is none.
std::optional<std::uint64_t> numberIn(std::string_view word, std::uint64_t least,
                                      std::uint64_t most) {
    std::uint64_t number = 0;
    const auto end = std::from_chars(word.data(), word.data() + word.size(), number);
    if (end.ec != std::errc() || end.ptr != word.data() + word.size() || number < least ||
        number > most) {
        return std::nullopt;
    }
    return number;
}

/// Whether the word at `index` may be left out and is, or is a number that is taken into `number`.
bool takeOptional(Words words, std::size_t index, std::uint64_t most,
                  std::optional<std::uint64_t>& number) {
    if (words.size() > index) {
        number = numberIn(words[index], 1, most);
        return number.has_value();
    }
    return true;
}

std::optional<int> channelOf(const std::optional<std::uint64_t>& number) {
    return number ? std::optional(static_cast<int>(*number) - 1) : std::nullopt;
}

std::optional<Work> copying(Words words) {
    std::optional<std::uint64_t> channel;
    if (words.size() < 2 || words.size() > 3 || !takeOptional(words, 2, mostChannels, channel)) {
        return std::nullopt;
    }
    return Work{std::string(words[0]), std::string(words[1]),
                [channel](const std::string& source, const std::string& destination) {
                    trellant::wav::copyAsWave(source, destination, channelOf(channel));
                }};
}

std::optional<Work> naming(Words words) {
    const auto origin = words.size() < 2 ? std::nullopt : trellant::wav::originOf(words.subspan(2));
    if (!origin) {
        return std::nullopt;
    }
    return Work{std::string(words[0]), std::string(words[1]),
                [origin](const std::string& source, const std::string& destination) {
                    trellant::wav::copyWithOrigin(source, destination, *origin);
                }};
}

std::optional<Work> measuring(Words words) {
    std::optional<std::uint64_t> bits;
    const auto pairs =
        words.size() < 3 ? std::nullopt : numberIn(words[2], 1, trellant::audio::mostPairs);
    if (!pairs || words.size() > 4 || !takeOptional(words, 3, mostBits, bits)) {
        return std::nullopt;
    }
    return Work{std::string(words[0]), std::string(words[1]),
                [pairs, bits](const std::string& source, const std::string& destination) {
                    trellant::wav::writeMeasures(
                        source, destination, *pairs,
                        bits ? std::optional(static_cast<std::uint32_t>(*bits)) : std::nullopt);
                }};
}

std::optional<Work> drawing(Words words) {
    using trellant::audio::PeakBits;
    const bool isEight = words.size() == 4 && words[3] == "8";
    const auto frames = words.size() != 4
                            ? std::nullopt
                            : numberIn(words[2], 1, std::numeric_limits<std::int32_t>::max());
    if (!frames || (!isEight && words[3] != "16")) {
        return std::nullopt;
    }
    return Work{std::string(words[0]), std::string(words[1]),
                [frames, isEight](const std::string& source, const std::string& destination) {
                    trellant::wav::writeWaveform(source, destination,
                                                 static_cast<std::uint32_t>(*frames),
                                                 isEight ? PeakBits::eight : PeakBits::sixteen);
                }};
}

std::optional<Work> previewing(Words words) {
    if (words.size() < 5 || words.size() > 6) {
        return std::nullopt;
    }
    std::optional<std::uint64_t> channel;
    const auto rate =
        numberIn(words[2], trellant::wav::lowestBitRate, trellant::wav::highestBitRate);
    const auto first = numberIn(words[3], 0, mostFrames);
    const auto frames = numberIn(words[4], 0, mostFrames);
    if (!rate || !first || !frames || !takeOptional(words, 5, mostChannels, channel)) {
        return std::nullopt;
    }
    const trellant::wav::PreviewPart part{.firstFrame = *first,
                                          .frames = *frames == 0 ? std::nullopt : frames,
                                          .channel = channelOf(channel)};
    return Work{std::string(words[0]), std::string(words[1]),
                [rate, part](const std::string& source, const std::string& destination) {
                    trellant::wav::writePreview(source, destination,
                                                static_cast<std::uint32_t>(*rate), part);
                }};
}

std::optional<Work> resampling(Words words) {
    if (words.size() != 5) {
        return std::nullopt;
    }
    const auto numerator = numberIn(words[2], 1, mostFrames);
    const auto denominator = numberIn(words[3], 1, mostFrames);
    const auto rate = numberIn(words[4], 1, highestRate);
    if (!numerator || !denominator || !rate) {
        return std::nullopt;
    }
    const trellant::wav::SampleRate from{*numerator, *denominator};
    return Work{std::string(words[0]), std::string(words[1]),
                [from, rate](const std::string& source, const std::string& destination) {
                    trellant::wav::resampleAsWave(source, destination, from,
                                                  static_cast<std::uint32_t>(*rate));
                }};
}

std::optional<Work> workOf(Words words) {
    if (words.empty() || !words.front().starts_with("--")) {
        return copying(words);
    }
    const std::string_view mode = words.front();
    const Words more = words.subspan(1);
    if (mode == "--origin") {
        return naming(more);
    }
    if (mode == "--measure") {
        return measuring(more);
    }
    if (mode == "--waveform") {
        return drawing(more);
    }
    if (mode == "--resample") {
        return resampling(more);
    }
    return mode == "--preview" ? previewing(more) : std::nullopt;
}

std::filesystem::path folderOf(const Work& work) {
    return std::filesystem::absolute(work.destination).parent_path();
}

/// The pieces between the words --then; none where one makes no sense.
std::vector<Work> worksOf(Words words) {
    std::vector<Work> works;
    for (std::size_t first = 0; first <= words.size();) {
        const auto end = std::find(words.begin() + static_cast<std::ptrdiff_t>(first), words.end(),
                                   std::string_view("--then"));
        const auto count = static_cast<std::size_t>(end - words.begin()) - first;
        auto work = workOf(words.subspan(first, count));
        if (!work || (!works.empty() && folderOf(*work) != folderOf(works.front()))) {
            return {};
        }
        works.push_back(std::move(*work));
        first += count + 1;
    }
    return works;
}

void confineTo(const std::vector<Work>& works) {
    std::vector<std::string> sources;
    for (const Work& work : works) {
        sources.push_back(work.source);
    }
    trellant::confine(trellant::sandboxFromEnvironment(),
                      {.writableDirectory = folderOf(works.front()).native(),
                       .awaitsStreams = true,
                       .readablePaths = std::move(sources)});
}

/// One that fails costs no other.
void runEach(const std::vector<Work>& works) {
    for (std::size_t i = 0; i < works.size(); ++i) {
        try {
            works[i].run(works[i].source, works[i].destination);
        } catch (const std::exception& error) {
            static_cast<void>(std::fprintf(stderr, "%zu: %s\n", i + 1, error.what()));
        }
    }
}

int done(const std::vector<Work>& works) {
    try {
        // The library that reads the samples knows many formats, and a stranger's file chooses
        // which of its parsers runs: it gets nothing to do harm with.
        trellant::keepWithinMemory();
        confineTo(works);
        if (works.size() > 1) {
            runEach(works);
        } else {
            works.front().run(works.front().source, works.front().destination);
        }
        return 0;
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "%s\n", error.what()));
        return 2;
    }
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const std::vector<std::string_view> words(arguments + std::min(1, argumentCount),
                                              arguments + argumentCount);
    const auto works = worksOf(words);
    if (works.empty()) {
        static_cast<void>(
            std::fputs("usage: trellant-wav IN OUT [CHANNEL]\n"
                       "       trellant-wav --origin IN OUT KEY=VALUE...\n"
                       "       trellant-wav --measure IN OUT PAIRS [BITS]\n"
                       "       trellant-wav --waveform IN OUT FRAMES BITS\n"
                       "       trellant-wav --preview IN OUT RATE FIRST FRAMES "
                       "[CHANNEL]\n"
                       "       trellant-wav --resample IN OUT NUMERATOR DENOMINATOR RATE\n"
                       "       several with --then between them, into one folder\n",
                       stderr));
        return 1;
    }
    trellant::watchHost(2);
    trellant::removeUnfinishedFileOnSignals();
    // At once: what libraries do at the end of a process takes calls that it has given up.
    ::_exit(done(works));
}
