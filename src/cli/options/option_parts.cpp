// SPDX-License-Identifier: Apache-2.0
#include "options/option_parts.h"

#include <charconv>
#include <system_error>

namespace trellant::cli {

CLI::App& addCommand(CLI::App& program, const std::string& name, const std::string& description,
                     const std::string& examples) {
    CLI::App* const added = program.add_subcommand(name, description);
    added->footer(examples);
    return *added;
}

CLI::Validator wholeNumber(std::int64_t least, std::int64_t most) {
    return CLI::Validator(
        [least, most](const std::string& text) {
            std::int64_t number = 0;
            const auto [end, failure] =
                std::from_chars(text.data(), text.data() + text.size(), number);
            const bool isWhole = failure == std::errc() && end == text.data() + text.size();
            return isWhole && number >= least && number <= most
                       ? std::string()
                       : "is a whole number from " + std::to_string(least) + " to " +
                             std::to_string(most) + ", not \"" + printableText(text) + "\"";
        },
        "");
}

void addFailOn(CLI::App& command, FailOn& failOn) {
    addChoice<FailOn>(
        command, "--fail-on", failOn,
        "End with status 3 when an audio file is missing, when something does not sound as meant "
        "(render), or for any loss",
        {{"missing", FailOn::missing}, {"render", FailOn::render}, {"any", FailOn::any}});
}

void addMedia(CLI::App& command, std::vector<std::string>& folders) {
    command
        .add_option("--media", folders,
                    "Look for external audio files in this folder and below; may be given several "
                    "times")
        ->type_name("FOLDER")
        ->expected(1)
        ->take_all();
}

void addDestination(CLI::App& command, Destination& destination) {
    command
        .add_option("-o,--output", destination.path,
                    "Write to this file; - is standard output, the default")
        ->type_name("FILE");
    command.add_flag("--force", destination.force, "Replace an existing file");
}

}  // namespace trellant::cli
