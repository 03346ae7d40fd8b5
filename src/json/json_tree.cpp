// SPDX-License-Identifier: Apache-2.0
#include <trellant/json/json_tree.h>

#include <array>
#include <string_view>

namespace trellant {

std::string_view JsonTree::kind() const noexcept {
    static constexpr std::array<std::string_view, 6> kinds{"null",     "a boolean", "a number",
                                                           "a string", "an array",  "an object"};
    return kinds.at(value.index());
}

namespace jsonDecoding {

namespace {

/// What `tree` holds becomes a `Container` if it is none yet.
template <class Container>
Container& containerOf(JsonTree& tree) {
    if (tree.depth >= JsonTree::deepest) {
        throw ValueFault{"arrays and objects nest too deeply"};
    }
    if (!std::holds_alternative<Container>(tree.value)) {
        tree.value = Container{};
    }
    return std::get<Container>(tree.value);
}

}  // namespace

ValueSlot elementOfTree(void* target) {
    JsonTree& tree = *static_cast<JsonTree*>(target);
    JsonTree& element = containerOf<JsonTree::Array>(tree).emplace_back();
    element.depth = tree.depth + 1;
    return slotOf(element);
}

ValueSlot memberOfTree(Frame& frame, std::string_view key) {
    JsonTree& tree = *static_cast<JsonTree*>(frame.target);
    JsonTree::Member& member = containerOf<JsonTree::Object>(tree).emplace_back();
    member.key = key;
    member.value.depth = tree.depth + 1;
    frame.key = member.key;
    return slotOf(member.value);
}

void endTreeObject(Frame& frame) {
    static_cast<void>(containerOf<JsonTree::Object>(*static_cast<JsonTree*>(frame.target)));
}

}  // namespace jsonDecoding

}  // namespace trellant
