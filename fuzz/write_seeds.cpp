// SPDX-License-Identifier: Apache-2.0
// fuzz_seeds FOLDER: what each target begins with, as FOLDER/TARGET/NAME, and its words as
// FOLDER/TARGET.dict.
#include "seeds.h"
#include "targets.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::fuzzing {

namespace {

void writeSeeds(const std::filesystem::path& folder) {
    for (const Target& target : targets) {
        const auto place = folder / target.name;
        std::filesystem::create_directories(place);
        for (const Seed& seed : seedsOf(target.name)) {
            testing::writeFile((place / seed.name).string(), seed.bytes);
        }
        testing::writeFile(place.string() + ".dict", testing::bytesOf(dictionaryOf(target.name)));
    }
}

}  // namespace

}  // namespace trellant::fuzzing

int main(int count, char** arguments) {
    if (count != 2) {
        static_cast<void>(std::fputs("usage: fuzz_seeds FOLDER\n", stderr));
        return 1;
    }
    try {
        trellant::fuzzing::writeSeeds(arguments[1]);
    } catch (const std::exception& error) {
        static_cast<void>(std::fprintf(stderr, "fuzz_seeds: %s\n", error.what()));
        return 1;
    }
    return 0;
}
