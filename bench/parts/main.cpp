// SPDX-License-Identifier: Apache-2.0
// Measures the parts of a reading, each with the unit that it is held against.
//
//     bench_parts --omf=FILE [--tree=FOLDER] [options of the benchmark library]
#include "opened.h"

#include <benchmark/benchmark.h>
#include <cstdio>
#include <string_view>

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    trellant::bench::PartsFiles files;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (argument.starts_with("--omf=")) {
            files.omf = argument.substr(6);
        } else if (argument.starts_with("--tree=")) {
            files.tree = argument.substr(7);
        } else {
            files.omf.clear();
            break;
        }
    }
    if (files.omf.empty()) {
        static_cast<void>(std::fputs("usage: bench_parts --omf=FILE [--tree=FOLDER]\n", stderr));
        return 1;
    }
    trellant::bench::registerContainerParts(files);
    trellant::bench::registerMappingParts(files);
    trellant::bench::registerJsonParts(files);
    trellant::bench::registerSearchParts(files);
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
