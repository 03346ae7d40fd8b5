// SPDX-License-Identifier: Apache-2.0
// Files that stood in the folder before, among those that bear the numbers of one name: which of
// them has the bytes of a new file. Each is looked at once and read at most once, however many new
// files are compared with it.
#pragma once

#include <trellant/base/keyed_hash.h>

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>

namespace trellant {

class StandingFiles {
  public:
    /// The digest of the file at a path. Throws FileSystemError for one that cannot be read.
    using Digest = std::function<std::string(const std::string& path)>;

    explicit StandingFiles(Digest digest) : digest_(std::move(digest)) {}

    /// A file of so many bytes with that number of the series (FreeNumbers::series).
    void add(const std::string& series, std::uint64_t number, std::string path, std::uint64_t size);

    /// The lowest number from `first` on whose file in the series has these bytes. Reads
    /// those of that size that were not read before, as far as it must; one that cannot be read has
    /// no bytes like others. What the digest throws beside FileSystemError comes out.
    [[nodiscard]] std::optional<std::uint64_t> find(const std::string& series, std::uint64_t first,
                                                    std::uint64_t size, const std::string& digest);

    /// It is somebody's now and found no more.
    void take(const std::string& series, std::uint64_t number, std::uint64_t size,
              const std::string& digest);

  private:
    struct OfOneSize {
        /// Paths by number.
        std::map<std::uint64_t, std::string> unread{};
        KeyedMap<std::string, std::set<std::uint64_t>> numbersByDigest{};
    };

    void read(OfOneSize& files, std::map<std::uint64_t, std::string>::iterator file);
    [[nodiscard]] static std::string keyOf(const std::string& series, std::uint64_t size);

    Digest digest_;
    KeyedMap<std::string, OfOneSize> files_;
};

}  // namespace trellant
