// SPDX-License-Identifier: Apache-2.0
// A ZIP archive, written member by member: the same members and the same date give the same bytes.
// Members beyond 4 GiB, and archives of them, are written in the form for large files.
#pragma once

#include <trellant/compound/byte_source.h>
#include <trellant/sessions/session.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace trellant::sessions {

class ZipArchive {
  public:
    enum class Packing { stored, deflated };

    /// `sink` must outlive the archive. `date`: seconds since 1970-01-01 00:00:00 UTC, of all
    /// members; an archive counts in UTC here, in steps of two seconds, from 1980 to 2107.
    ZipArchive(const PlacedSink& sink, std::int64_t date);
    /// What was not finished stays as it is.
    ~ZipArchive();
    ZipArchive(const ZipArchive&) = delete;
    ZipArchive& operator=(const ZipArchive&) = delete;
    ZipArchive(ZipArchive&&) = delete;
    ZipArchive& operator=(ZipArchive&&) = delete;

    /// `name` is UTF-8 with "/" between folders, at most 65,535 bytes. `mostBytes`: `source` gives
    /// no more than these. Throws SystemCallError where it does, and for the 65,535th member.
    void add(const std::string& name, Packing packing, std::uint64_t mostBytes,
             const compound::ByteSource& source);
    /// The first `byteCount` bytes of the file at `path` as they are, in constant memory. Throws
    /// SystemCallError, also where the file has fewer.
    void addFile(const std::string& name, const std::string& path, std::uint64_t byteCount);
    /// Writes the list of members; nothing is added afterwards.
    void finish();

  private:
    struct Output;

    /// Throws what the sink threw, or SystemCallError, if `result` is a failure.
    void check(int result) const;

    std::unique_ptr<Output> output_;
    void* zip_ = nullptr;
    std::uint32_t dosDate_ = 0;
    std::size_t memberCount_ = 0;
};

}  // namespace trellant::sessions
