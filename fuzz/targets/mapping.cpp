// SPDX-License-Identifier: Apache-2.0
// The first byte of the input says how its container is mapped.
#include "expansion.h"
#include "memory_file.h"
#include "require.h"
#include "round_trip.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/io/errors.h>
#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline_json.h>
#include <trellant/omf1/open.h>
#include <trellant/protocol/messages.h>

#include <algorithm>
#include <filesystem>
#include <trellant_testing/temporary_directory.h>
#include <trellant_testing/wave_builder.h>

namespace trellant::fuzzing {

namespace {

constexpr auto extracts = std::byte{1};
constexpr auto searches = std::byte{2};
constexpr auto placesLosses = std::byte{4};

/// What is mapped at all, and what is written and read back as well: more takes long and tells what
/// less does.
constexpr std::size_t mostSegments = 20'000;
constexpr std::size_t mostRecords = 2'000;

/// A folder to extract to beside one with media to be found.
class Scratch {
  public:
    Scratch() {
        const testing::WaveSpec tone{.samples = Bytes(96)};
        std::filesystem::create_directory(work());
        std::filesystem::create_directories(media() / "more");
        for (const auto* const name : {"Snare.wav", "Tone.wav", "more/Tone.wav", "more/Tom.aif"}) {
            testing::writeFile((media() / name).string(), testing::waveImage(tone));
        }
    }

    [[nodiscard]] std::filesystem::path work() const { return folder_.path() / "work"; }
    [[nodiscard]] std::filesystem::path media() const { return folder_.path() / "media"; }

    /// Checks what an extraction left, and removes it.
    void clear() const {
        const auto entries = [](const std::filesystem::path& folder) {
            return std::distance(std::filesystem::directory_iterator(folder),
                                 std::filesystem::directory_iterator());
        };
        require(entries(folder_.path()) == 2 && entries(media()) == 3,
                "nothing is written beside the work directory");
        for (const auto& entry : std::filesystem::directory_iterator(work())) {
            require(entry.is_regular_file() && !entry.is_symlink(), "only files are written");
            std::filesystem::remove(entry.path());
        }
    }

  private:
    testing::TemporaryDirectory folder_;
};

MappingPlaces placesFor(std::byte options, const Scratch& scratch) {
    MappingPlaces places{.sourcePath = "/projects/song.omf",
                         .workDirectory = scratch.work().string()};
    places.extract = (options & extracts) != std::byte{0};
    places.placesLosses = (options & placesLosses) != std::byte{0};
    if ((options & searches) != std::byte{0}) {
        places.mediaSearchDirectory = scratch.media().string();
    }
    return places;
}

/// The result as the worker writes it, read as a host reads it.
void requireResultRoundTrip(const AAFTimeline& timeline, const Mapper& mapper) {
    const AAFWorkerProtocol::Result result{.timeline = timeline,
                                           .diagnostics = mapper.diagnostics(),
                                           .embeddedMediaSHA256 = std::nullopt};
    StringSink sink;
    encodeResult(result, sink);
    require(isValidUTF8(sink.text), "a result is UTF-8");
    require(decodeResult(sink.text, TimelineChecks::none) == result,
            "a result that was written is read as it was");
}

void map(const OMFDocument& document, const MappingPlaces& places) {
    if (expandsBeyond(document, mostSegments)) {
        return;
    }
    double last = 0;
    Mapper mapper(document, places);
    const auto timeline = mapper.makeTimeline([&](double fraction) {
        require(fraction >= last && fraction < 1, "progress goes on, never to the end");
        last = fraction;
    });
    require(mapper.lossPlaces().size() ==
                (places.placesLosses ? timeline.unsupportedFeatures.size() : 0),
            "each loss has a place");
    if (timeline.events.size() + timeline.unsupportedFeatures.size() <= mostRecords) {
        requireResultRoundTrip(timeline, mapper);
        requireRoundTrip(timeline);
        requireUsable(timeline);
    }
}

}  // namespace

void runMapping(ByteView input) {
    if (input.empty()) {
        return;
    }
    static const Scratch scratch;
    const MappingPlaces places = placesFor(input.front(), scratch);
    const MemoryFile file(input.subspan(1));
    try {
        map(openAnyOMF(file.path()), places);
    } catch (const OMFIOError& error) {
        require(isValidUTF8(error.errorDescription()), "errors are texts");
    }
    if (places.extract) {
        scratch.clear();
    }
}

}  // namespace trellant::fuzzing
