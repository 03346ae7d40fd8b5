// SPDX-License-Identifier: Apache-2.0
#include "dump_overview.h"

#include "dump_bytes.h"
#include "dump_file_kind.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <algorithm>
#include <array>
#include <map>

namespace trellant::cli {

namespace {

constexpr std::size_t mostClasses = 200;
constexpr std::size_t mostObjects = 8;
/// Last bytes of a file without a footer.
constexpr std::size_t tailBytes = 24;

std::string orderName(OMFByteOrder order) {
    return order == OMFByteOrder::little ? "little-endian" : "big-endian";
}

std::string bytesAt(std::uint64_t count, std::uint64_t offset) {
    return std::to_string(count) + " bytes at byte " + std::to_string(offset);
}

void fact(DumpOutput& output, std::string_view name, std::string_view text) {
    constexpr std::size_t column = 11;
    output.line(std::string(name).append(column - name.size(), ' ').append(text));
}

void dumpFooter(const DumpContents& contents, DumpOutput& output) {
    const FooterLook& look = contents.footer();
    if (!look.footer) {
        return;
    }
    const BentoFooter& footer = *look.footer;
    fact(output, "Footer",
         "at byte " + std::to_string(*look.offset) + ", version " +
             std::to_string(footer.majorVersion) + "." + std::to_string(footer.minorVersion) +
             ", " + orderName(footer.byteOrder) + (footer.hasExtendedFooter ? ", extended" : ""));
    const std::string form = footer.majorVersion == 1
                                 ? "entries of 24 bytes"
                                 : "compressed, blocks of " + std::to_string(footer.blockSize);
    fact(output, "Table", form + ", " + bytesAt(footer.tocSize, footer.tocOffset));
}

void dumpTail(const DumpContents& contents, DumpOutput& output) {
    const auto kind = fileKind(contents.file());
    fact(output, "Looks like", kind.value_or("nothing known"));
    std::array<std::byte, tailBytes> tail{};
    const std::uint64_t size = contents.file().size();
    const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(size, tailBytes));
    const std::size_t got =
        contents.file().readAvailable(size - count, std::span(tail).first(count));
    if (got > 0) {
        fact(output, "Ends with", hexAndText(std::span(tail).first(got)));
    }
}

std::string modelText(const DumpContents& contents) {
    const std::string order = "values " + orderName(contents.valueOrder());
    const auto header = contents.header();
    const std::string object =
        header ? "header is object " + std::to_string(*header) : std::string("no header");
    switch (contents.model()) {
        case ObjectModel::omf2:
            return "OMF 2.x, " + object + ", " + order;
        case ObjectModel::omf1:
            return "OMF 1.x, " + object + ", " + order + "; read as far as its structure is known";
        case ObjectModel::unknown:
            break;
    }
    return "no OMF: the container names no property for the classes of its objects";
}

using Classes = std::map<std::string, std::vector<std::uint32_t>>;

/// Objects by class, those without one left out.
Classes classesOf(const DumpContents& contents) {
    Classes classes;
    for (const std::uint32_t object : contents.objects()) {
        if (std::string label = contents.classOf(object); !label.empty()) {
            classes[shownText(label)].push_back(object);
        }
    }
    return classes;
}

std::string objectList(const std::vector<std::uint32_t>& objects, std::size_t shown) {
    std::string text;
    for (std::size_t i = 0; i < shown; ++i) {
        text += (i == 0 ? "" : " ") + std::to_string(objects[i]);
    }
    return shown == objects.size()
               ? text
               : text + " and " + std::to_string(objects.size() - shown) + " more";
}

void dumpClasses(const Classes& classes, bool all, DumpOutput& output) {
    Table table{.columns = {{.title = "Class"},
                            {.title = "Count", .align = Align::right},
                            {.title = "Objects"}},
                .rows = {}};
    for (const auto& [label, objects] : classes) {
        if (!all && table.rows.size() == mostClasses) {
            break;
        }
        const std::size_t shown = all ? objects.size() : std::min(objects.size(), mostObjects);
        table.rows.push_back({label, std::to_string(objects.size()), objectList(objects, shown)});
        if (shown < objects.size()) {
            output.cut();
        }
    }
    output.line("");
    output.write(aligned(table, Console::unlimitedColumns, output.console().outHasColour()));
    if (table.rows.size() < classes.size()) {
        output.line("and " + std::to_string(classes.size() - table.rows.size()) + " more classes");
        output.cut();
    }
}

}  // namespace

std::vector<std::string> damagesOf(const DumpContents& contents) {
    std::vector<std::string> damages = contents.footer().faults;
    if (!contents.footer().footer) {
        return damages;
    }
    if (const auto& fault = contents.tocFault()) {
        damages.push_back("the table of contents stops making sense at its byte " +
                          std::to_string(fault->offset) + ", after " +
                          std::to_string(contents.items().size()) + " items: " + fault->text);
    }
    std::size_t count = 0;
    const BentoPackedItem* first = nullptr;
    for (const BentoPackedItem& item : contents.items()) {
        if (leavesFile(item, contents.file().size())) {
            first = count++ == 0 ? &item : first;
        }
    }
    if (first != nullptr) {
        damages.push_back((count == 1 ? std::string("1 value does not lie")
                                      : std::to_string(count) + " values do not lie") +
                          " wholly in the file, first that of object " +
                          std::to_string(first->object));
    }
    if (contents.model() == ObjectModel::omf2 && !contents.header()) {
        damages.emplace_back("there is no object of class HEAD");
    }
    return damages;
}

void dumpOverview(const DumpContents& contents, bool all, DumpOutput& output) {
    fact(output, "File", shownText(contents.file().path()));
    fact(output, "Size", std::to_string(contents.file().size()) + " bytes");
    if (!contents.footer().offset) {
        dumpTail(contents, output);
        return;
    }
    dumpFooter(contents, output);
    if (!contents.footer().footer) {
        return;
    }
    const Classes classes = classesOf(contents);
    std::size_t modelObjects = 0;
    for (const auto& entry : classes) {
        modelObjects += entry.second.size();
    }
    const std::string bound = contents.isCut() ? ", the first of more" : std::string();
    fact(output, "Items", std::to_string(contents.items().size()) + bound);
    fact(output, "Objects",
         std::to_string(contents.objects().size()) + ", " + std::to_string(modelObjects) +
             " of them with a class");
    fact(output, "Names",
         std::to_string(contents.propertyNameCount()) + " of properties, " +
             std::to_string(contents.typeNameCount()) + " of types");
    fact(output, "Model", modelText(contents));
    if (!classes.empty()) {
        dumpClasses(classes, all, output);
    }
}

}  // namespace trellant::cli
