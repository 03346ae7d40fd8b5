// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/large_pages.h>

#include <bit>
#include <cstdint>
#include <sys/mman.h>
#include <unistd.h>

namespace trellant {

void preferLargePages([[maybe_unused]] std::span<std::byte> memory) noexcept {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t smallestWorthwhile = 8'388'608;
    if (memory.size() < smallestWorthwhile) {
        return;
    }
    // All pages that `memory` touches: a large allocation is a mapping of its own, and one that is
    // advised in part falls apart into several, which can then not be moved as one when it grows.
    const auto pageSize = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
    const std::size_t before = std::bit_cast<std::uintptr_t>(memory.data()) % pageSize;
    const std::size_t pages = (before + memory.size() + pageSize - 1) / pageSize;
    // Refused where the kernel has none: everything works as well then, only slower.
    static_cast<void>(::madvise(memory.data() - before, pages * pageSize, MADV_HUGEPAGE));
#endif
}

}  // namespace trellant
