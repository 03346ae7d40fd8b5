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
#include <charconv>
#include <cstdio>
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

/// Runs the converter, and shows how far it is by the bytes of both files.
std::optional<std::string> followed(const std::vector<std::string>& commandLine,
                                    const std::string& source, const std::string& destination,
                                    WorkProgress& progress) {
    const std::uint64_t before = progress.bytes();
    auto failure = runConverter(commandLine, destination,
                                [&] { progress.at(before + bytesOfFile(destination)); });
    progress.at(before + bytesOfFile(source));
    return failure;
}

/// How a task ended that was one of several.
struct TaskEnd {
    bool isKnown = false;
    std::optional<std::string> failure{};
};

/// By the lines "3: reason" that the process wrote. One that it began last and did not end tells
/// nothing.
std::vector<TaskEnd> endsSaid(const std::string& errors, std::size_t count) {
    std::vector<TaskEnd> ends(count);
    for (std::size_t at = 0, end = 0; (end = errors.find('\n', at)) != std::string::npos;
         at = end + 1) {
        std::size_t number = 0;
        const char* const last = errors.data() + end;
        const auto read = std::from_chars(errors.data() + at, last, number);
        constexpr std::string_view separator = ": ";
        const std::string_view rest(read.ptr, static_cast<std::size_t>(last - read.ptr));
        if (read.ec == std::errc() && number >= 1 && number <= count &&
            rest.starts_with(separator)) {
            ends[number - 1] = {true, std::string(rest.substr(separator.size()))};
        }
    }
    return ends;
}

std::vector<TaskEnd> endsOfAll(const std::string& converter, std::span<const ConverterTask> tasks,
                               const std::function<void()>& whileWaiting) {
    std::vector<std::string> commandLine{converter};
    for (const ConverterTask& task : tasks) {
        if (commandLine.size() > 1) {
            commandLine.emplace_back("--then");
        }
        commandLine.insert(commandLine.end(), task.arguments.begin(), task.arguments.end());
    }
    try {
        const ProgramEnd end = runProgram(commandLine, whileWaiting);
        if (end.status != 0) {
            return std::vector<TaskEnd>(tasks.size());
        }
        std::vector<TaskEnd> ends = endsSaid(end.errors, tasks.size());
        for (std::size_t i = 0; i < tasks.size(); ++i) {
            ends[i].isKnown = ends[i].isKnown || isRegularFile(tasks[i].destination);
        }
        return ends;
    } catch (const FileSystemError&) {
        return std::vector<TaskEnd>(tasks.size());
    }
}

/// The file of a source, when it has one that was taken out.
std::optional<std::string> stagedFile(const AAFSourceEssence& essence, const Staging& staging) {
    const auto path = essence.fileURL ? pathOfFileURL(essence.fileURL->text) : std::nullopt;
    return essence.embedded && path && staging.holds(*path) ? path : std::nullopt;
}

/// The files of one hand-off, one after the other.
class Conversions {
  public:
    Conversions(const std::string& converter, const Staging& staging, WorkProgress& progress,
                const ToldOrigins& origins)
        : converter_(converter), staging_(staging), progress_(progress), origins_(origins) {}

    void convert(AAFSourceEssence& essence) {
        const auto source = stagedFile(essence, staging_);
        if (!source) {
            return;
        }
        const auto origin = origins_.find(essence.id);
        const auto* const words = origin == origins_.end() ? nullptr : &origin->second;
        if (source->ends_with(".aifc")) {
            intoWave(essence, *source, words);
        } else if (words != nullptr && source->ends_with(".wav") && told_.insert(*source).second) {
            tell(essence, *source, *words);
        }
    }
    [[nodiscard]] WaveConversions take() { return std::move(result_); }

  private:
    [[nodiscard]] std::string newPathFor(const std::string& source) const {
        const NumberedName name = NumberedName::whole(staging_.nameOf(source));
        return staging_.freeFile({name.stem, "wav"});
    }

    void intoWave(AAFSourceEssence& essence, const std::string& source,
                  const std::vector<std::string>* words) {
        const std::string destination = newPathFor(source);
        auto failure = words == nullptr ? convertToWave(converter_, source, destination, progress_)
                                        : followed(withOrigin(source, destination, *words), source,
                                                   destination, progress_);
        if (failure) {
            result_.failures.emplace(essence.id, std::move(*failure));
            return;
        }
        ::unlink(source.c_str());
        describe(essence, destination);
        result_.converted.insert(essence.id);
    }

    /// A WAVE file that cannot be told stays as it is.
    void tell(AAFSourceEssence& essence, const std::string& source,
              const std::vector<std::string>& words) {
        const std::string destination = newPathFor(source);
        const auto failure =
            followed(withOrigin(source, destination, words), source, destination, progress_);
        if (failure) {
            progress_.say(WorkProgress::Remark::note,
                          staging_.nameOf(source) +
                              " stays as it is, without the timecode of its tape: " + *failure);
        } else if (::rename(destination.c_str(), source.c_str()) == 0) {
            result_.converted.insert(essence.id);
        }
    }

    [[nodiscard]] std::vector<std::string> withOrigin(const std::string& source,
                                                      const std::string& destination,
                                                      const std::vector<std::string>& words) const {
        std::vector<std::string> commandLine{converter_, "--origin", source, destination};
        commandLine.insert(commandLine.end(), words.begin(), words.end());
        return commandLine;
    }

    const std::string& converter_;
    const Staging& staging_;
    WorkProgress& progress_;
    const ToldOrigins& origins_;
    KeyedSet<std::string> told_;
    WaveConversions result_;
};

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

std::vector<std::optional<std::string>> runConverterForEach(
    const std::string& converter, std::span<const ConverterTask> tasks,
    const std::function<void()>& whileWaiting) {
    const std::vector<TaskEnd> ends = tasks.size() > 1 ? endsOfAll(converter, tasks, whileWaiting)
                                                       : std::vector<TaskEnd>(tasks.size());
    std::vector<std::optional<std::string>> failures;
    for (std::size_t i = 0; i < tasks.size(); ++i) {
        const TaskEnd& end = ends[i];
        if (end.isKnown) {
            failures.push_back(end.failure);
            continue;
        }
        ::unlink(tasks[i].destination.c_str());
        std::vector<std::string> commandLine{converter};
        commandLine.insert(commandLine.end(), tasks[i].arguments.begin(), tasks[i].arguments.end());
        failures.push_back(runConverter(commandLine, tasks[i].destination, whileWaiting));
    }
    return failures;
}

std::optional<std::string> convertToWave(const std::string& converter, const std::string& source,
                                         const std::string& destination, WorkProgress& progress,
                                         const std::optional<std::int64_t>& channel) {
    std::vector<std::string> commandLine{converter, source, destination};
    if (channel) {
        commandLine.push_back(std::to_string(*channel + 1));
    }
    return followed(commandLine, source, destination, progress);
}

WaveConversions convertAll(const std::string& converter, AAFTimeline& timeline,
                           const Staging& staging, WorkProgress& progress,
                           const ToldOrigins& origins) {
    progress.begin("Writing WAVE files", staging.bytes());
    Conversions conversions(converter, staging, progress, origins);
    for (AAFSourceEssence& essence : timeline.essences) {
        conversions.convert(essence);
    }
    return conversions.take();
}

}  // namespace trellant
