// SPDX-License-Identifier: Apache-2.0
#include "dump_object.h"

#include "dump_bytes.h"
#include "dump_values.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <algorithm>
#include <optional>

namespace trellant::cli {

namespace {

constexpr std::size_t mostProperties = 200;
/// Values stand in one column as long as the names before them are no longer.
constexpr std::size_t widestName = 32;
constexpr std::size_t longestLabel = 120;
constexpr std::string_view margin = "  ";
/// Numbers below are the container's own, and it names none of their properties: its table of
/// contents, its whole length. They tell nothing of the session.
constexpr std::uint32_t firstNamed = 65'536;
/// Values of one object that are shown whole, in bytes, beyond as many as the file has: values may
/// lie over one another, and a kilobyte of table could ask for gigabytes of text.
constexpr std::uint64_t extraWholeBytes = 1'048'576;

/// Which values of an object are shown whole.
class WholeValues {
  public:
    WholeValues(const DumpContents& contents, std::uint32_t object, bool all)
        : contents_(contents),
          object_(object),
          all_(all),
          bytesLeft_(contents.file().size() + extraWholeBytes) {}

    [[nodiscard]] ValueBounds boundsOf(std::uint32_t property) {
        if (!all_) {
            return {};
        }
        const auto look = contents_.value(object_, property, 0);
        const std::uint64_t count = look ? look->byteCount : 0;
        if (count > bytesLeft_) {
            ++overlapping_;
            return {};
        }
        bytesLeft_ -= count;
        return ValueBounds::none();
    }
    /// Of those that were all to be shown whole, those that were not.
    [[nodiscard]] std::size_t overlapping() const noexcept { return overlapping_; }

  private:
    const DumpContents& contents_;
    std::uint32_t object_;
    bool all_;
    std::uint64_t bytesLeft_;
    std::size_t overlapping_ = 0;
};

std::string countText(std::size_t count) {
    return std::to_string(count) + (count == 1 ? " property" : " properties");
}

/// What stands for a value of the container's own that would take lines below the first; absent for
/// every other.
std::optional<std::string> containersOwn(const DumpContents& contents, std::uint32_t object,
                                         std::uint32_t property) {
    if (property >= firstNamed || !contents.propertyName(property).empty()) {
        return std::nullopt;
    }
    const auto value = contents.value(object, property, 0);
    if (!value || value->byteCount <= hexRowBytes) {
        return std::nullopt;
    }
    return std::to_string(value->byteCount) + " bytes of the container's own";
}

std::string objectTitle(const DumpContents& contents, std::uint32_t object, std::size_t count) {
    const std::string label = shownText(contents.classOf(object));
    return "Object " + std::to_string(object) + ", " +
           (label.empty() ? std::string("no class") : "class " + label) + ", " + countText(count);
}

}  // namespace

std::string propertyLabel(const DumpContents& contents, std::uint32_t property) {
    const std::string_view name = contents.propertyName(property);
    return name.empty() ? "property " + std::to_string(property)
                        : cutToCells(shownText(name), longestLabel);
}

void dumpObject(const DumpContents& contents, std::uint32_t object, bool all, DumpOutput& output) {
    const auto properties = contents.propertiesOf(object);
    const std::size_t shown = all ? properties.size() : std::min(properties.size(), mostProperties);
    std::vector<std::string> labels;
    std::size_t widest = 0;
    for (std::size_t i = 0; i < shown; ++i) {
        labels.push_back(propertyLabel(contents, properties[i]));
        widest = std::max(widest, std::min(displayWidth(labels.back()), widestName));
    }
    output.heading(objectTitle(contents, object, properties.size()));
    WholeValues whole(contents, object, all);
    for (std::size_t i = 0; i < shown; ++i) {
        const auto own = all ? std::nullopt : containersOwn(contents, object, properties[i]);
        const ValueText text =
            own ? ValueText{.line = *own, .isCut = true}
                : valueText(contents, object, properties[i], whole.boundsOf(properties[i]));
        const std::size_t width = displayWidth(labels[i]);
        const std::string padding(widest > width ? widest - width : 0, ' ');
        output.line(std::string(margin).append(labels[i]).append(padding).append("  ") + text.line);
        for (const std::string& row : text.listing) {
            output.line(std::string(margin).append(margin) + row);
        }
        if (text.isCut && whole.overlapping() == 0) {
            output.cut();
        }
    }
    if (whole.overlapping() > 0) {
        output.line(std::string(margin) + "values lie over one another: " +
                    std::to_string(whole.overlapping()) + " of them are shown in part");
    }
    if (shown < properties.size()) {
        output.line(std::string(margin) + "and " + std::to_string(properties.size() - shown) +
                    " more properties");
        output.cut();
    }
}

}  // namespace trellant::cli
