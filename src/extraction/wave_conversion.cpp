// SPDX-License-Identifier: Apache-2.0

#include "spawned_program.h"

#include <trellant/base/executable_location.h>
#include <trellant/base/numbered_name.h>
#include <trellant/base/url.h>
#include <trellant/extraction/extraction.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/handoff/audio_facts.h>
#include <trellant/io/errors.h>

#include <array>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace trellant {

namespace fs = std::filesystem;

namespace {

constexpr std::string_view programName = "trellant-wav";
constexpr std::array<std::string_view, 2> programFolders{".", "../libexec/trellant"};

bool isRegularFile(const std::string& path) {
    std::error_code ignored;
    return fs::is_regular_file(fs::symlink_status(path, ignored));
}

std::string firstLine(const std::string& text) {
    return text.substr(0, text.find('\n'));
}

std::string reasonOf(const ProgramEnd& end) {
    if (end.status < 0) {
        return "the conversion was ended by signal " + std::to_string(-end.status);
    }
    const std::string said = firstLine(end.errors);
    return said.empty() ? "the conversion ended with status " + std::to_string(end.status) : said;
}

/// What the header of the new file says in place of the old one's.
void describe(AAFSourceEssence& essence, const std::string& path) {
    essence.fileURL = fileURL(path);
    const auto format = AudioProbe::probeFile(path).value_or(AudioFormatInfo{});
    essence.channelCount = format.channels.value_or(essence.channelCount);
    essence.bitDepth = format.bitDepth;
    essence.codec = format.codec;
}

/// The AIFC file of a source, when it has one that was taken out.
std::optional<std::string> stagedAIFC(const AAFSourceEssence& essence, const Staging& staging) {
    const auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
    return essence.embedded && path && path->ends_with(".aifc") && staging.holds(*path)
               ? path
               : std::nullopt;
}

}  // namespace

std::optional<std::string> installedWaveConverter() {
    const auto directory = executableDirectory();
    for (const std::string_view folder : programFolders) {
        std::error_code ignored;
        const auto path = fs::path(directory.value_or("")) / folder / programName;
        if (directory && fs::is_regular_file(path, ignored)) {
            return path.lexically_normal().native();
        }
    }
    return std::nullopt;
}

std::optional<std::string> runConverter(const std::vector<std::string>& commandLine,
                                        const std::string& destination,
                                        const std::function<void()>& whileWaiting) {
    try {
        const ProgramEnd end = runProgram(commandLine, whileWaiting);
        if (end.status == 0) {
            // A system that hides how its programs end gives 0 for all of them.
            return isRegularFile(destination)
                       ? std::nullopt
                       : std::optional<std::string>("the conversion wrote no file");
        }
        // One that was ended had no time to clean up, and one in want of memory no means.
        ::unlink(destination.c_str());
        return reasonOf(end);
    } catch (const FileSystemError& error) {
        return error.what();
    }
}

std::optional<std::string> convertToWave(const std::string& converter, const std::string& source,
                                         const std::string& destination, WorkProgress& progress,
                                         const std::optional<std::int64_t>& channel) {
    const std::uint64_t before = progress.bytes();
    std::vector<std::string> commandLine{converter, source, destination};
    if (channel) {
        commandLine.push_back(std::to_string(*channel + 1));
    }
    auto failure = runConverter(commandLine, destination,
                                [&] { progress.at(before + bytesOfFile(destination)); });
    progress.at(before + bytesOfFile(source));
    return failure;
}

WaveConversions convertAll(const std::string& converter, AAFTimeline& timeline,
                           const Staging& staging, WorkProgress& progress) {
    WaveConversions result;
    progress.begin("Writing WAVE files", staging.bytes());
    for (AAFSourceEssence& essence : timeline.essences) {
        const auto source = stagedAIFC(essence, staging);
        if (!source) {
            continue;
        }
        const NumberedName name = NumberedName::whole(staging.nameOf(*source));
        const std::string destination = staging.freeFile({name.stem, "wav"});
        if (auto failure = convertToWave(converter, *source, destination, progress)) {
            result.failures.emplace(essence.id, std::move(*failure));
        } else {
            ::unlink(source->c_str());
            describe(essence, destination);
            result.converted.insert(essence.id);
        }
    }
    return result;
}

}  // namespace trellant
