// SPDX-License-Identifier: Apache-2.0
#include "dump_container.h"

#include "dump_contents.h"
#include "dump_json.h"
#include "dump_object.h"
#include "dump_output.h"
#include "dump_overview.h"
#include "dump_path.h"
#include "dump_toc_list.h"
#include "dump_values.h"
#include "terminal/failure_line.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <trellant/base/printable_text.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

std::string quoted(const std::string& path) {
    return "\"" + printableText(path, 4096) + "\"";
}

/// Says why there is nothing to show; to programs as an object too.
ExitStatus refuse(const DumpOptions& options, const std::string& why, DumpOutput& output) {
    if (options.json) {
        output.write(failureLine(options.file, why));
    }
    output.flush();
    output.console().error(why);
    return ExitStatus::wrongUse;
}

ExitStatus dumpOne(const DumpContents& contents, std::uint32_t object, const DumpOptions& options,
                   const std::optional<PathResolution>& path, DumpOutput& output) {
    if (contents.has(object)) {
        if (options.json) {
            dumpObjectJson(contents, object, path, options.all, output);
        } else {
            dumpObject(contents, object, options.all, output);
        }
        return ExitStatus::done;
    }
    const auto objects = contents.objects();
    return refuse(options,
                  "there is no object " + std::to_string(object) +
                      (objects.empty()
                           ? ": the file holds none that can be read"
                           : "; the objects are numbered from " + std::to_string(objects.front()) +
                                 " to " + std::to_string(objects.back())),
                  output);
}

std::string lengthText(const DumpContents& contents, std::uint32_t object) {
    const auto property = contents.propertyID("OMFI:CPNT:Length");
    const bool hasLength = property && contents.value(object, *property, 0).has_value();
    return hasLength ? valueText(contents, object, *property, ValueBounds{}).line : std::string();
}

void dumpSteps(const DumpContents& contents, const PathResolution& resolution, DumpOutput& output) {
    Table table{.columns = {{.title = "Step"},
                            {.title = "Object", .align = Align::right},
                            {.title = "Class"},
                            {.title = "Length", .align = Align::right},
                            {.title = "By"}},
                .rows = {}};
    for (const PathStep& step : resolution.steps) {
        table.rows.push_back({step.text, std::to_string(step.object), contents.classOf(step.object),
                              lengthText(contents, step.object), step.by});
    }
    if (!table.rows.empty()) {
        output.write(aligned(table, Console::unlimitedColumns, output.console().outHasColour()));
    }
}

ExitStatus dumpPath(const DumpContents& contents, const DumpOptions& options, DumpOutput& output) {
    const PathResolution resolution = resolvePath(contents, *options.path);
    if (!options.json) {
        dumpSteps(contents, resolution, output);
    }
    if (resolution.fault) {
        return refuse(options, *resolution.fault, output);
    }
    if (!options.json) {
        output.line("");
    }
    return dumpOne(contents, resolution.steps.back().object, options, resolution, output);
}

ExitStatus dumpWanted(const DumpContents& contents, const DumpOptions& options,
                      DumpOutput& output) {
    if (options.object) {
        return dumpOne(contents, *options.object, options, std::nullopt, output);
    }
    if (options.path) {
        return dumpPath(contents, options, output);
    }
    if (options.toc) {
        (options.json ? dumpTocJson : dumpToc)(contents, options.all, output);
    } else {
        (options.json ? dumpOverviewJson : dumpOverview)(contents, options.all, output);
    }
    return ExitStatus::done;
}

/// Beside what a program reads, since nothing in its lines says so.
void reportCut(const DumpOptions& options, DumpOutput& output) {
    if (!output.isCut()) {
        return;
    }
    if (options.json) {
        output.console().note(quoted(options.file) + ": shown in part; --all shows everything");
    } else {
        output.line("");
        output.line("Shown in part: --all shows everything.");
    }
}

}  // namespace

ExitStatus dumpContainer(const DumpOptions& options, Console& console) {
    const DumpContents contents(options.file);
    DumpOutput output(console);
    const ExitStatus status = dumpWanted(contents, options, output);
    reportCut(options, output);
    output.flush();
    const auto damages = damagesOf(contents);
    for (const std::string& damage : damages) {
        console.error(quoted(options.file) + ": " + damage);
    }
    return damages.empty() ? status : ExitStatus::fileFailed;
}

}  // namespace trellant::cli
