// SPDX-License-Identifier: Apache-2.0
// Writes pages into a folder, for the tests in a browser.
#include "hand_offs.h"

#include <cstdio>
#include <exception>
#include <fstream>

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

void write(const std::string& folder, const std::string& name, const HandOff& handOff) {
    StringSink sink;
    writePage({.handOff = handOff,
               .file = name + ".omf",
               .sha256 = std::string(64, '0'),
               .searchedFolders = {"Audio disk"}},
              sink);
    std::ofstream file(folder + "/" + name + ".html", std::ios::binary);
    file << sink.text;
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + name);
    }
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
        write(argv[1], "empty", emptyHandOff());
        write(argv[1], "hostile", handOffNamed(hostileName()));
        write(argv[1], "endless", handOffNamed(std::string(10'000, 'W')));
        write(argv[1], "reel", reelOf(usualReel));
        write(argv[1], "long", reelOf(longReel));
        return 0;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "%s\n", error.what());
        return 1;
    }
}
