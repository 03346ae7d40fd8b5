// SPDX-License-Identifier: Apache-2.0
// The command line, read.
#pragma once

#include "catalogue/catalogue.h"
#include "check/check.h"
#include "dump/dump.h"
#include "export/export.h"
#include "extract/extract.h"
#include "look/fail_on.h"
#include "page/page.h"
#include "render/render.h"
#include "scan/scan.h"
#include "terminal/console.h"
#include "terminal/destination.h"
#include "terminal/exit_status.h"

#include <trellant/audio/waveform_data.h>

#include <cstdint>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace trellant::cli {

struct InfoOptions {
    std::vector<std::string> files;
    std::vector<std::string> mediaFolders;
    bool json = false;
    FailOn failOn = FailOn::nothing;
    Destination destination;
};

struct ListOptions {
    enum class What { tracks, clips, sources, losses };
    enum class Form { people, csv, json };
    What what = What::clips;
    std::vector<std::string> files;
    std::vector<std::string> mediaFolders;
    Form form = Form::people;
    FailOn failOn = FailOn::nothing;
    Destination destination;
};

struct PeaksOptions {
    /// Audio files.
    std::vector<std::string> files;
    std::uint32_t samplesPerPair = 256;
    audio::PeakBits bits = audio::PeakBits::sixteen;
    bool json = false;
    Destination destination;
    /// Absent: the installed one.
    std::optional<std::string> converter;
};

struct ValidateOptions {
    /// "-" is standard input.
    std::vector<std::string> files;
    bool json = false;
};

using Call =
    std::variant<InfoOptions, ListOptions, ExtractCall, ExportCall, RenderCall, CheckCall, PageCall,
                 PeaksOptions, ScanCall, CatalogueCall, DumpCall, ValidateOptions>;

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
