// SPDX-License-Identifier: Apache-2.0
#include "dumped.h"

#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

std::string without(std::string text, const std::string& part) {
    for (std::size_t place = text.find(part); place != std::string::npos; place = text.find(part)) {
        text.erase(place, part.size());
    }
    return text;
}

}  // namespace

Said dumped(ByteView file, cli::DumpOptions options, const Setting& setting) {
    const TemporaryDirectory folder;
    options.file = writeFile(folder.file("mix.omf"), file);
    Said result = saidWithStatus(setting, [&](cli::Console& console) {
        return static_cast<int>(runDump(options, console));
    });
    const std::string prefix = folder.path().string() + "/";
    result.out = without(result.out, prefix);
    result.errors = without(result.errors, prefix);
    return result;
}

void withContents(ByteView file, const std::function<void(const cli::DumpContents&)>& look) {
    const TemporaryDirectory folder;
    look(cli::DumpContents(writeFile(folder.file("mix.omf"), file)));
}

}  // namespace trellant::testing
