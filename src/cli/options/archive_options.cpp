// SPDX-License-Identifier: Apache-2.0
#include "options/command_options.h"
#include "options/option_parts.h"

#include <CLI/CLI.hpp>
#include <memory>
#include <string>

namespace trellant::cli {

namespace {

/// Of --jobs, --time-limit and --memory-limit.
constexpr std::int64_t mostJobs = 1'024;
constexpr std::int64_t aDay = 86'400;
constexpr std::int64_t mostMebibytes = 1'048'576;

}  // namespace

CommandOptions addScan(CLI::App& program) {
    const auto call = std::make_shared<ScanCall>();
    CLI::App& command = addCommand(
        program, "scan", "Looks into every OMF file of an archive, a row of JSON for each",
        "  trellant scan /archive -o archive.ndjson\n"
        "  trellant scan --list files.txt --shard 3/8 -o part3.ndjson\n"
        "  trellant scan /archive -o archive.ndjson --retry failed");
    command.add_option("PATH", call->paths, "Files, and folders that hold some somewhere");
    command.add_option("-o,--output", call->output, "Add the rows to this file")
        ->type_name("SHARD")
        ->required();
    command
        .add_option("--list", call->lists, "A file with a path on each line; - is standard input")
        ->type_name("FILE")
        ->expected(1)
        ->take_all();
    command.add_option("--shard", call->shard, "Only part I of N parts")->type_name("I/N");
    command.add_option("--jobs", call->jobs, "Files read at once; else one for each core")
        ->type_name("N")
        ->check(wholeNumber(1, mostJobs));
    command.add_flag_callback(
        "--no-hash", [call] { call->hashes = false; },
        "No checksums: not of the files, not of their audio");
    addChoice<scan::Again>(command, "--retry", call->again,
                           "Read files again that could not be read",
                           {{"failed", scan::Again::failed}});
    command.add_flag("--refresh", call->refresh, "Read all files again");
    command
        .add_option("--time-limit", call->timeLimitSeconds,
                    "Seconds that reading one file may take; 300 otherwise")
        ->type_name("SECONDS")
        ->check(wholeNumber(1, aDay));
    command
        .add_option("--memory-limit", call->memoryLimitMebibytes,
                    "MiB that reading one file may take; else by its size")
        ->type_name("MIB")
        ->check(wholeNumber(1, mostMebibytes));
    command
        .add_option("--profile", call->profile,
                    "Check each file by these rules too, as trellant check does")
        ->type_name("PROFILE");
    command.add_flag("--strict", call->strict, "End with status 2 when a file could not be read");
    return {&command, [call] { return Call(*call); }};
}

CommandOptions addCatalogue(CLI::App& program) {
    const auto call = std::make_shared<CatalogueCall>();
    CLI::App& command =
        addCommand(program, "catalogue", "Keeps the rows of scans in one SQLite file and asks it",
                   "  trellant catalogue build archive.sqlite part*.ndjson\n"
                   "  trellant catalogue stats archive.sqlite\n"
                   "  trellant catalogue query archive.sqlite missing-media --csv -o missing.csv\n"
                   "  trellant catalogue query archive.sqlite plays 'Kick 1'\n"
                   "  trellant catalogue query archive.sqlite --sql 'SELECT count(*) FROM files'");
    addChoice<CatalogueCall::What>(command, "WHAT", call->what, "What to do",
                                   {{"build", CatalogueCall::What::build},
                                    {"query", CatalogueCall::What::query},
                                    {"stats", CatalogueCall::What::stats}})
        ->required();
    command.add_option("CATALOGUE", call->catalogue, "The SQLite file")->required();
    command.add_option("REST", call->rest,
                       "Shards of scans, or a question; query alone lists these");
    command.add_option("--sql", call->sql, "Ask this, which may only read")->type_name("SQL");
    constexpr std::int64_t mostRows = 1'000'000'000'000;
    command.add_option("--limit", call->limit, "Rows of an answer; 1000 otherwise, 0 for all")
        ->type_name("N")
        ->check(wholeNumber(0, mostRows));
    auto* const csvFlag = command.add_flag_callback(
        "--csv", [call] { call->form = CatalogueCall::Form::csv; }, "Comma-separated, for sheets");
    command
        .add_flag_callback(
            "--json", [call] { call->form = CatalogueCall::Form::json; }, "One JSON object a line")
        ->excludes(csvFlag);
    addDestination(command, call->destination);
    return {&command, [call] { return Call(*call); }};
}

}  // namespace trellant::cli
