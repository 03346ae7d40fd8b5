// SPDX-License-Identifier: Apache-2.0
// One object of a document under construction, its properties set by name in the document's byte
// order. A handle: cheap to copy, and an object number wherever one is wanted.
#pragma once

#include <cstdint>
#include <string_view>
#include <trellant_testing/byte_writer.h>
#include <trellant_testing/container_builder.h>
#include <vector>

namespace trellant::testing {

struct MobID {
    std::uint32_t a = 0;
    std::uint32_t b = 0;
    std::uint32_t c = 0;
    bool operator==(const MobID&) const = default;
};

struct Ratio {
    std::int32_t numerator = 0;
    std::int32_t denominator = 1;
};

class ObjectBuilder {
  public:
    ObjectBuilder(ContainerBuilder& container, ObjectID id, OMFByteOrder order)
        : container_(&container), id_(id), order_(order) {}

    [[nodiscard]] ObjectID id() const noexcept { return id_; }
    // An object stands for its number wherever one is wanted.
    operator ObjectID() const noexcept { return id_; }

    ObjectBuilder& int16(std::string_view property, std::int16_t value);
    ObjectBuilder& int32(std::string_view property, std::int32_t value);
    ObjectBuilder& uint32(std::string_view property, std::uint32_t value);
    ObjectBuilder& int64(std::string_view property, std::int64_t value);
    /// A length or position: 4 bytes where they suffice, as files have it, else 8.
    ObjectBuilder& position(std::string_view property, std::int64_t value);
    ObjectBuilder& rational(std::string_view property, Ratio value);
    ObjectBuilder& uid(std::string_view property, MobID value);
    /// With the closing zero byte.
    ObjectBuilder& string(std::string_view property, std::string_view text);
    ObjectBuilder& bytes(std::string_view property, Bytes value);
    ObjectBuilder& ref(std::string_view property, ObjectID target);
    ObjectBuilder& refs(std::string_view property, const std::vector<ObjectID>& targets);
    ObjectBuilder& without(std::string_view property);

  private:
    [[nodiscard]] ByteWriter number() const;

    ContainerBuilder* container_;
    ObjectID id_;
    OMFByteOrder order_;
};

}  // namespace trellant::testing
