// SPDX-License-Identifier: Apache-2.0
// The search for media in a folder against a bare walk over the same tree, and what it costs to
// look into the files that a search finds.
#include "media_search.h"
#include "opened.h"

#include <array>
#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <unistd.h>

namespace trellant::bench {

namespace {

struct CloseDirectory {
    void operator()(DIR* directory) const noexcept { ::closedir(directory); }
};

/// Files below `folder`, names read and nothing else; `found`, when given, takes those that the
/// shape "external" names.
std::int64_t filesBelow(const std::string& folder, std::vector<std::string>* found = nullptr) {
    const std::unique_ptr<DIR, CloseDirectory> entries(::opendir(folder.c_str()));
    std::int64_t count = 0;
    while (const dirent* entry = entries ? ::readdir(entries.get()) : nullptr) {
        const std::string_view name = entry->d_name;
        if (entry->d_type == DT_REG) {
            ++count;
            if (found != nullptr && name.starts_with("Take ")) {
                found->push_back(folder + "/" + std::string(name));
            }
        } else if (entry->d_type == DT_DIR && name != "." && name != "..") {
            count += filesBelow(folder + "/" + std::string(name), found);
        }
    }
    return count;
}

void walk(benchmark::State& state, const std::string& tree) {
    std::int64_t files = 0;
    for (auto _ : state) {
        files = filesBelow(tree);
    }
    state.SetItemsProcessed(files * static_cast<std::int64_t>(state.iterations()));
}

void search(benchmark::State& state, const std::string& tree) {
    for (auto _ : state) {
        MediaSearch search(tree, {});
        benchmark::DoNotOptimize(search.locate("take 0.wav"));
    }
    state.SetItemsProcessed(filesBelow(tree) * static_cast<std::int64_t>(state.iterations()));
}

/// Each file opened, its first bytes read, closed.
void openFound(benchmark::State& state, const std::string& tree) {
    std::vector<std::string> found;
    filesBelow(tree, &found);
    std::array<char, 4096> bytes{};
    for (auto _ : state) {
        for (const std::string& path : found) {
            const int file = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
            benchmark::DoNotOptimize(::read(file, bytes.data(), bytes.size()));
            ::close(file);
        }
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(found.size()) *
                            static_cast<std::int64_t>(state.iterations()));
}

}  // namespace

void registerSearchParts(const PartsFiles& files) {
    if (files.tree.empty()) {
        return;
    }
    const auto add = [&](const char* name, auto* measure) {
        benchmark::RegisterBenchmark(name, [&, measure](benchmark::State& state) {
            measure(state, files.tree);
        })->Unit(benchmark::kMicrosecond);
    };
    add("directory_search", search);
    add("unit_walk_tree", walk);
    add("unit_open_found", openFound);
}

}  // namespace trellant::bench
