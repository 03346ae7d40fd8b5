// SPDX-License-Identifier: Apache-2.0
// Files of tests that were written to memory: whole, or with long stretches of one pattern only
// noted down.
#pragma once

#include <trellant/base/bytes.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace trellant::testing {

/// A file to read from any place.
class FileImage {
  public:
    FileImage() = default;
    virtual ~FileImage() = default;
    FileImage(const FileImage&) = delete;
    FileImage& operator=(const FileImage&) = delete;
    FileImage(FileImage&&) = delete;
    FileImage& operator=(FileImage&&) = delete;

    [[nodiscard]] virtual std::uint64_t size() const = 0;
    /// Fills `into` from `offset` on. What lies beyond the end reads as FF.
    virtual void read(std::uint64_t offset, std::span<std::byte> into) const = 0;
};

class MemoryImage final : public FileImage {
  public:
    void append(ByteView bytes) { bytes_.insert(bytes_.end(), bytes.begin(), bytes.end()); }
    [[nodiscard]] std::uint64_t size() const override { return bytes_.size(); }
    void read(std::uint64_t offset, std::span<std::byte> into) const override;

    [[nodiscard]] Bytes& bytes() noexcept { return bytes_; }
    [[nodiscard]] const Bytes& bytes() const noexcept { return bytes_; }

  private:
    Bytes bytes_;
};

/// Keeps pieces that are part of `pattern` (the very bytes, not bytes like these) as places, so
/// that gigabytes take no room.
class SparseImage final : public FileImage {
  public:
    explicit SparseImage(ByteView pattern) : pattern_(pattern) {}

    void append(ByteView bytes);
    [[nodiscard]] std::uint64_t size() const override { return size_; }
    void read(std::uint64_t offset, std::span<std::byte> into) const override;
    /// Bytes that are really held.
    [[nodiscard]] std::size_t heldBytes() const noexcept { return held_.size(); }

  private:
    struct Piece {
        std::uint64_t offset;
        std::size_t length;
        bool ofPattern;
        /// In the pattern or in held_.
        std::size_t place;
    };

    ByteView pattern_;
    Bytes held_;
    std::vector<Piece> pieces_;
    std::uint64_t size_ = 0;
};

}  // namespace trellant::testing
