// SPDX-License-Identifier: Apache-2.0
// JSON as it stands, for documents that people write by hand: there an unknown key is a mistake to
// be named, which a record passes over. decodeJson<JsonTree> reads one.
#pragma once

#include <trellant/json/json_value_ops.h>

#include <cstddef>
#include <string>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

struct JsonTree {
    /// Arrays and objects within one another; more is an error of the text.
    static constexpr std::size_t deepest = 8;

    struct Member;
    using Array = std::vector<JsonTree>;
    /// In the order of the text; equal keys stand there as often as they are written.
    using Object = std::vector<Member>;

    /// Nothing stands for null, and for an array without elements.
    std::variant<std::monostate, bool, double, std::string, Array, Object> value{};
    /// Arrays and objects around this.
    std::size_t depth = 0;

    /// "an object", "null": what a message says was found.
    [[nodiscard]] std::string_view kind() const noexcept;
};

struct JsonTree::Member {
    std::string key{};
    JsonTree value{};
};

namespace jsonDecoding {

[[nodiscard]] ValueSlot elementOfTree(void* target);
[[nodiscard]] ValueSlot memberOfTree(Frame& frame, std::string_view key);
void endTreeObject(Frame& frame);

template <>
struct OpsOf<JsonTree> {
    static constexpr ValueOps make() {
        return {.expected = "a value",
                .setNull = [](void* target) { tree(target).value = std::monostate{}; },
                .setBoolean = [](void* target, bool value) { tree(target).value = value; },
                .setNumber =
                    [](void* target, const JsonNumber& number) {
                        tree(target).value = number.doubleValue();
                    },
                .setString = [](void* target,
                                std::string_view text) { tree(target).value = std::string(text); },
                .element = elementOfTree,
                .member = memberOfTree,
                .endObject = endTreeObject};
    }

  private:
    static JsonTree& tree(void* target) { return *static_cast<JsonTree*>(target); }
};

}  // namespace jsonDecoding

}  // namespace trellant
