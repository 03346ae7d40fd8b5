// SPDX-License-Identifier: Apache-2.0
// A strict reader of ZIP archives for tests.
#pragma once

#include <trellant/base/bytes.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace trellant::testing {

struct ZipMember {
    std::string name{};
    bool isDeflated = false;
    bool isNameUtf8 = false;
    std::uint32_t dosDate = 0;
    std::uint32_t attributes = 0;
    std::uint64_t byteCount = 0;
    std::uint64_t packedByteCount = 0;
    /// Where its packed bytes lie.
    std::uint64_t dataOffset = 0;
    std::uint32_t checksum = 0;
};

/// An archive where its bytes lie: `read` gives `count` of them from `offset` on.
struct ZipBytes {
    std::uint64_t byteCount = 0;
    std::function<Bytes(std::uint64_t offset, std::uint64_t count)> read{};
};
[[nodiscard]] ZipBytes zipBytes(const Bytes& archive);

/// The members in the order of the archive's list. Throws std::runtime_error where list, headers
/// and lengths do not agree, or where bytes lie between members that belong to none.
[[nodiscard]] std::vector<ZipMember> zipMembers(const ZipBytes& archive);

/// What is in the member. Throws std::runtime_error where length or checksum do not agree.
[[nodiscard]] std::string zipContent(const ZipBytes& archive, const ZipMember& member);

/// The same of the one member of this name.
[[nodiscard]] std::string zipContent(const Bytes& archive, const std::string& name);

}  // namespace trellant::testing
