// SPDX-License-Identifier: Apache-2.0
// A strict reader of compound files of version 4. It knows the format from its rules and nothing of
// the code that writes such files, and notes down whatever breaks a rule: chains that cross or
// leave the file, sectors that belong to nothing, trees of siblings that are no red-black trees in
// order, marks and paddings that are not as they have to be.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <trellant_testing/file_image.h>
#include <vector>

namespace trellant::testing {

struct StoredEntry {
    enum class Type : std::uint8_t { unused = 0, storage = 1, stream = 2, root = 5 };

    Type type = Type::unused;
    std::u16string name{};
    std::array<std::byte, 16> classID{};
    bool isBlack = false;
    std::uint32_t left = 0;
    std::uint32_t right = 0;
    std::uint32_t child = 0;
    std::uint32_t firstSector = 0;
    std::uint64_t size = 0;
    /// Of a storage: what it holds, in order.
    std::vector<std::uint32_t> members{};
};

class CompoundReader {
  public:
    /// Reads all but the contents of streams. `image` has to outlive the reader.
    explicit CompoundReader(const FileImage& image);

    /// What breaks a rule; empty for a faultless file.
    [[nodiscard]] const std::vector<std::string>& problems() const noexcept { return problems_; }
    /// By number; the root is the first.
    [[nodiscard]] const std::vector<StoredEntry>& entries() const noexcept { return entries_; }
    /// The entry of this very name in a storage.
    [[nodiscard]] std::optional<std::uint32_t> find(std::uint32_t storage,
                                                    std::u16string_view name) const;
    [[nodiscard]] Bytes content(std::uint32_t stream) const;
    /// At most `count` bytes of a stream from `offset` on.
    [[nodiscard]] Bytes content(std::uint32_t stream, std::uint64_t offset,
                                std::size_t count) const;

    [[nodiscard]] std::array<std::byte, 16> headerClass() const noexcept { return headerClass_; }
    [[nodiscard]] std::uint32_t fatSectors() const noexcept { return fatSectors_; }
    [[nodiscard]] std::uint32_t difatSectors() const noexcept { return difatSectors_; }
    /// How deep the tree of a storage's members is: 0 without members.
    [[nodiscard]] unsigned depthOf(std::uint32_t storage) const;

  private:
    void check(bool holds, const std::string& problem);
    void readHeader();
    void readFAT();
    void listFATSectors(std::vector<std::uint32_t>& sectors);
    void readDirectory();
    void parseEntry(std::uint32_t number, ByteView stored);
    void checkUnused(std::uint32_t number, ByteView stored);
    void readMiniFAT();
    void checkTrees();
    unsigned walkTree(std::uint32_t number, bool parentIsRed, std::vector<std::uint32_t>& inOrder);
    void checkStreams();
    void checkMiniStreams();
    void checkEverySectorIsUsed();

    /// The sectors of a chain, each marked as used.
    std::vector<std::uint32_t> claimChain(std::uint32_t first, const std::string& owner);
    void claim(std::uint32_t sector, const std::string& owner);
    [[nodiscard]] Bytes sector(std::uint32_t number) const;
    void checkPadding(std::uint32_t stream, ByteView lastUnit);

    const FileImage& image_;
    std::vector<std::string> problems_;
    Bytes header_;
    std::array<std::byte, 16> headerClass_{};
    std::uint32_t sectorCount_ = 0;
    std::uint32_t fatSectors_ = 0;
    std::uint32_t difatSectors_ = 0;
    std::vector<std::uint32_t> fat_;
    std::vector<bool> used_;
    std::vector<StoredEntry> entries_;
    std::vector<bool> visited_;
    std::vector<std::uint32_t> miniFAT_;
    std::vector<std::uint32_t> miniStreamSectors_;
};

}  // namespace trellant::testing
