// SPDX-License-Identifier: Apache-2.0
#include "options/command_options.h"
#include "options/option_parts.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace trellant::cli {

namespace {

void addNames(CLI::App& command, FileNaming& naming) {
    addChoice<FileNaming>(command, "--names", naming,
                          "Name files after their master mob where their own name says nothing "
                          "(the usual way), or always after the source",
                          {{"master", FileNaming::masterMob}, {"source", FileNaming::source}});
}

void addRenderKinds(CLI::App& command, const std::shared_ptr<RenderCall>& call) {
    using render::RenderKind;
    auto* const tracks = command.add_flag_callback(
        "--tracks", [call] { call->kind = RenderKind::tracks; },
        "One file a track from the session's start, the usual");
    auto* const mix = command.add_flag_callback(
        "--mix", [call] { call->kind = RenderKind::mix; },
        "One stereo file of what is heard, with pan, mute and solo");
    command
        .add_flag_callback(
            "--clips", [call] { call->kind = RenderKind::clips; },
            "One file a clip, its time reference where it lies")
        ->excludes(tracks)
        ->excludes(mix);
    mix->excludes(tracks);
    command.add_flag("--raw", call->raw,
                     "Edits only, without gains and fades, in the bits of the media");
    constexpr double mostSeconds = 3'600;
    command
        .add_option("--handles", call->handles,
                    "Of clips so many seconds of their audio before and behind them")
        ->type_name("SECONDS")
        ->check(CLI::Range(0.0, mostSeconds).description(""));
}

/// --store and --bag; --to is needed unless there is a bag.
void addArchiving(CLI::App& command, const std::shared_ptr<ExtractCall>& call) {
    auto* const store = command.add_option(
        "--store", call->store, "Keep equal audio once in this folder, and link to it from --to");
    store->type_name("STORE")->excludes(command.get_option("--salvage"));
    command
        .add_flag("--references", call->references,
                  "No links: timeline.json names the audio in the store")
        ->needs(store);
    auto* const bag = command.add_option("--bag", call->directory,
                                         "Instead of --to: write a bag for an archive, with the "
                                         "OMF file and preservation metadata");
    bag->type_name("FOLDER");
    for (const char* const other : {"--to", "--store", "--force", "--absolute", "--salvage"}) {
        bag->excludes(command.get_option(other));
    }
    command
        .add_option("--organization", call->organization, "Who the bag is from, for bag-info.txt")
        ->type_name("TEXT")
        ->needs(bag);
    command
        .add_option("--identifier", call->identifier,
                    "What the bag is called elsewhere; else the name of the OMF file")
        ->type_name("TEXT")
        ->needs(bag);
    command.callback([call, &command, bag] {
        call->bag = bag->count() != 0;
        if (!call->bag && command.count("--to") == 0) {
            throw CLI::RequiredError("--to or --bag");
        }
    });
}

}  // namespace

