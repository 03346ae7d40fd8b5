// The command line, read.
#pragma once

#include "console.h"
#include "exit_status.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace trellant::cli {

/// Which losses make a command end with ExitStatus::lossesFound.
enum class FailOn {
    nothing,
    /// An audio file was not found.
    missing,
    /// Something was kept that does not sound as meant.
    render,
    /// Any of both, or anything dropped.
    any
};

/// Where the data of a command goes.
struct Destination {
    /// A file, or "-" for standard output.
    std::string path = "-";
    /// An existing file may be replaced.
    bool force = false;
};

struct InfoOptions {
    std::vector<std::string> files;
    std::optional<std::string> mediaFolder;
    bool json = false;
    FailOn failOn = FailOn::nothing;
    Destination destination;
};

struct ListOptions {
    enum class What { tracks, clips, sources, losses };
    enum class Form { people, csv, json };
    What what = What::clips;
    std::string file;
    std::optional<std::string> mediaFolder;
    Form form = Form::people;
    FailOn failOn = FailOn::nothing;
    Destination destination;
};

struct ExtractCall {
    std::string file;
    std::string directory;
    std::vector<std::string> mediaFolders;
    bool wav = false;
    bool force = false;
    bool json = false;
    FailOn failOn = FailOn::nothing;
};

struct DumpCall {
    std::string file;
    bool toc = false;
    std::optional<std::uint32_t> object;
    std::optional<std::string> path;
    bool all = false;
};

struct ValidateOptions {
    /// "-" is standard input.
    std::vector<std::string> files;
    bool json = false;
};

using Call = std::variant<InfoOptions, ListOptions, ExtractCall, DumpCall, ValidateOptions>;

struct CommandLine {
    Verbosity verbosity = Verbosity::normal;
    /// What to do; absent when the text is all there is to say (help, version) or the line makes
    /// no sense.
    std::optional<Call> call;
    /// For standard output with status `done`, for standard error with `wrongUse`.
    std::string text;
    ExitStatus status = ExitStatus::done;
};

[[nodiscard]] CommandLine readCommandLine(int argc, const char* const* argv);

}  // namespace trellant::cli
