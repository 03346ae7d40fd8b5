// SPDX-License-Identifier: Apache-2.0
#include "options/command_options.h"
#include "options/option_parts.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace trellant::cli {

CommandOptions addInfo(CLI::App& program) {
    const auto call = std::make_shared<InfoOptions>();
    CLI::App& command = addCommand(program, "info", "Shows what is in OMF files, one screen each",
                                   "  trellant info mix.omf\n"
                                   "  trellant info --media /Volumes/Audio reel1.omf reel2.omf\n"
                                   "  trellant info --json *.omf | jq .clips");
    command.add_option("FILE", call->files, "OMF files")->required();
    command.add_flag("--json", call->json, "One JSON object a line for each file");
    addMedia(command, call->mediaFolders);
    addFailOn(command, call->failOn);
    addDestination(command, call->destination);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addList(CLI::App& program) {
    const auto call = std::make_shared<ListOptions>();
    CLI::App& command =
        addCommand(program, "list", "Lists the tracks, clips, audio files or losses of OMF files",
                   "  trellant list clips mix.omf\n"
                   "  trellant list clips mix.omf --csv -o mix.csv\n"
                   "  trellant list sources reel1.omf reel2.omf      each file after the other\n"
                   "  trellant list losses mix.omf -v                with the technical texts\n"
                   "  trellant list losses mix.omf --json");
    addChoice<ListOptions::What>(command, "WHAT", call->what, "What to list",
                                 {{"tracks", ListOptions::What::tracks},
                                  {"clips", ListOptions::What::clips},
                                  {"sources", ListOptions::What::sources},
                                  {"losses", ListOptions::What::losses}})
        ->required();
    command.add_option("FILE", call->files, "OMF files")->required();
    auto* const csvFlag = command.add_flag_callback(
        "--csv", [call] { call->form = ListOptions::Form::csv; }, "Comma-separated, for sheets");
    command
        .add_flag_callback(
            "--json", [call] { call->form = ListOptions::Form::json; }, "One JSON object a line")
        ->excludes(csvFlag);
    addMedia(command, call->mediaFolders);
    addFailOn(command, call->failOn);
    addDestination(command, call->destination);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addDump(CLI::App& program) {
    const auto call = std::make_shared<DumpCall>();
    CLI::App& command =
        addCommand(program, "dump", "Shows the container behind an OMF file, for engineers",
                   "  trellant dump mix.omf\n"
                   "  trellant dump mix.omf --object 12\n"
                   "  trellant dump mix.omf --path 'CMOB[12]/slot[34]/SEQU[56]'");
    command.add_option("FILE", call->files, "Any files")->required();
    auto* const toc = command.add_flag("--toc", call->each.toc, "Every entry of the table");
    auto* const object =
        command.add_option("--object", call->each.object, "One object with its properties")
            ->type_name("N")
            ->excludes(toc);
    command.add_option("--path", call->each.path, "The place that a loss names, step by step")
        ->type_name("PATH")
        ->excludes(toc)
        ->excludes(object);
    command.add_flag("--all", call->each.all, "Without bounds on what is shown");
    command.add_flag("--json", call->each.json, "One JSON object a line");
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addValidate(CLI::App& program) {
    const auto call = std::make_shared<ValidateOptions>();
    CLI::App& command =
        addCommand(program, "validate", "Checks timelines and results that were written as JSON",
                   "  trellant validate result.json\n"
                   "  trellant-omf < request.json | trellant validate -");
    command.add_option("RESULT", call->files, "JSON files; - is standard input")->required();
    command.add_flag("--json", call->json, "One JSON object a line");
    return {&command, [call] { return Call(*call); }};
}

}  // namespace trellant::cli
