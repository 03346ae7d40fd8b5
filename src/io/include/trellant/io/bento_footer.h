// SPDX-License-Identifier: Apache-2.0
// The end of a container: where its table of contents lies and how it is written, and everything
// that can be wrong with saying so. The layout stands in bento_footer.cpp.
#pragma once

#include <trellant/base/bytes.h>
#include <trellant/io/bento_types.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

inline constexpr std::size_t bentoFooterSize = 24;
/// Bytes of the standard footer and the extended one before it.
inline constexpr std::size_t bentoTailSize = 48;
/// Cap in bytes of the table of contents, which is read whole.
inline constexpr std::uint64_t bentoTocLimit = 536'870'912;

/// One thing that is wrong with a footer.
struct BentoFooterFault {
    /// There are not as many bytes as a footer has.
    struct TooShort {
        bool operator==(const TooShort&) const = default;
    };
    struct NoSignature {
        bool operator==(const NoSignature&) const = default;
    };
    /// The major version, read as little-endian, is neither 1 nor 2 in any byte order.
    struct UnknownVersion {
        std::uint16_t marker;
        bool operator==(const UnknownVersion&) const = default;
    };
    /// The footer asks for an extended one, and something else stands before it.
    struct NoExtendedFooter {
        bool operator==(const NoExtendedFooter&) const = default;
    };
    /// The table has no bytes.
    struct NoTable {
        bool operator==(const NoTable&) const = default;
    };
    /// The table begins at this byte of the file, not before the footer.
    struct TableBeginsLate {
        std::uint64_t offset;
        bool operator==(const TableBeginsLate&) const = default;
    };
    /// The table ends so many bytes behind the footer's begin.
    struct TableEndsLate {
        std::uint64_t byteCount;
        bool operator==(const TableEndsLate&) const = default;
    };
    using Kind = std::variant<TooShort, NoSignature, UnknownVersion, NoExtendedFooter, NoTable,
                              TableBeginsLate, TableEndsLate>;
};

/// A footer as far as it makes sense.
struct BentoFooterReading {
    /// What it says, unchecked; absent when its numbers cannot be read.
    std::optional<BentoFooter> footer;
    /// In the order in which a reader meets them; empty when all is well.
    std::vector<BentoFooterFault::Kind> faults;
};

/// Reads the footer that `tail` ends with: the 48 bytes before the file's byte `end`, or all of
/// them where there are fewer.
[[nodiscard]] BentoFooterReading readBentoFooter(ByteView tail, std::uint64_t end);

/// The position of the last footer's signature in `bytes`; absent without one, and when fewer bytes
/// than a footer has follow it.
[[nodiscard]] std::optional<std::size_t> lastBentoFooter(ByteView bytes);

/// The footer that the file's last bytes hold. `tail` is the last 48 bytes of the file, or the
/// whole of a shorter one; `fileSize` its length in bytes. The table's place has been checked: it
/// ends at or before the footer. Throws OMFIOError for the first fault.
[[nodiscard]] BentoFooter decodeBentoFooter(ByteView tail, std::uint64_t fileSize);

}  // namespace trellant
