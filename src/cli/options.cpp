// SPDX-License-Identifier: Apache-2.0
#include "options.h"

#include <trellant/base/nearest_word.h>
#include <trellant/base/printable_text.h>
#include <trellant/version.h>

#include <CLI/CLI.hpp>
#include <charconv>
#include <initializer_list>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <utility>

namespace trellant::cli {

namespace {

/// Examples first: most readers look for the line that does what they need.
class HelpPage final : public CLI::Formatter {
  public:
    std::string make_help(const CLI::App* app, std::string name,
                          CLI::AppFormatMode mode) const override {
        if (mode == CLI::AppFormatMode::Sub) {
            return CLI::Formatter::make_help(app, name, mode);
        }
        std::string page = app->get_description() + "\n\n";
        if (!app->get_footer().empty()) {
            page += "Examples:\n" + app->get_footer() + "\n\n";
        }
        const CLI::App* const parent = app->get_parent();
        page += make_usage(app, parent == nullptr ? name : parent->get_name() + " " + name);
        page += make_positionals(app);
        page += make_groups(app, mode);
        page += make_subcommands(app, mode);
        return page;
    }
};

/// An option that takes one of a few words; the library's own texts for that show its numbers.
template <class Choice>
CLI::Option* addChoice(CLI::App& command, const std::string& name, Choice& chosen,
                       const std::string& description,
                       std::initializer_list<std::pair<std::string, Choice>> words) {
    std::string list;
    for (const auto& [word, choice] : words) {
        list += (list.empty() ? "" : "|") + word;
    }
    return command
        .add_option_function<std::string>(
            name,
            [name, list, &chosen,
             choices = std::map<std::string, Choice>(words.begin(), words.end())](
                const std::string& word) {
                const auto found = choices.find(word);
                if (found == choices.end()) {
                    throw CLI::ValidationError(
                        name, "is one of " + list + ", not \"" + printableText(word) + "\"");
                }
                chosen = found->second;
            },
            description)
        ->type_name(list);
}

/// Of --jobs, --time-limit and --memory-limit.
constexpr std::int64_t mostJobs = 1'024;
constexpr std::int64_t aDay = 86'400;
constexpr std::int64_t mostMebibytes = 1'048'576;

/// A number without a point or a unit, both ends included.
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

class Parser {
  public:
    Parser() {
        app_.formatter(std::make_shared<HelpPage>());
        app_.set_help_flag("-h,--help", "Show this page");
        app_.set_version_flag("--version", "trellant " + std::string(versionText))
            ->description("Show the version");
        app_.require_subcommand(1);
        app_.fallthrough();
        app_.add_flag("-q,--quiet", quiet_, "Say nothing but errors");
        app_.add_flag("-v,--verbose", verbose_, "Say more, for finding a fault");
        app_.footer(
            "  trellant info mix.omf                          what is in it, on one screen\n"
            "  trellant list clips mix.omf --csv > mix.csv    every clip, for a sheet\n"
            "  trellant list losses mix.omf                   what could not be carried over\n"
            "  trellant extract mix.omf --to mix-audio        take the audio out\n"
            "  trellant export mix.omf --to mix --format aaf  a session for today's tools\n"
            "  trellant check mix.omf                         is it what a post house wants?");
        addInfo();
        addList();
        addExtract();
        addExport();
        addRender();
        addCheck();
        addPage();
        addPeaks();
        addScan();
        addCatalogue();
        addDump();
        addValidate();
    }

    CommandLine read(int argc, const char* const* argv) {
        CommandLine line;
        if (argc < 2 || argv[1] == std::string_view("help")) {
            return helpFor(argc > 2 ? argv[2] : "");
        }
        try {
            app_.parse(argc, argv);
        } catch (const CLI::CallForVersion& call) {
            line.text = std::string(call.what()) + "\n";
            return line;
        } catch (const CLI::CallForHelp&) {
            line.text = asked().help();
            return line;
        } catch (const CLI::ParseError& error) {
            const std::string word = firstWord(argc, argv);
            if (word == "help") {
                return helpFor("");
            }
            if (app_.get_subcommands().empty() && !word.empty()) {
                return unknownCommand(word);
            }
            return wrongUse(error.what());
        }
        if (quiet_ && verbose_) {
            return wrongUse("--quiet and --verbose exclude each other");
        }
        line.verbosity = quiet_     ? Verbosity::quiet
                         : verbose_ ? Verbosity::verbose
                                    : Verbosity::normal;
        line.call = chosen();
        return line;
    }

