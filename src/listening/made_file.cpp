// SPDX-License-Identifier: Apache-2.0
#include "made_file.h"

#include <trellant/io/errors.h>
#include <trellant/io/random_access_file.h>

#include <unistd.h>

namespace trellant::listening {

namespace {

std::optional<Bytes> readFile(const std::string& path, std::uint64_t mostBytes) {
    try {
        const RandomAccessFile file(path);
        if (file.size() > mostBytes) {
            return std::nullopt;
        }
        return file.read(0, static_cast<std::int64_t>(file.size()));
    } catch (const FileSystemError&) {
        return std::nullopt;
    } catch (const OMFIOError&) {
        return std::nullopt;
    }
}

}  // namespace

std::optional<Bytes> takenFile(const std::string& path, std::uint64_t mostBytes) {
    auto bytes = readFile(path, mostBytes);
    ::unlink(path.c_str());
    return bytes;
}

}  // namespace trellant::listening
