// SPDX-License-Identifier: Apache-2.0
#include <limits>
#include <trellant_testing/object_builder.h>
#include <utility>

namespace trellant::testing {

ByteWriter ObjectBuilder::number() const {
    return ByteWriter(order_);
}

ObjectBuilder& ObjectBuilder::int16(std::string_view property, std::int16_t value) {
    return bytes(property, number().u16(static_cast<std::uint16_t>(value)).written());
}

ObjectBuilder& ObjectBuilder::int32(std::string_view property, std::int32_t value) {
    return uint32(property, static_cast<std::uint32_t>(value));
}

ObjectBuilder& ObjectBuilder::uint32(std::string_view property, std::uint32_t value) {
    return bytes(property, number().u32(value).written());
}

ObjectBuilder& ObjectBuilder::int64(std::string_view property, std::int64_t value) {
    return bytes(property, number().u64(static_cast<std::uint64_t>(value)).written());
}

ObjectBuilder& ObjectBuilder::position(std::string_view property, std::int64_t value) {
    const bool fits = value >= std::numeric_limits<std::int32_t>::min() &&
                      value <= std::numeric_limits<std::int32_t>::max();
    return fits ? int32(property, static_cast<std::int32_t>(value)) : int64(property, value);
}

ObjectBuilder& ObjectBuilder::rational(std::string_view property, Ratio value) {
    return bytes(property, number()
                               .u32(static_cast<std::uint32_t>(value.numerator))
                               .u32(static_cast<std::uint32_t>(value.denominator))
                               .written());
}

ObjectBuilder& ObjectBuilder::uid(std::string_view property, MobID value) {
    return bytes(property, number().u32(value.a).u32(value.b).u32(value.c).written());
}

ObjectBuilder& ObjectBuilder::string(std::string_view property, std::string_view text) {
    return bytes(property, number().text(text).u8(0).written());
}

ObjectBuilder& ObjectBuilder::bytes(std::string_view property, Bytes value) {
    container_->set(id_, property, std::move(value));
    return *this;
}

ObjectBuilder& ObjectBuilder::ref(std::string_view property, ObjectID target) {
    container_->setReference(id_, property, target, order_);
    return *this;
}

ObjectBuilder& ObjectBuilder::refs(std::string_view property,
                                   const std::vector<ObjectID>& targets) {
    container_->setReferences(id_, property, targets, order_);
    return *this;
}

ObjectBuilder& ObjectBuilder::without(std::string_view property) {
    container_->remove(id_, property);
    return *this;
}

}  // namespace trellant::testing