  private:
    CLI::App& command(const std::string& name, const std::string& description,
                      const std::string& examples) {
        CLI::App* const added = app_.add_subcommand(name, description);
        added->footer(examples);
        return *added;
    }

    void addInfo() {
        info_ = &command("info", "Shows what is in OMF files, one screen each",
                         "  trellant info mix.omf\n"
                         "  trellant info --media /Volumes/Audio reel1.omf reel2.omf\n"
                         "  trellant info --json *.omf | jq .clips");
        info_->add_option("FILE", infoOptions_.files, "OMF files")->required();
        info_->add_flag("--json", infoOptions_.json, "One JSON object a line for each file");
        addMedia(*info_, infoOptions_.mediaFolders);
        addFailOn(*info_, infoOptions_.failOn);
        addDestination(*info_, infoOptions_.destination);
    }

    void addList() {
        list_ =
            &command("list", "Lists the tracks, clips, audio files or losses of OMF files",
                     "  trellant list clips mix.omf\n"
                     "  trellant list clips mix.omf --csv -o mix.csv\n"
                     "  trellant list sources reel1.omf reel2.omf      each file after the other\n"
                     "  trellant list losses mix.omf -v                with the technical texts\n"
                     "  trellant list losses mix.omf --json");
        addChoice<ListOptions::What>(*list_, "WHAT", listOptions_.what, "What to list",
                                     {{"tracks", ListOptions::What::tracks},
                                      {"clips", ListOptions::What::clips},
                                      {"sources", ListOptions::What::sources},
                                      {"losses", ListOptions::What::losses}})
            ->required();
        list_->add_option("FILE", listOptions_.files, "OMF files")->required();
        auto* const csvFlag = list_->add_flag("--csv", csv_, "Comma-separated, for sheets");
        list_->add_flag("--json", json_, "One JSON object a line")->excludes(csvFlag);
        addMedia(*list_, listOptions_.mediaFolders);
        addFailOn(*list_, listOptions_.failOn);
        addDestination(*list_, listOptions_.destination);
    }

    void addExtract() {
        extract_ = &command(
            "extract", "Takes the audio out of OMF files and finds what lies beside them",
            "  trellant extract mix.omf --to mix-audio\n"
            "  trellant extract mix.omf --to mix-audio --wav\n"
            "  trellant extract mix.omf --to mix-audio --media /Volumes/A --media /Volumes/B\n"
            "  trellant extract broken.omf --to rescued --salvage\n"
            "  trellant extract *.omf --to sessions --store audio   equal audio once\n"
            "  trellant extract mix.omf --bag mix-bag               for an archive");
        extract_
            ->add_option("FILE", extractCall_.files,
                         "OMF files; of several each gets a folder of its own")
            ->required();
        extract_->add_option("--to", extractCall_.directory, "Write here; created when missing")
            ->type_name("FOLDER");
        addMedia(*extract_, extractCall_.mediaFolders);
        extract_->add_flag("--wav", extractCall_.wav,
                           "Write AIFF audio as WAVE, sample by sample, with its timecode on tape");
        addChoice<FileNaming>(*extract_, "--names", extractCall_.naming,
                              "Name files after their master mob where their own name says nothing "
                              "(the usual way), or "
                              "always after the source",
                              {{"master", FileNaming::masterMob}, {"source", FileNaming::source}});
        extract_->add_flag("--force", extractCall_.force, "Replace existing files");
        extract_->add_flag("--absolute", extractCall_.absolutePaths,
                           "timeline.json names files by their whole paths");
        extract_->add_flag("--json", extractCall_.json,
                           "Summary as one JSON object a line for each file");
        addFailOn(*extract_, extractCall_.failOn);
        auto* const salvage =
            extract_->add_flag("--salvage", extractCall_.salvage,
                               "Take out what audio there is of files that cannot be read");
        for (const char* const other : {"--media", "--wav", "--names", "--absolute", "--fail-on"}) {
            salvage->excludes(extract_->get_option(other));
        }
        addArchiving(*extract_);
    }

