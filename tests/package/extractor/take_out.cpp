// SPDX-License-Identifier: Apache-2.0
// take_out WORKER FILE FOLDER: takes the audio of a file out into an existing folder and names what
// came.
#include <trellant/extraction/extraction.h>

#include <exception>
#include <filesystem>
#include <iostream>

int main(int count, char** arguments) {
    if (count != 4) {
        return 2;
    }
    try {
        const std::filesystem::path worker = arguments[1];
        trellant::WorkProgress progress;
        trellant::Extraction extraction(
            {.file = arguments[2],
             .directory = arguments[3],
             .directoryPath = arguments[3],
             .helperURLProvider = [worker](const std::string&) { return worker; }},
            progress);
        const trellant::ExtractionReport report = extraction.run();
        for (const trellant::AudioEntry& entry : report.audio) {
            std::cout << (entry.placed ? entry.placed->name : "(no file)") << ": "
                      << trellant::stateWord(entry.state) << '\n';
        }
        std::cout << report.manifest.name << '\n';
    } catch (const std::exception& error) {
        std::cerr << error.what() << '\n';
        return 1;
    }
}
