// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/file_room.h>

#include <fcntl.h>

namespace trellant {

void makeFileRoom([[maybe_unused]] int descriptor, [[maybe_unused]] std::uint64_t from,
                  [[maybe_unused]] std::uint64_t length) noexcept {
#ifdef __linux__
    static_cast<void>(::fallocate(descriptor, FALLOC_FL_KEEP_SIZE, static_cast<off_t>(from),
                                  static_cast<off_t>(length)));
#endif
}

}  // namespace trellant
