// SPDX-License-Identifier: Apache-2.0
#include "media_tree.h"

#include "output_file.h"
#include "shapes.h"
#include "wave_bytes.h"

#include <filesystem>

namespace trellant::bench {

namespace {

constexpr std::uint32_t filesInFolder = 100;
constexpr std::uint64_t fileSize = 44;

}  // namespace

void writeMediaTree(const std::string& folder, std::uint32_t files, std::uint32_t sources) {
    const std::string bytes = WaveBytes(fileSize, 0, 0).piece(0);
    std::uint32_t source = 0;
    std::string inner;
    for (std::uint32_t i = 0; i < files; ++i) {
        if (i % filesInFolder == 0) {
            inner = folder + "/Reel " + std::to_string(i / filesInFolder);
            std::filesystem::create_directories(inner);
        }
        const bool isSource =
            std::uint64_t{source} * files <= std::uint64_t{i} * sources && source < sources;
        OutputFile file(
            inner + "/" +
            (isSource ? externalName(source++) : "Unused " + std::to_string(i) + ".wav"));
        file.append(bytes);
        file.finish();
    }
}

}  // namespace trellant::bench
