// SPDX-License-Identifier: Apache-2.0
// Writes pages into a folder, for the tests in a browser.
#include "hand_offs.h"

#include <trellant/audio/waveform_data.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <exception>
#include <fstream>
#include <stdexcept>
#include <vector>

namespace trellant::page {

namespace {

/// Markup, a turned direction of writing, controls and a NUL, then 10 KB.
std::string hostileName() {
    std::string name = "</script><img src=x onerror=\"window.harm=1\">'\"&amp;<!--";
    name += "\xE2\x80\xAEtxt.exe";
    name += '\0';
    name += "\x1B[31m]]>";
    return name;
}

void write(const std::string& folder, const std::string& name, const HandOff& handOff,
           const PageSound* sound = nullptr) {
    StringSink sink;
    writePage({.handOff = handOff,
               .file = name + ".omf",
               .sha256 = std::string(64, '0'),
               .searchedFolders = {"Audio disk"},
               .sound = sound},
              sink);
    std::ofstream file(folder + "/" + name + ".html", std::ios::binary);
    file << sink.text;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + name);
    }
}

/// A page with sound, and beside it the mix that playback has to come to, as 32-bit floats.
void writePlayback(const std::string& folder) {
    const HandOff handOff = handOffOfEverything();
    const Noise noise = noiseFor(handOff);
    write(folder, "playback", handOff, &noise.sound);
    const std::vector<float> mix = mixOf(handOff, noise);
    std::ofstream file(folder + "/playback.f32", std::ios::binary);
    for (const float sample : mix) {
        std::array<char, sizeof sample> bytes{};
        std::memcpy(bytes.data(), &sample, sizeof sample);
        file.write(bytes.data(), bytes.size());
    }
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write the mix");
    }
}

/// Outlines as fine as they get, of pairs that rise and fall.
PageSound outlinesOf(const HandOff& handOff) {
    constexpr std::uint32_t pairs = 8'192;
    constexpr std::uint32_t framesPerPair = 256;
    PageSound sound;
    Bytes outline;
    const auto header = audio::waveformHeader({.bits = audio::PeakBits::eight,
                                               .sampleRate = 48'000,
                                               .framesPerPair = framesPerPair,
                                               .pairs = pairs});
    outline.assign(header.begin(), header.end());
    for (std::uint32_t i = 0; i < pairs; ++i) {
        const std::uint32_t height = i * 37U % 120U;
        outline.push_back(static_cast<std::byte>(256U - height));
        outline.push_back(static_cast<std::byte>(height));
    }
    sound.waveforms.assign(handOff.timeline.essences.size(), outline);
    return sound;
}

}  // namespace

}  // namespace trellant::page

int main(int argc, char** argv) {
    using namespace trellant::page;
    if (argc != 2) {
        std::fputs("usage: write_page_samples FOLDER\n", stderr);
        return 1;
    }
    try {
        constexpr std::size_t usualReel = 2'000;
        constexpr std::size_t longReel = 100'000;
        write(argv[1], "everything", handOffOfEverything());
        writePlayback(argv[1]);
        write(argv[1], "empty", emptyHandOff());
        write(argv[1], "hostile", handOffNamed(hostileName()));
        write(argv[1], "endless", handOffNamed(std::string(10'000, 'W')));
        write(argv[1], "reel", reelOf(usualReel));
        const trellant::HandOff reel = reelOf(usualReel);
        const PageSound outlines = outlinesOf(reel);
        write(argv[1], "outlined", reel, &outlines);
        write(argv[1], "long", reelOf(longReel));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
