// SPDX-License-Identifier: Apache-2.0
#include "example_run.h"

#include <trellant/protocol/messages.h>

#include <algorithm>
#include <trellant_testing/requests.h>

namespace trellant::testing {

namespace {

/// As the result writes it; the names of temporary folders need no encoding.
std::string jsonFileURL(const std::string& path) {
    std::string url = R"(file:\/\/)";
    for (const char character : path) {
        url.append(character == '/' ? R"(\/)" : std::string(1, character));
    }
    return url;
}

void replaceAll(std::string& text, const std::string& what, std::string_view by) {
    for (auto place = text.find(what); place != std::string::npos;
         place = text.find(what, place + by.size())) {
        text.replace(place, what.size(), by);
    }
}

}  // namespace

std::string examplesFolder() {
    return TRELLANT_EXAMPLES;
}

ExampleRun::ExampleRun(const examples::Example& example) {
    const std::filesystem::path committed = examplesFolder();
    const std::filesystem::path copies = directory_.path() / "examples";
    std::vector<std::string> names{example.name + ".omf"};
    for (const examples::NamedFile& file : example.beside) {
        names.push_back(file.name);
    }
    for (const std::string& name : names) {
        std::filesystem::create_directories((copies / name).parent_path());
        std::filesystem::copy_file(committed / name, copies / name);
    }
    const auto request = requestFor("extractAndInspect", (copies / names.front()).string(),
                                    directory_.file("work"), copies.string());
    run_ = runWorker({.input = request.json()});
}

std::string ExampleRun::portableOutput() const {
    std::string output = run_.output;
    replaceAll(output, jsonFileURL(directory_.file("examples")), R"(file:\/\/EXAMPLES)");
    replaceAll(output, jsonFileURL(directory_.file("work")), R"(file:\/\/WORK)");
    return output;
}

std::string ExampleRun::workFile(std::string_view name) const {
    return directory_.file(std::string("work/").append(name));
}

std::vector<std::string> ExampleRun::workFiles() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory_.path() / "work")) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

AAFTimeline ExampleRun::timeline() const {
    return decodeResult(run_.output).timeline;
}

std::vector<std::string> ExampleRun::diagnostics() const {
    return decodeResult(run_.output).diagnostics;
}

}  // namespace trellant::testing