    void addArchiving(CLI::App& extract) {
        auto* const store =
            extract.add_option("--store", extractCall_.store,
                               "Keep equal audio once in this folder, and link to it from --to");
        store->type_name("STORE")->excludes(extract.get_option("--salvage"));
        extract
            .add_flag("--references", extractCall_.references,
                      "No links: timeline.json names the audio in the store")
            ->needs(store);
        auto* const bag = extract.add_option("--bag", bagFolder_,
                                             "Instead of --to: write a bag for an archive, with "
                                             "the OMF file and preservation metadata");
        bag->type_name("FOLDER");
        for (const char* const other : {"--to", "--store", "--force", "--absolute", "--salvage"}) {
            bag->excludes(extract.get_option(other));
        }
        extract
            .add_option("--organization", extractCall_.organization,
                        "Who the bag is from, for bag-info.txt")
            ->type_name("TEXT")
            ->needs(bag);
        extract
            .add_option("--identifier", extractCall_.identifier,
                        "What the bag is called elsewhere; else the name of the OMF file")
            ->type_name("TEXT")
            ->needs(bag);
        extract.callback([this, &extract, bag] {
            if (extract.count("--to") == 0 && bag->count() == 0) {
                throw CLI::RequiredError("--to or --bag");
            }
            if (bag->count() != 0) {
                extractCall_.bag = true;
                extractCall_.directory = bagFolder_;
            }
        });
    }

    void addExport() {
        export_ =
            &command("export", "Writes sessions for today's tools, with their audio",
                     "  trellant export mix.omf --to mix --format aaf\n"
                     "  trellant export mix.omf --to mix --format reaper --media /Volumes/Audio\n"
                     "  trellant export reel1.omf reel2.omf --to reels --format otioz");
        export_->add_option("FILE", exportCall_.files, "OMF files; each gets a session")
            ->required();
        export_->add_option("--to", exportCall_.directory, "Write here; created when missing")
            ->required()
            ->type_name("FOLDER");
        using exchange::ExportFormat;
        addChoice<ExportFormat>(*export_, "--format", exportCall_.format, "What kind of session",
                                {{"aaf", ExportFormat::aaf},
                                 {"otio", ExportFormat::otio},
                                 {"otioz", ExportFormat::otioz},
                                 {"reaper", ExportFormat::reaper},
                                 {"dawproject", ExportFormat::dawproject},
                                 {"markers", ExportFormat::markers}})
            ->required();
        addMedia(*export_, exportCall_.mediaFolders);
        addChoice<std::optional<MediaMode>>(
            *export_, "--media-mode", exportCall_.mediaMode,
            "Audio in a folder beside the session (the usual way), where it lies, or inside "
            "(aaf, otioz, dawproject)",
            {{"copy", MediaMode::copy}, {"link", MediaMode::link}, {"embed", MediaMode::embed}});
        constexpr std::int64_t highestRate = 384'000;
        export_
            ->add_option("--rate", exportCall_.rate,
                         "Samples in a second of the session; else the commonest of its audio")
            ->type_name("HZ")
            ->check(wholeNumber(1, highestRate));
        export_->add_option("--name", exportCall_.name, "Name of the session; else the file's")
            ->type_name("NAME");
        export_->add_flag_callback(
            "--no-markers", [this] { exportCall_.markers = false; },
            "No markers where something was lost");
        export_->add_flag("--force", exportCall_.force, "Replace existing files");
        export_->add_flag("--json", exportCall_.json, "One JSON object a line for each file");
        addFailOn(*export_, exportCall_.failOn);
    }

