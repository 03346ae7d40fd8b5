// SPDX-License-Identifier: Apache-2.0
// Reads each named file within this process; says so of one that is no such file.
#include <trellant/io/errors.h>
#include <trellant/mapper/mapper.h>
#include <trellant/omf/document.h>
#include <trellant/version.h>

#include <iostream>

static_assert(trellant::versionText == PACKAGE_VERSION);

namespace {

void print(const trellant::AAFTimeline& timeline) {
    std::cout << timeline.compositionName.value_or("(no name)") << ", "
              << timeline.compositionLength.value_or(trellant::AAFRational()).description()
              << " s\n";
    for (const auto& event : timeline.events) {
        std::cout << "  " << event.clipName.value_or("(no name)") << ": from "
                  << event.timelineStart.description() << " s to "
                  << event.timelineEnd().description() << " s\n";
    }
}

void read(const char* path) {
    try {
        const trellant::OMFDocument document(path);
        trellant::Mapper mapper(document, {.sourcePath = path, .workDirectory = "/nowhere"});
        print(mapper.makeTimeline([](double) {}));
    } catch (const trellant::OMFIOError& error) {
        std::cout << error.errorDescription() << '\n';
    }
}

}  // namespace

int main(int count, char** arguments) {
    for (int index = 1; index < count; ++index) {
        read(arguments[index]);
    }
}
