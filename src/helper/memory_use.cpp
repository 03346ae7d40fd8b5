// SPDX-License-Identifier: Apache-2.0
#include "memory_use.h"

#include <array>
#include <charconv>
#include <fcntl.h>
#include <limits>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace trellant {

MemoryUse MemoryUse::ofProcess() {
    MemoryUse use;
    use.status_ = FileDescriptor(::open("/proc/self/status", O_RDONLY | O_CLOEXEC));
    return use;
}

std::optional<std::int64_t> MemoryUse::peak() const {
    constexpr std::string_view line = "\nVmHWM:";
    constexpr std::int64_t kibibyte = 1'024;
    if (!status_.isOpen()) {
        return std::nullopt;
    }
    std::array<char, 4'096> text{};
    const auto count = ::read(status_.number(), text.data(), text.size());
    const std::string_view status(text.data(), count > 0 ? static_cast<std::size_t>(count) : 0);
    std::size_t at = status.find(line);
    at = at == std::string_view::npos ? at : status.find_first_of("0123456789", at);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    std::int64_t kibibytes = 0;
    const auto [end, failure] =
        std::from_chars(status.data() + at, status.data() + status.size(), kibibytes);
    if (failure != std::errc() || kibibytes > std::numeric_limits<std::int64_t>::max() / kibibyte) {
        return std::nullopt;
    }
    return kibibytes * kibibyte;
}

}  // namespace trellant