CommandOptions addExtract(CLI::App& program) {
    const auto call = std::make_shared<ExtractCall>();
    CLI::App& command = addCommand(
        program, "extract", "Takes the audio out of OMF files and finds what lies beside them",
        "  trellant extract mix.omf --to mix-audio\n"
        "  trellant extract mix.omf --to mix-audio --wav\n"
        "  trellant extract mix.omf --to mix-audio --media /Volumes/A --media /Volumes/B\n"
        "  trellant extract broken.omf --to rescued --salvage\n"
        "  trellant extract *.omf --to sessions --store audio   equal audio once\n"
        "  trellant extract mix.omf --bag mix-bag               for an archive");
    command.add_option("FILE", call->files, "OMF files; of several each gets a folder of its own")
        ->required();
    command.add_option("--to", call->directory, "Write here; created when missing")
        ->type_name("FOLDER");
    addMedia(command, call->mediaFolders);
    command.add_flag("--wav", call->wav,
                     "Write AIFF audio as WAVE, sample by sample, with its timecode on tape");
    addNames(command, call->naming);
    command.add_flag("--force", call->force, "Replace existing files");
    command.add_flag("--absolute", call->absolutePaths,
                     "timeline.json names files by their whole paths");
    command.add_flag("--json", call->json, "Summary as one JSON object a line for each file");
    addFailOn(command, call->failOn);
    auto* const salvage = command.add_flag(
        "--salvage", call->salvage, "Take out what audio there is of files that cannot be read");
    for (const char* const other : {"--media", "--wav", "--names", "--absolute", "--fail-on"}) {
        salvage->excludes(command.get_option(other));
    }
    addArchiving(command, call);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addExport(CLI::App& program) {
    const auto call = std::make_shared<ExportCall>();
    CLI::App& command =
        addCommand(program, "export", "Writes sessions for today's tools, with their audio",
                   "  trellant export mix.omf --to mix --format aaf\n"
                   "  trellant export mix.omf --to mix --format reaper --media /Volumes/Audio\n"
                   "  trellant export reel1.omf reel2.omf --to reels --format otioz");
    command.add_option("FILE", call->files, "OMF files; each gets a session")->required();
    command.add_option("--to", call->directory, "Write here; created when missing")
        ->required()
        ->type_name("FOLDER");
    using exchange::ExportFormat;
    addChoice<ExportFormat>(command, "--format", call->format, "What kind of session",
                            {{"aaf", ExportFormat::aaf},
                             {"otio", ExportFormat::otio},
                             {"otioz", ExportFormat::otioz},
                             {"reaper", ExportFormat::reaper},
                             {"dawproject", ExportFormat::dawproject},
                             {"markers", ExportFormat::markers}})
        ->required();
    addMedia(command, call->mediaFolders);
    addChoice<std::optional<MediaMode>>(
        command, "--media-mode", call->mediaMode,
        "Audio in a folder beside the session (the usual way), where it lies, or inside "
        "(aaf, otioz, dawproject)",
        {{"copy", MediaMode::copy}, {"link", MediaMode::link}, {"embed", MediaMode::embed}});
    addNames(command, call->naming);
    constexpr std::int64_t highestRate = 384'000;
    command
        .add_option("--rate", call->rate,
                    "Samples in a second of the session; else the commonest of its audio")
        ->type_name("HZ")
        ->check(wholeNumber(1, highestRate));
    command.add_option("--name", call->name, "Name of the session; else the file's")
        ->type_name("NAME");
    command.add_flag_callback(
        "--no-markers", [call] { call->markers = false; }, "No markers where something was lost");
    command.add_flag("--force", call->force, "Replace existing files");
    command.add_flag("--json", call->json, "One JSON object a line for each file");
    addFailOn(command, call->failOn);
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addRender(CLI::App& program) {
    const auto call = std::make_shared<RenderCall>();
    CLI::App& command =
        addCommand(program, "render", "Renders tracks, the mix or clips as Broadcast WAVE files",
                   "  trellant render mix.omf --to mix-stems\n"
                   "  trellant render mix.omf --to mix-guide --mix\n"
                   "  trellant render mix.omf --to mix-clips --clips --raw --handles 2");
    command.add_option("FILE", call->files, "OMF files; of several each gets a folder of its own")
        ->required();
    command.add_option("--to", call->directory, "Write here; created when missing")
        ->required()
        ->type_name("FOLDER");
    addRenderKinds(command, call);
    addMedia(command, call->mediaFolders);
    command.add_option("--from", call->from, "Begin at this timecode; else at the session's start")
        ->type_name("TC");
    command
        .add_option("--until", call->until, "End before this timecode; else at the session's end")
        ->type_name("TC");
    addChoice<std::optional<audio::PcmFormat>>(
        command, "--format", call->format, "24 bits, the usual, or 32 bits in floating point",
        {{"wav24", audio::PcmFormat{24, false}}, {"wav32f", audio::PcmFormat{32, true}}});
    command.add_flag("--resample", call->resamples,
                     "Convert audio of other sample rates than the session's, which is "
                     "refused otherwise");
    command.add_flag("--force", call->force, "Replace existing files");
    command.add_flag("--json", call->json, "One JSON object a line for each file");
    addFailOn(command, call->failOn);
    return {&command, [call] { return Call(*call); }};
}

}  // namespace trellant::cli
