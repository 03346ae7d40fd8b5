// SPDX-License-Identifier: Apache-2.0
// trellant_examples DIRECTORY: writes the example compositions, and the media that lie beside them.
#include "examples.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <trellant_testing/temporary_directory.h>

namespace {

void writeAll(const std::filesystem::path& directory) {
    const auto write = [&](const std::string& name, trellant::ByteView bytes) {
        const auto path = directory / name;
        std::filesystem::create_directories(path.parent_path());
        trellant::testing::writeFile(path.string(), bytes);
    };
    for (const auto& example : trellant::examples::allExamples()) {
        write(example.name + ".omf", example.composition);
        for (const auto& file : example.beside) {
            write(file.name, file.bytes);
        }
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count != 2) {
        std::fputs("usage: trellant_examples DIRECTORY\n", stderr);
        return 1;
    }
    try {
        writeAll(arguments[1]);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "trellant_examples: %s\n", error.what());
        return 2;
    }
    return 0;
}