    void addRender() {
        render_ = &command("render", "Renders tracks, the mix or clips as Broadcast WAVE files",
                           "  trellant render mix.omf --to mix-stems\n"
                           "  trellant render mix.omf --to mix-guide --mix\n"
                           "  trellant render mix.omf --to mix-clips --clips --raw --handles 2");
        render_
            ->add_option("FILE", renderCall_.files,
                         "OMF files; of several each gets a folder of its own")
            ->required();
        render_->add_option("--to", renderCall_.directory, "Write here; created when missing")
            ->required()
            ->type_name("FOLDER");
        addRenderKinds();
        addMedia(*render_, renderCall_.mediaFolders);
        render_
            ->add_option("--from", renderCall_.from,
                         "Begin at this timecode; else at the session's start")
            ->type_name("TC");
        render_
            ->add_option("--until", renderCall_.until,
                         "End before this timecode; else at the session's end")
            ->type_name("TC");
        addChoice<std::optional<audio::PcmFormat>>(
            *render_, "--format", renderCall_.format,
            "24 bits, the usual, or 32 bits in floating point",
            {{"wav24", audio::PcmFormat{24, false}}, {"wav32f", audio::PcmFormat{32, true}}});
        render_->add_flag("--resample", renderCall_.resamples,
                          "Convert audio of other sample rates than the session's, which is "
                          "refused otherwise");
        render_->add_flag("--force", renderCall_.force, "Replace existing files");
        render_->add_flag("--json", renderCall_.json, "One JSON object a line for each file");
        addFailOn(*render_, renderCall_.failOn);
    }

    void addRenderKinds() {
        using render::RenderKind;
        auto* const tracks = render_->add_flag_callback(
            "--tracks", [this] { renderCall_.kind = RenderKind::tracks; },
            "One file a track from the session's start, the usual");
        auto* const mix = render_->add_flag_callback(
            "--mix", [this] { renderCall_.kind = RenderKind::mix; },
            "One stereo file of what is heard, with pan, mute and solo");
        render_
            ->add_flag_callback(
                "--clips", [this] { renderCall_.kind = RenderKind::clips; },
                "One file a clip, its time reference where it lies")
            ->excludes(tracks)
            ->excludes(mix);
        mix->excludes(tracks);
        render_->add_flag("--raw", renderCall_.raw,
                          "Edits only, without gains and fades, in the bits of the media");
        constexpr double mostSeconds = 3'600;
        render_
            ->add_option("--handles", renderCall_.handles,
                         "Of clips so many seconds of their audio before and behind them")
            ->type_name("SECONDS")
            ->check(CLI::Range(0.0, mostSeconds).description(""));
    }

    void addCheck() {
        check_ = &command("check", "Holds OMF files against published rules of delivery",
                          "  trellant check mix.omf\n"
                          "  trellant check deliveries --recursive --profile film\n"
                          "  trellant check mix.omf --profile house.json --sarif -o check.sarif\n"
                          "  trellant check --explain handles");
        check_->add_option("FILE", checkCall_.files, "OMF files, or folders that hold some");
        check_
            ->add_option("--profile", checkCall_.profile,
                         "The rules: post (the default), film, broadcast-25, music, archive, or a "
                         "JSON file")
            ->type_name("PROFILE");
        addMedia(*check_, checkCall_.mediaFolders);
        check_->add_flag("--recursive", checkCall_.recursive,
                         "Look for OMF files in folders within the folders too");
        check_->add_flag("--audio", checkCall_.audio,
                         "Read all audio too, for sync pops, silence and clipping");
        addChoice<check::Severity>(*check_, "--fail-on", checkCall_.failOn,
                                   "End with status 3 when something of this weight is found, or "
                                   "of a higher one; else error",
                                   {{"error", check::Severity::error},
                                    {"warning", check::Severity::warning},
                                    {"info", check::Severity::info}});
        auto* const json = check_->add_flag_callback(
            "--json", [this] { checkCall_.form = CheckCall::Form::json; },
            "One JSON object a line for each file, or for each rule");
        auto* const junit = check_->add_flag_callback(
            "--junit", [this] { checkCall_.form = CheckCall::Form::junit; },
            "Test results, as servers that build show them");
        check_
            ->add_flag_callback(
                "--sarif", [this] { checkCall_.form = CheckCall::Form::sarif; },
                "SARIF 2.1.0, as services that show findings read it")
            ->excludes(json)
            ->excludes(junit);
        junit->excludes(json);
        addDestination(*check_, checkCall_.destination);
        auto* const list = check_->add_flag("--list-rules", checkCall_.listRules,
                                            "In place of a check: the rules, a line each");
        check_
            ->add_option("--explain", checkCall_.explain,
                         "In place of a check: what a rule is, why, and how it is put right")
            ->type_name("RULE")
            ->excludes(list);
    }

