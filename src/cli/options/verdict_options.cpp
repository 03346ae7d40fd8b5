// SPDX-License-Identifier: Apache-2.0
#include "options/command_options.h"
#include "options/option_parts.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace trellant::cli {

CommandOptions addCheck(CLI::App& program) {
    const auto call = std::make_shared<CheckCall>();
    CLI::App& command =
        addCommand(program, "check", "Holds OMF files against published rules of delivery",
                   "  trellant check mix.omf\n"
                   "  trellant check deliveries --recursive --profile film\n"
                   "  trellant check mix.omf --profile house.json --sarif -o check.sarif\n"
                   "  trellant check --explain handles");
    command.add_option("FILE", call->files, "OMF files, or folders that hold some");
    command
        .add_option("--profile", call->profile,
                    "The rules: post (the default), film, broadcast-25, music, archive, or a "
                    "JSON file")
        ->type_name("PROFILE");
    addMedia(command, call->mediaFolders);
    command.add_flag("--recursive", call->recursive,
                     "Look for OMF files in folders within the folders too");
    command.add_flag("--audio", call->audio,
                     "Read all audio too, for sync pops, silence and clipping");
    addChoice<check::Severity>(command, "--fail-on", call->failOn,
                               "End with status 3 when something of this weight is found, or "
                               "of a higher one; else error",
                               {{"error", check::Severity::error},
                                {"warning", check::Severity::warning},
                                {"info", check::Severity::info}});
    auto* const json = command.add_flag_callback(
        "--json", [call] { call->form = CheckCall::Form::json; },
        "One JSON object a line for each file, or for each rule");
    auto* const junit = command.add_flag_callback(
        "--junit", [call] { call->form = CheckCall::Form::junit; },
        "Test results, as servers that build show them");
    command
        .add_flag_callback(
            "--sarif", [call] { call->form = CheckCall::Form::sarif; },
            "SARIF 2.1.0, as services that show findings read it")
        ->excludes(json)
        ->excludes(junit);
    junit->excludes(json);
    addDestination(command, call->destination);
    auto* const list = command.add_flag("--list-rules", call->listRules,
                                        "In place of a check: the rules, a line each");
    command
        .add_option("--explain", call->explain,
                    "In place of a check: what a rule is, why, and how it is put right")
        ->type_name("RULE")
        ->excludes(list);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addPage(CLI::App& program) {
    const auto call = std::make_shared<PageCall>();
    CLI::App& command = addCommand(program, "page", "Writes the timeline as a page for any browser",
                                   "  trellant page mix.omf -o mix.html\n"
                                   "  trellant page mix.omf -o mix.html --language de\n"
                                   "  trellant page reel1.omf reel2.omf -o pages");
    command
        .add_option("FILE", call->files, "OMF files; of several each gets a page, with an index")
        ->required();
    command
        .add_option("-o,--output", call->output,
                    "Write to this file; of several files to this folder, created when missing")
        ->required()
        ->type_name("PATH");
    addMedia(command, call->mediaFolders);
    addChoice<PageLanguage>(command, "--language", call->language,
                            "English or German; else as the system is set",
                            {{"en", PageLanguage::english}, {"de", PageLanguage::german}});
    constexpr std::uint64_t mostMegabytes = 2'000;
    command
        .add_option("--preview-size", call->previewMegabytes,
                    "Megabytes of sound in a page at most, 0 for none; 30 otherwise")
        ->type_name("MB")
        ->check(CLI::Range(std::uint64_t{0}, mostMegabytes).description(""));
    command
        .add_option("--profile", call->profile,
                    "The rules of trellant check that the page goes by; else post")
        ->type_name("PROFILE");
    command
        .add_option("--media-folder", call->extractedFolder,
                    "Link to the whole audio files that extract wrote into this folder")
        ->type_name("FOLDER");
    command.add_flag("--no-audio", call->noAudio,
                     "Do not listen to the audio: neither waveforms nor playback");
    command.add_flag("--force", call->force, "Replace existing files");
    addFailOn(command, call->failOn);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addPeaks(CLI::App& program) {
    const auto call = std::make_shared<PeaksOptions>();
    using audio::PeakBits;
    CLI::App& command =
        addCommand(program, "peaks", "Writes waveforms of audio files, for tools that draw them",
                   "  trellant peaks Voice.wav -o Voice.dat\n"
                   "  trellant peaks Voice.wav -o Voice.dat --samples-per-pair 1024 --bits 8\n"
                   "  trellant peaks --json *.wav");
    command.add_option("FILE", call->files, "WAVE, AIFF and AIFC files")->required();
    command
        .add_option("--samples-per-pair", call->samplesPerPair,
                    "Samples that a lowest and a highest value are of; 256 otherwise")
        ->type_name("N")
        ->check(CLI::Range(std::uint32_t{1}, std::uint32_t{2'147'483'647}).description(""));
    addChoice<PeakBits>(command, "--bits", call->bits, "Size of a value; 16 otherwise",
                        {{"8", PeakBits::eight}, {"16", PeakBits::sixteen}});
    command.add_flag("--json", call->json, "One JSON object a line for each file");
    addDestination(command, call->destination);
    return {&command, [call] { return Call(*call); }};
}

}  // namespace trellant::cli
