// SPDX-License-Identifier: Apache-2.0
#include "memory_file.h"

#include <cerrno>
#include <sys/mman.h>
#include <system_error>
#include <unistd.h>

namespace trellant::fuzzing {

MemoryFile::MemoryFile(ByteView bytes) : descriptor_(::memfd_create("input", MFD_CLOEXEC)) {
    if (descriptor_ < 0) {
        throw std::system_error(errno, std::generic_category(), "memfd_create");
    }
    path_ = "/proc/self/fd/" + std::to_string(descriptor_);
    while (!bytes.empty()) {
        const auto written = ::write(descriptor_, bytes.data(), bytes.size());
        if (written < 0) {
            const int reason = errno;
            ::close(descriptor_);
            throw std::system_error(reason, std::generic_category(), "write");
        }
        bytes = bytes.subspan(static_cast<std::size_t>(written));
    }
}

MemoryFile::~MemoryFile() {
    ::close(descriptor_);
}

}  // namespace trellant::fuzzing
