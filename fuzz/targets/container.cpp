// SPDX-License-Identifier: Apache-2.0
#include "memory_file.h"
#include "require.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/io/bento_container.h>
#include <trellant/io/errors.h>

#include <algorithm>
#include <array>
#include <set>
#include <utility>

namespace trellant::fuzzing {

namespace {

using Key = std::pair<std::uint32_t, std::uint32_t>;

/// Absent when there is no value or it cannot be read.
std::optional<Bytes> valueOf(const BentoContainer& container, const Key& key, std::int64_t limit) {
    try {
        return container.valueData(key.first, key.second, limit);
    } catch (const OMFIOError&) {
        return std::nullopt;
    }
}

void readSmall(const BentoContainer& container, const Key& key) {
    std::array<std::byte, 64> buffer{};
    const auto plain = valueOf(container, key, buffer.size());
    const auto small = container.smallValue(key.first, key.second, buffer);
    require(small.has_value() == plain.has_value(), "the fast path reads what the plain one reads");
    require(!plain || std::equal(small->begin(), small->end(), plain->begin(), plain->end()),
            "the fast path reads the same bytes");
}

void readNamed(const BentoContainer& container, const Key& key, std::string_view name,
               std::size_t itemCount) {
    require(isValidUTF8(name), "names are UTF-8");
    const auto number = container.propertyID(name);
    require(number && *number <= key.second && container.propertyName(*number) == name,
            "a name leads to the smallest number that carries it");
    require(container.valueSegments(key.first, name).size() <= itemCount,
            "a value has no more pieces than there are items");
    constexpr std::int64_t headBytes = 9;
    try {
        const auto head = container.valuePrefix(key.first, name, headBytes);
        require(!head || head->size() <= headBytes, "a head is no longer than asked for");
        const auto whole = valueOf(container, {key.first, *number}, BentoContainer::nameLimit);
        require(!whole || (head && head->size() <= whole->size() &&
                           std::equal(head->begin(), head->end(), whole->begin())),
                "the head of a value is its beginning");
    } catch (const OMFIOError&) {
        return;
    }
}

void walk(const BentoContainer& container) {
    const auto objects = container.objectIDs();
    require(std::is_sorted(objects.begin(), objects.end()), "objects ascend");
    std::set<Key> keys;
    const auto items = container.tableItems();
    for (const BentoTOCItem& item : items) {
        keys.emplace(item.object, item.property);
        static_cast<void>(container.typeName(item.type));
    }
    for (const Key& key : keys) {
        const auto index = container.objectIndex(key.first);
        require(index && objects[*index] == key.first, "each item's object is listed");
        require(!container.items(key.first, key.second).empty(), "each item is found again");
        readSmall(container, key);
        if (const auto name = container.propertyName(key.second)) {
            readNamed(container, key, *name, items.size());
        }
    }
}

}  // namespace

void runContainer(ByteView input) {
    const MemoryFile file(input);
    try {
        walk(BentoContainer(file.path()));
    } catch (const OMFIOError& error) {
        require(isValidUTF8(error.errorDescription()), "errors are texts");
    }
}

}  // namespace trellant::fuzzing
