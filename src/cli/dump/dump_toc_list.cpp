// SPDX-License-Identifier: Apache-2.0
// Fixed columns, so that a line can go out as soon as it is read.
#include "dump_toc_list.h"

#include "dump_bytes.h"
#include "dump_object.h"
#include "terminal/shown_text.h"

#include <array>
#include <cstdio>

namespace trellant::cli {

namespace {

constexpr std::size_t storageCells = 40;

std::string storageText(const BentoPackedItem& item, std::uint64_t fileSize) {
    switch (item.kind) {
        case BentoPackedItem::Kind::immediate:
            return item.immediateCount == 0 ? "empty" : "immediate " + hexText(item.immediate());
        case BentoPackedItem::Kind::range:
            return std::to_string(item.length) + " bytes at " + std::to_string(item.offset) +
                   (leavesFile(item, fileSize) ? ", not in the file" : "");
        case BentoPackedItem::Kind::referenceList:
            break;
    }
    return "reference list " + std::to_string(item.offset);
}

std::string typeLabel(const DumpContents& contents, std::uint32_t type) {
    const std::string_view name = contents.typeName(type);
    return name.empty() ? "type " + std::to_string(type) : shownText(name);
}

std::string itemLine(const DumpContents& contents, const BentoPackedItem& item) {
    std::array<char, 32> numbers{};
    static_cast<void>(std::snprintf(numbers.data(), numbers.size(), "%10u  %5u  ", item.object,
                                    static_cast<unsigned>(item.generation)));
    std::string storage = storageText(item, contents.file().size());
    storage += item.continued ? ", continued" : "";
    storage.append(storage.size() < storageCells ? storageCells - storage.size() : 0, ' ');
    return numbers.data() + storage + "  " + propertyLabel(contents, item.property) + "  " +
           typeLabel(contents, item.type);
}

}  // namespace

void dumpToc(const DumpContents& contents, bool all, DumpOutput& output) {
    if (!contents.footer().footer) {
        return;
    }
    std::string storage = "Value";
    storage.append(storageCells - storage.size(), ' ');
    output.heading("    Object    Gen  " + storage + "  Property  Type");
    std::size_t count = 0;
    static_cast<void>(
        readToc(contents.file(), *contents.footer().footer, [&](const BentoPackedItem& item) {
            output.line(itemLine(contents, item));
            ++count;
            return all || count < mostTocItems;
        }));
    if (count < contents.items().size()) {
        output.line("and " + std::to_string(contents.items().size() - count) + " more items");
        output.cut();
    }
}

}  // namespace trellant::cli