    void addPage() {
        page_ = &command("page", "Writes the timeline as a page for any browser",
                         "  trellant page mix.omf -o mix.html\n"
                         "  trellant page mix.omf -o mix.html --language de\n"
                         "  trellant page reel1.omf reel2.omf -o pages");
        page_
            ->add_option("FILE", pageCall_.files,
                         "OMF files; of several each gets a page, with an index")
            ->required();
        page_
            ->add_option(
                "-o,--output", pageCall_.output,
                "Write to this file; of several files to this folder, created when missing")
            ->required()
            ->type_name("PATH");
        addMedia(*page_, pageCall_.mediaFolders);
        addChoice<PageLanguage>(*page_, "--language", pageCall_.language,
                                "English or German; else as the system is set",
                                {{"en", PageLanguage::english}, {"de", PageLanguage::german}});
        constexpr std::uint64_t mostMegabytes = 2'000;
        page_
            ->add_option("--preview-size", pageCall_.previewMegabytes,
                         "Megabytes of sound in a page at most, 0 for none; 30 otherwise")
            ->type_name("MB")
            ->check(CLI::Range(std::uint64_t{0}, mostMegabytes).description(""));
        page_
            ->add_option("--profile", pageCall_.profile,
                         "The rules of trellant check that the page goes by; else post")
            ->type_name("PROFILE");
        page_
            ->add_option("--media-folder", pageCall_.extractedFolder,
                         "Link to the whole audio files that extract wrote into this folder")
            ->type_name("FOLDER");
        page_->add_flag("--no-audio", pageCall_.noAudio,
                        "Do not listen to the audio: neither waveforms nor playback");
        page_->add_flag("--force", pageCall_.force, "Replace existing files");
        addFailOn(*page_, pageCall_.failOn);
    }

