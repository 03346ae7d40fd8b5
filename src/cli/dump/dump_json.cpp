// SPDX-License-Identifier: Apache-2.0
#include "dump_json.h"

#include "dump_bytes.h"
#include "dump_file_kind.h"
#include "dump_object.h"
#include "dump_overview.h"
#include "dump_toc_list.h"
#include "dump_values.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <algorithm>
#include <map>

namespace trellant::cli {

namespace {

/// A line on its way into the gathered output.
class OutputSink final : public JsonSink {
  public:
    explicit OutputSink(DumpOutput& output) : output_(output) {}
    void write(std::string_view bytes) override { output_.write(bytes); }

  private:
    DumpOutput& output_;
};

std::string_view orderWord(OMFByteOrder order) {
    return order == OMFByteOrder::little ? "littleEndian" : "bigEndian";
}

std::string_view modelWord(ObjectModel model) {
    return model == ObjectModel::omf2 ? "omf2" : model == ObjectModel::omf1 ? "omf1" : "unknown";
}

void addFile(JsonLine& line, const DumpContents& contents) {
    line.text("file", fileForPrograms(contents.file().path()));
}

void addFooter(JsonLine& line, const DumpContents& contents) {
    const FooterLook& look = contents.footer();
    if (!look.footer) {
        line.text("looksLike", fileKind(contents.file()));
        return;
    }
    const BentoFooter& footer = *look.footer;
    line.object("footer", [&](JsonLine& item) {
        item.count("offset", *look.offset)
            .integer("majorVersion", footer.majorVersion)
            .integer("minorVersion", footer.minorVersion)
            .text("byteOrder", orderWord(footer.byteOrder))
            .boolean("extended", footer.hasExtendedFooter);
    });
    line.object("table", [&](JsonLine& item) {
        item.count("offset", footer.tocOffset).count("bytes", footer.tocSize);
        if (footer.majorVersion != 1) {
            item.count("blockBytes", footer.blockSize);
        }
    });
}

/// Of each class, unless all are wanted.
constexpr std::size_t mostObjects = 8;

void addClasses(JsonLine& line, const DumpContents& contents, bool all) {
    std::map<std::string, std::vector<std::uint32_t>> classes;
    for (const std::uint32_t object : contents.objects()) {
        if (std::string label = contents.classOf(object); !label.empty()) {
            classes[std::move(label)].push_back(object);
        }
    }
    line.objects("classes", classes, [all](JsonLine& item, const auto& entry) {
        const std::span<const std::uint32_t> objects(entry.second);
        item.text("class", entry.first)
            .count("count", objects.size())
            .integers("objects",
                      objects.first(all ? objects.size() : std::min(objects.size(), mostObjects)));
    });
}

void addStorage(JsonLine& line, const BentoPackedItem& item, std::uint64_t fileSize) {
    switch (item.kind) {
        case BentoPackedItem::Kind::immediate:
            line.text("kind", "immediate").text("value", hexText(item.immediate()));
            break;
        case BentoPackedItem::Kind::range:
            line.text("kind", "range").count("offset", item.offset).count("bytes", item.length);
            if (leavesFile(item, fileSize)) {
                line.boolean("leavesFile", true);
            }
            break;
        case BentoPackedItem::Kind::referenceList:
            line.text("kind", "referenceList").count("list", item.offset);
            break;
    }
}

void addProperty(JsonLine& line, const DumpContents& contents, std::uint32_t object,
                 std::uint32_t property, const ValueBounds& bounds, DumpOutput& output) {
    line.integer("number", property);
    if (const auto name = contents.propertyName(property); !name.empty()) {
        line.text("property", name);
    }
    if (const auto type = contents.typeOf(object, property)) {
        line.integer("typeNumber", *type);
        if (const auto name = contents.typeName(*type); !name.empty()) {
            line.text("type", name);
        }
    }
    if (const auto look = contents.value(object, property, 0)) {
        line.count("bytes", look->byteCount);
    }
    const ValueText text = valueText(contents, object, property, bounds);
    line.text("value", text.line);
    if (!text.listing.empty()) {
        line.texts("listing", text.listing);
    }
    if (text.isCut) {
        line.boolean("cut", true);
        output.cut();
    }
}

}  // namespace

void dumpOverviewJson(const DumpContents& contents, bool all, DumpOutput& output) {
    OutputSink sink(output);
    JsonLine line(sink);
    addFile(line, contents);
    line.count("bytes", contents.file().size());
    addFooter(line, contents);
    if (contents.footer().footer) {
        line.count("items", contents.items().size())
            .count("objects", contents.objects().size())
            .count("propertyNames", contents.propertyNameCount())
            .count("typeNames", contents.typeNameCount())
            .text("model", modelWord(contents.model()));
        if (const auto header = contents.header()) {
            line.integer("header", *header);
        }
        line.text("valueByteOrder", orderWord(contents.valueOrder()));
        addClasses(line, contents, all);
    }
    line.texts("damages", damagesOf(contents));
    line.end();
}

void dumpObjectJson(const DumpContents& contents, std::uint32_t object,
                    const std::optional<PathResolution>& path, bool all, DumpOutput& output) {
    constexpr std::size_t mostProperties = 200;
    OutputSink sink(output);
    JsonLine line(sink);
    addFile(line, contents);
    if (path) {
        line.objects("steps", path->steps, [&](JsonLine& item, const PathStep& step) {
            item.text("step", step.text).integer("object", step.object);
            if (!step.by.empty()) {
                item.text("by", step.by);
            }
        });
    }
    line.integer("object", object);
    if (const std::string label = contents.classOf(object); !label.empty()) {
        line.text("class", label);
    }
    std::vector<std::uint32_t> properties = contents.propertiesOf(object);
    line.count("propertyCount", properties.size());
    if (!all && properties.size() > mostProperties) {
        properties.resize(mostProperties);
        output.cut();
    }
    const ValueBounds bounds = all ? ValueBounds::none() : ValueBounds{};
    line.objects("properties", properties, [&](JsonLine& item, std::uint32_t property) {
        addProperty(item, contents, object, property, bounds, output);
    });
    line.end();
}

void dumpTocJson(const DumpContents& contents, bool all, DumpOutput& output) {
    if (!contents.footer().footer) {
        std::string why;
        for (const std::string& fault : contents.footer().faults) {
            why += (why.empty() ? "" : "; ") + fault;
        }
        output.write(failureLine(contents.file().path(), why));
        return;
    }
    OutputSink sink(output);
    std::size_t count = 0;
    static_cast<void>(
        readToc(contents.file(), *contents.footer().footer, [&](const BentoPackedItem& item) {
            JsonLine line(sink);
            addFile(line, contents);
            line.integer("object", item.object)
                .integer("generation", item.generation)
                .text("property", propertyLabel(contents, item.property))
                .integer("typeNumber", item.type);
            addStorage(line, item, contents.file().size());
            line.boolean("continued", item.continued);
            line.end();
            ++count;
            return all || count < mostTocItems;
        }));
    if (count < contents.items().size()) {
        output.cut();
    }
}

}  // namespace trellant::cli
