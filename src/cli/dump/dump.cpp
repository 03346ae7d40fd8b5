// SPDX-License-Identifier: Apache-2.0
#include "dump.h"

#include "dump_contents.h"
#include "dump_object.h"
#include "dump_output.h"
#include "dump_overview.h"
#include "dump_path.h"
#include "dump_toc_list.h"
#include "dump_values.h"
#include "process/isolated.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <trellant/base/printable_text.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

namespace {

/// What the child answers beside a status when nobody reads any more.
constexpr std::string_view closedAnswer = "closed";

std::string quoted(const std::string& path) {
    return "\"" + printableText(path, 4096) + "\"";
}

ExitStatus dumpOne(const DumpContents& contents, std::uint32_t object, bool all,
                   DumpOutput& output) {
    if (contents.has(object)) {
        dumpObject(contents, object, all, output);
        return ExitStatus::done;
    }
    const auto objects = contents.objects();
    output.flush();
    output.console().error("there is no object " + std::to_string(object) +
                           (objects.empty() ? ": the file holds none that can be read"
                                            : "; the objects are numbered from " +
                                                  std::to_string(objects.front()) + " to " +
                                                  std::to_string(objects.back())));
    return ExitStatus::wrongUse;
}

std::string lengthText(const DumpContents& contents, std::uint32_t object) {
    const auto property = contents.propertyID("OMFI:CPNT:Length");
    const bool hasLength = property && contents.value(object, *property, 0).has_value();
    return hasLength ? valueText(contents, object, *property, ValueBounds{}).line : std::string();
}

ExitStatus dumpPath(const DumpContents& contents, std::string_view path, bool all,
                    DumpOutput& output) {
    const PathResolution resolution = resolvePath(contents, path);
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
    if (resolution.fault) {
        output.flush();
        output.console().error(*resolution.fault);
        return ExitStatus::wrongUse;
    }
    output.line("");
    const std::uint32_t last = resolution.steps.back().object;
    return dumpOne(contents, last, all, output);
}

ExitStatus dumpWanted(const DumpContents& contents, const DumpOptions& options,
                      DumpOutput& output) {
    if (options.object) {
        return dumpOne(contents, *options.object, options.all, output);
    }
    if (options.path) {
        return dumpPath(contents, *options.path, options.all, output);
    }
    if (options.toc) {
        dumpToc(contents, options.all, output);
    } else {
        dumpOverview(contents, options.all, output);
    }
    return ExitStatus::done;
}

ExitStatus dump(const DumpOptions& options, Console& console) {
    const DumpContents contents(options.file);
    DumpOutput output(console);
    const ExitStatus status = dumpWanted(contents, options, output);
    if (output.isCut()) {
        output.line("");
        output.line("Shown in part: --all shows everything.");
    }
    output.flush();
    const auto damages = damagesOf(contents);
    for (const std::string& damage : damages) {
        console.error(quoted(options.file) + ": " + damage);
    }
    return damages.empty() ? status : ExitStatus::fileFailed;
}

std::string dumpInChild(const DumpOptions& options, Console& console) {
    try {
        return std::to_string(static_cast<int>(dump(options, console)));
    } catch (const OutputClosed&) {
        return std::string(closedAnswer);
    }
}

}  // namespace

ExitStatus runDump(const DumpOptions& options, Console& console) {
    const IsolatedAnswer answer =
        inConfinedChild([&] { return dumpInChild(options, console); }, std::nullopt,
                        std::vector<std::string>{options.file});
    if (const auto* failure = std::get_if<IsolatedFailure>(&answer)) {
        const bool isOwnText = failure->kind == IsolatedFailure::Kind::exception;
        console.error(isOwnText
                          ? failure->reason
                          : quoted(options.file) + ": the process that read it " + failure->reason);
        return ExitStatus::fileFailed;
    }
    const auto& text = std::get<std::string>(answer);
    if (text == closedAnswer) {
        throw OutputClosed{};
    }
    return text == "0"   ? ExitStatus::done
           : text == "1" ? ExitStatus::wrongUse
                         : ExitStatus::fileFailed;
}

}  // namespace trellant::cli