    void addPeaks() {
        using audio::PeakBits;
        peaks_ =
            &command("peaks", "Writes waveforms of audio files, for tools that draw them",
                     "  trellant peaks Voice.wav -o Voice.dat\n"
                     "  trellant peaks Voice.wav -o Voice.dat --samples-per-pair 1024 --bits 8\n"
                     "  trellant peaks --json *.wav");
        peaks_->add_option("FILE", peaksOptions_.files, "WAVE, AIFF and AIFC files")->required();
        peaks_
            ->add_option("--samples-per-pair", peaksOptions_.samplesPerPair,
                         "Samples that a lowest and a highest value are of; 256 otherwise")
            ->type_name("N")
            ->check(CLI::Range(std::uint32_t{1}, std::uint32_t{2'147'483'647}).description(""));
        addChoice<PeakBits>(*peaks_, "--bits", peaksOptions_.bits, "Size of a value; 16 otherwise",
                            {{"8", PeakBits::eight}, {"16", PeakBits::sixteen}});
        peaks_->add_flag("--json", peaksOptions_.json, "One JSON object a line for each file");
        addDestination(*peaks_, peaksOptions_.destination);
    }

    void addScan() {
        scan_ = &command("scan", "Looks into every OMF file of an archive, a row of JSON for each",
                         "  trellant scan /archive -o archive.ndjson\n"
                         "  trellant scan --list files.txt --shard 3/8 -o part3.ndjson\n"
                         "  trellant scan /archive -o archive.ndjson --retry failed");
        scan_->add_option("PATH", scanCall_.paths, "Files, and folders that hold some somewhere");
        scan_->add_option("-o,--output", scanCall_.output, "Add the rows to this file")
            ->type_name("SHARD")
            ->required();
        scan_
            ->add_option("--list", scanCall_.lists,
                         "A file with a path on each line; - is standard input")
            ->type_name("FILE")
            ->expected(1)
            ->take_all();
        scan_->add_option("--shard", scanCall_.shard, "Only part I of N parts")->type_name("I/N");
        scan_->add_option("--jobs", scanCall_.jobs, "Files read at once; else one for each core")
            ->type_name("N")
            ->check(wholeNumber(1, mostJobs));
        scan_->add_flag_callback(
            "--no-hash", [this] { scanCall_.hashes = false; },
            "No checksums: not of the files, not of their audio");
        addChoice<scan::Again>(*scan_, "--retry", scanCall_.again,
                               "Read files again that could not be read",
                               {{"failed", scan::Again::failed}});
        scan_->add_flag("--refresh", scanCall_.refresh, "Read all files again");
        scan_
            ->add_option("--time-limit", scanCall_.timeLimitSeconds,
                         "Seconds that reading one file may take; 300 otherwise")
            ->type_name("SECONDS")
            ->check(wholeNumber(1, aDay));
        scan_
            ->add_option("--memory-limit", scanCall_.memoryLimitMebibytes,
                         "MiB that reading one file may take; else by its size")
            ->type_name("MIB")
            ->check(wholeNumber(1, mostMebibytes));
        scan_
            ->add_option("--profile", scanCall_.profile,
                         "Check each file by these rules too, as trellant check does")
            ->type_name("PROFILE");
        scan_->add_flag("--strict", scanCall_.strict,
                        "End with status 2 when a file could not be read");
    }

    void addCatalogue() {
        catalogue_ = &command(
            "catalogue", "Keeps the rows of scans in one SQLite file and asks it",
            "  trellant catalogue build archive.sqlite part*.ndjson\n"
            "  trellant catalogue stats archive.sqlite\n"
            "  trellant catalogue query archive.sqlite missing-media --csv -o missing.csv\n"
            "  trellant catalogue query archive.sqlite plays 'Kick 1'\n"
            "  trellant catalogue query archive.sqlite --sql 'SELECT count(*) FROM files'");
        addChoice<CatalogueCall::What>(*catalogue_, "WHAT", catalogueCall_.what, "What to do",
                                       {{"build", CatalogueCall::What::build},
                                        {"query", CatalogueCall::What::query},
                                        {"stats", CatalogueCall::What::stats}})
            ->required();
        catalogue_->add_option("CATALOGUE", catalogueCall_.catalogue, "The SQLite file")
            ->required();
        catalogue_->add_option("REST", catalogueCall_.rest,
                               "Shards of scans, or a question; query alone lists these");
        catalogue_->add_option("--sql", catalogueCall_.sql, "Ask this, which may only read")
            ->type_name("SQL");
        constexpr std::int64_t mostRows = 1'000'000'000'000;
        catalogue_
            ->add_option("--limit", catalogueCall_.limit,
                         "Rows of an answer; 1000 otherwise, 0 for all")
            ->type_name("N")
            ->check(wholeNumber(0, mostRows));
        auto* const csvFlag = catalogue_->add_flag_callback(
            "--csv", [this] { catalogueCall_.form = CatalogueCall::Form::csv; },
            "Comma-separated, for sheets");
        catalogue_
            ->add_flag_callback(
                "--json", [this] { catalogueCall_.form = CatalogueCall::Form::json; },
                "One JSON object a line")
            ->excludes(csvFlag);
        addDestination(*catalogue_, catalogueCall_.destination);
    }

    void addDump() {
        dump_ = &command("dump", "Shows the container behind an OMF file, for engineers",
                         "  trellant dump mix.omf\n"
                         "  trellant dump mix.omf --object 12\n"
                         "  trellant dump mix.omf --path 'CMOB[12]/slot[34]/SEQU[56]'");
        dump_->add_option("FILE", dumpCall_.files, "Any files")->required();
        auto* const toc = dump_->add_flag("--toc", dumpCall_.each.toc, "Every entry of the table");
        auto* const object =
            dump_->add_option("--object", dumpCall_.each.object, "One object with its properties")
                ->type_name("N")
                ->excludes(toc);
        dump_
            ->add_option("--path", dumpCall_.each.path, "The place that a loss names, step by step")
            ->type_name("PATH")
            ->excludes(toc)
            ->excludes(object);
        dump_->add_flag("--all", dumpCall_.each.all, "Without bounds on what is shown");
        dump_->add_flag("--json", dumpCall_.each.json, "One JSON object a line");
    }

    void addValidate() {
        validate_ = &command("validate", "Checks timelines and results that were written as JSON",
                             "  trellant validate result.json\n"
                             "  trellant-omf < request.json | trellant validate -");
        validate_->add_option("RESULT", validateOptions_.files, "JSON files; - is standard input")
            ->required();
        validate_->add_flag("--json", validateOptions_.json, "One JSON object a line");
    }

    [[nodiscard]] static CommandLine page(const CLI::App& command) {
        CommandLine line;
        line.text = command.help();
        return line;
    }

    /// `trellant help` and `trellant help list`.
    [[nodiscard]] CommandLine helpFor(const std::string& name) const {
        if (name.empty() || name == "help" || name == "-h" || name == "--help") {
            return page(app_);
        }
        for (const CLI::App* const command : app_.get_subcommands({})) {
            if (command->get_name() == name) {
                return page(*command);
            }
        }
        return unknownCommand(name);
    }

    [[nodiscard]] CommandLine unknownCommand(const std::string& word) const {
        std::vector<std::string> names{"help"};
        for (const CLI::App* const command : app_.get_subcommands({})) {
            names.push_back(command->get_name());
        }
        const auto meant = nearestWord(word, names);
        return wrongUse("there is no command \"" + printableText(word) + "\"" +
                        (meant ? ". Did you mean \"" + *meant + "\"?" : ""));
    }

    /// The first argument that is no option.
    [[nodiscard]] static std::string firstWord(int argc, const char* const* argv) {
        for (int i = 1; i < argc; ++i) {
            if (argv[i][0] != '-') {
                return argv[i];
            }
        }
        return {};
    }

    [[nodiscard]] const CLI::App& asked() const {
        const auto chosen = app_.get_subcommands();
        return chosen.empty() ? app_ : *chosen.front();
    }

    [[nodiscard]] Call chosen() {
        if (info_->parsed()) {
            return infoOptions_;
        }
        if (list_->parsed()) {
            listOptions_.form = csv_    ? ListOptions::Form::csv
                                : json_ ? ListOptions::Form::json
                                        : ListOptions::Form::people;
            return listOptions_;
        }
        if (extract_->parsed()) {
            return extractCall_;
        }
        if (export_->parsed()) {
            return exportCall_;
        }
        if (render_->parsed()) {
            return renderCall_;
        }
        if (check_->parsed()) {
            return checkCall_;
        }
        if (page_->parsed()) {
            return pageCall_;
        }
        if (peaks_->parsed()) {
            return peaksOptions_;
        }
        if (scan_->parsed()) {
            return scanCall_;
        }
        if (catalogue_->parsed()) {
            return catalogueCall_;
        }
        if (dump_->parsed()) {
            return dumpCall_;
        }
        return validateOptions_;
    }

    [[nodiscard]] CommandLine wrongUse(const std::string& message) const {
        CommandLine line;
        const std::string name = asked().get_name();
        line.text = message + "\nTry: trellant " +
                    (&asked() == &app_ || name.empty() ? "" : name + " ") + "-h";
        line.status = ExitStatus::wrongUse;
        return line;
    }

    CLI::App app_{
        "Looks into OMF files, takes their audio out, writes sessions, and tells what could not be "
        "carried over.",
        "trellant"};
    CLI::App* info_ = nullptr;
    CLI::App* list_ = nullptr;
    CLI::App* extract_ = nullptr;
    CLI::App* export_ = nullptr;
    CLI::App* render_ = nullptr;
    CLI::App* check_ = nullptr;
    CLI::App* page_ = nullptr;
    CLI::App* peaks_ = nullptr;
    CLI::App* scan_ = nullptr;
    CLI::App* catalogue_ = nullptr;
    CLI::App* dump_ = nullptr;
    CLI::App* validate_ = nullptr;
    InfoOptions infoOptions_;
    ListOptions listOptions_;
    ExtractCall extractCall_;
    std::string bagFolder_;
    ExportCall exportCall_;
    RenderCall renderCall_;
    CheckCall checkCall_;
    PageCall pageCall_;
    DumpCall dumpCall_;
    PeaksOptions peaksOptions_;
    ScanCall scanCall_;
    CatalogueCall catalogueCall_;
    ValidateOptions validateOptions_;
    bool quiet_ = false;
    bool verbose_ = false;
    bool csv_ = false;
    bool json_ = false;
};

}  // namespace

CommandLine readCommandLine(int argc, const char* const* argv) {
    return Parser().read(argc, argv);
}

}  // namespace trellant::cli
