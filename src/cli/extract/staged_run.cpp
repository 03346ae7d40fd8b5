// SPDX-License-Identifier: Apache-2.0
#include "staged_run.h"

#include "look/failure_text.h"
#include "look/inspect.h"
#include "staged_failure.h"

#include <trellant/base/printable_path.h>
#include <trellant/extraction/extraction.h>

#include <filesystem>
#include <system_error>

namespace trellant::cli {

namespace fs = std::filesystem;

std::optional<std::string> wrongFolders(const std::string& directory,
                                        const std::vector<std::string>& mediaFolders,
                                        const std::string& option) {
    std::error_code ignored;
    if (directory.empty()) {
        return option + " needs the name of a folder";
    }
    if (fs::exists(directory, ignored) && !fs::is_directory(directory, ignored)) {
        return printablePath(directory) + " is a file; name a folder with " + option +
               ", which is created when it is missing";
    }
    for (const std::string& folder : mediaFolders) {
        if (!fs::is_directory(folder, ignored)) {
            return "there is no folder " + printablePath(folder) + " to look for audio files in";
        }
    }
    return std::nullopt;
}

std::optional<std::string> waveConverterFor(const std::optional<std::string>& given,
                                            Console& console) {
    auto converter = given ? given : installedWaveConverter();
    if (!converter) {
        console.error(
            "the program trellant-wav, which writes WAVE files, is missing. It belongs to this "
            "one; please install Trellant again");
    }
    return converter;
}

std::optional<std::string> reportedStream(const std::string& file, Console& console) {
    auto failure = streamFailure(file);
    if (failure) {
        console.error(printablePath(file) + ": " + *failure);
    }
    return failure;
}

StagedFailure reportStagedFailure(const StagedFile& job, const std::exception& error,
                                  const std::function<bool(std::string_view path)>& isStaged,
                                  bool isRefusal, Console& console) {
    console.endBar();
    if (isRefusal) {
        console.error(printablePath(job.file) + ": " + error.what());
        return {error.what(), ExitStatus::wrongUse};
    }
    if (const auto reason = reasonNotWritten(error.what(), isStaged)) {
        const std::string failure =
            "cannot write to " + printablePath(job.directory) + ": " + *reason;
        console.error(printablePath(job.file) + ": " + failure);
        return {failure};
    }
    return {reportFailure(job.file, error, console)};
}

void reportStagedHandOff(const std::string& file, const HandOff& handOff,
                         const std::vector<std::string>& remarks, Console& console) {
    reportRemarks(file, handOff, console);
    reportChanges(file, handOff, console);
    for (const std::string& line : handOff.diagnostics) {
        console.detail(printablePath(file) + ": " + line);
    }
    for (const std::string& remark : remarks) {
        console.note(printablePath(file) + ": " + remark);
    }
}

}  // namespace trellant::cli
