// SPDX-License-Identifier: Apache-2.0
#include "dump_values.h"

#include "dump_bytes.h"
#include "dump_value_kind.h"
#include "terminal/shown_text.h"

#include <algorithm>
#include <optional>

namespace trellant::cli {

namespace {

constexpr std::size_t longestReferences = 16'777'216;
/// Bytes of a reference of OMF 1.x, and of an identifier.
constexpr std::size_t olderReference = 8;
constexpr std::size_t identifier = 12;

ValueText bytesText(const ValueLook& look) {
    const bool isWhole = look.head.size() == look.byteCount;
    if (isWhole && look.head.empty()) {
        return {.line = "empty"};
    }
    if (isWhole && look.head.size() <= hexRowBytes) {
        return {.line = hexAndText(look.head)};
    }
    ValueText text{.line = std::to_string(look.byteCount) + " bytes"};
    if (look.pieces > 1) {
        text.line += " in " + std::to_string(look.pieces) + " pieces";
    }
    if (look.leavesFile) {
        text.line += ", not all of them in the file";
    }
    if (!isWhole && !look.head.empty()) {
        text.line += ", the first " + std::to_string(look.head.size());
    }
    text.line += look.head.empty() ? "" : ":";
    text.listing = hexListing(look.head);
    text.isCut = !isWhole && !look.leavesFile;
    return text;
}

std::string classLabel(const DumpContents& contents, std::uint32_t object) {
    if (!contents.has(object)) {
        return "not in the file";
    }
    const std::string label = shownText(contents.classOf(object));
    return label.empty() ? "no class" : label;
}

/// The object that a reference's bytes mean; absent when they are none. Those of OMF 1.x are in the
/// container's byte order and end with a word of zero.
std::optional<std::uint32_t> targetOf(const DumpContents& contents, ByteView bytes) {
    if (contents.model() != ObjectModel::omf1) {
        return bytes.size() == 4 ? std::optional(u32(bytes, 0, contents.valueOrder()))
                                 : std::nullopt;
    }
    const OMFByteOrder order = contents.footer().footer->byteOrder;
    return bytes.size() == olderReference && u32(bytes, 4, order) == 0
               ? std::optional(u32(bytes, 0, order))
               : std::nullopt;
}

std::optional<std::string> referenceText(const DumpContents& contents, ByteView bytes) {
    const auto found = targetOf(contents, bytes);
    if (!found) {
        return std::nullopt;
    }
    const std::uint32_t target = *found;
    return target == 0 ? "no object"
                       : "object " + std::to_string(target) + ", " + classLabel(contents, target);
}

ValueText textText(const ValueLook& look, OMFByteOrder order) {
    ValueText text{.line = "\"" + storedText(look.head, order) + "\""};
    if (look.head.size() < look.byteCount) {
        text.line += " and more, " + std::to_string(look.byteCount) + " bytes in all";
        text.isCut = true;
    }
    return text;
}

/// The entries of a list of OMF 1.x, `entryBytes` each, behind their count; absent when the bytes
/// are no such list.
std::optional<std::size_t> olderEntries(const DumpContents& contents, const ValueLook& look,
                                        std::size_t entryBytes) {
    if (look.head.size() != look.byteCount || look.head.size() < 2) {
        return std::nullopt;
    }
    const std::size_t count = u16(look.head, 0, contents.valueOrder());
    return look.head.size() == 2 + count * entryBytes ? std::optional(count) : std::nullopt;
}

std::optional<std::vector<std::uint32_t>> olderListOf(const DumpContents& contents,
                                                      const ValueLook& look) {
    const auto count = olderEntries(contents, look, olderReference);
    if (!count) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> references;
    for (std::size_t i = 0; i < *count; ++i) {
        const ByteView entry = ByteView(look.head).subspan(2 + i * olderReference, olderReference);
        references.push_back(targetOf(contents, entry).value_or(0));
    }
    return references;
}

/// "2 mobs: 0000002A-00000001-FFFFFFFF 12 MOBJ, ..."
std::optional<ValueText> mobIndexText(const DumpContents& contents, const ValueLook& look,
                                      std::size_t most) {
    constexpr std::size_t entryBytes = identifier + olderReference;
    const auto count = olderEntries(contents, look, entryBytes);
    if (!count) {
        return std::nullopt;
    }
    ValueText text{.line = std::to_string(*count) + (*count == 1 ? " mob" : " mobs")};
    for (std::size_t i = 0; i < std::min(*count, most); ++i) {
        const ByteView entry = ByteView(look.head).subspan(2 + i * entryBytes, entryBytes);
        const auto target = targetOf(contents, entry.subspan(identifier));
        text.line += (i == 0 ? ": " : ", ") +
                     *plainText(ValueKind::uid, entry.first(identifier), contents.valueOrder()) +
                     " " +
                     (target ? std::to_string(*target) + " " + classLabel(contents, *target)
                             : std::string("no object"));
    }
    if (*count > most) {
        text.line += " and " + std::to_string(*count - most) + " more";
        text.isCut = true;
    }
    return text;
}

/// Every reference in a list's bytes, those to none too; absent when the bytes are no list.
std::optional<std::vector<std::uint32_t>> listOf(const DumpContents& contents,
                                                 const ValueLook& look) {
    if (contents.model() == ObjectModel::omf1) {
        return olderListOf(contents, look);
    }
    const OMFByteOrder order = contents.valueOrder();
    if (look.head.size() != look.byteCount || look.head.size() < 2) {
        return std::nullopt;
    }
    const std::size_t counted = std::size_t{u16(look.head, 0, order)} * 4;
    const std::size_t first = counted == look.head.size() - 2 ? 2 : 0;
    if ((look.head.size() - first) % 4 != 0) {
        return std::nullopt;
    }
    std::vector<std::uint32_t> references;
    for (std::size_t place = first; place < look.head.size(); place += 4) {
        references.push_back(u32(look.head, static_cast<std::int64_t>(place), order));
    }
    return references;
}

ValueText referencesText(const DumpContents& contents, const std::vector<std::uint32_t>& targets,
                         std::size_t most) {
    const auto nones = static_cast<std::size_t>(std::count(targets.begin(), targets.end(), 0U));
    const std::size_t count = targets.size() - nones;
    ValueText text{.line = std::to_string(count) + (count == 1 ? " object" : " objects")};
    std::size_t shown = 0;
    for (const std::uint32_t target : targets) {
        if (target == 0 || shown == most) {
            continue;
        }
        text.line += (shown++ == 0 ? ": " : ", ") + std::to_string(target) + " " +
                     classLabel(contents, target);
    }
    if (shown < count) {
        text.line += " and " + std::to_string(count - shown) + " more";
        text.isCut = true;
    }
    if (nones > 0) {
        text.line += ", " + std::to_string(nones) + " to none";
    }
    return text;
}

ValueKind kindOf(const DumpContents& contents, std::uint32_t object, std::uint32_t property) {
    if (property == bentoTypeNameProperty || property == bentoPropertyNameProperty) {
        return ValueKind::text;
    }
    const auto type = contents.typeOf(object, property);
    return valueKind(type ? contents.typeName(*type) : std::string_view(),
                     contents.propertyName(property));
}

}  // namespace

ValueText valueText(const DumpContents& contents, std::uint32_t object, std::uint32_t property,
                    const ValueBounds& bounds) {
    const ValueKind kind = kindOf(contents, object, property);
    if (kind == ValueKind::references) {
        if (const auto look = contents.value(object, property, longestReferences)) {
            if (const auto list = listOf(contents, *look)) {
                return referencesText(contents, *list, bounds.references);
            }
        }
    }
    if (kind == ValueKind::mobIndex) {
        const auto look = contents.value(object, property, longestReferences);
        if (auto text = look ? mobIndexText(contents, *look, bounds.references) : std::nullopt) {
            return *std::move(text);
        }
    }
    const ValueLook look = contents.value(object, property, bounds.bytes).value_or(ValueLook{});
    if (look.leavesFile) {
        return bytesText(look);
    }
    if (kind == ValueKind::text) {
        return textText(look, contents.valueOrder());
    }
    if (look.head.size() == look.byteCount) {
        auto text = kind == ValueKind::reference
                        ? referenceText(contents, look.head)
                        : plainText(kind, look.head, contents.valueOrder());
        if (text) {
            return {.line = std::move(*text)};
        }
    }
    return bytesText(look);
}

std::vector<std::uint32_t> referencesOf(const DumpContents& contents, std::uint32_t object,
                                        std::uint32_t property) {
    const ValueKind kind = kindOf(contents, object, property);
    if (kind != ValueKind::reference && kind != ValueKind::references) {
        return {};
    }
    const auto look = contents.value(object, property, longestReferences);
    std::vector<std::uint32_t> targets;
    if (look && kind == ValueKind::reference && look->head.size() >= 4) {
        targets.push_back(contents.model() == ObjectModel::omf1
                              ? targetOf(contents, look->head).value_or(0)
                              : u32(look->head, 0, contents.valueOrder()));
    } else if (look && kind == ValueKind::references) {
        targets = listOf(contents, *look).value_or(std::vector<std::uint32_t>());
    }
    targets.erase(std::remove(targets.begin(), targets.end(), 0U), targets.end());
    return targets;
}

}  // namespace trellant::cli
