#include "large_pages.h"

#include <memory>
#include <sys/mman.h>

namespace trellant {

void preferLargePages([[maybe_unused]] std::span<std::byte> memory) noexcept {
#ifdef MADV_HUGEPAGE
    constexpr std::size_t smallestWorthwhile = 8'388'608;
    constexpr std::size_t largePage = 2'097'152;
    if (memory.size() < smallestWorthwhile) {
        return;
    }
    void* start = memory.data();
    std::size_t room = memory.size();
    if (std::align(largePage, largePage, start, room) != nullptr) {
        // Refused where the kernel has none: everything works as well then, only slower.
        static_cast<void>(::madvise(start, room / largePage * largePage, MADV_HUGEPAGE));
    }
#endif
}

}  // namespace trellant
