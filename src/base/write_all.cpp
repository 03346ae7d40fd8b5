// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/write_all.h>

#include <cerrno>
#include <poll.h>
#include <unistd.h>

namespace trellant {

int writeAll(int descriptor, ByteView bytes, WhenFull whenFull) noexcept {
    while (!bytes.empty()) {
        const ssize_t written = ::write(descriptor, bytes.data(), bytes.size());
        if (written > 0) {
            bytes = bytes.subspan(static_cast<std::size_t>(written));
        } else if (written == 0) {
            // Nothing was refused and nothing taken: trying again could go on for ever.
            return EIO;
        } else if (errno == EAGAIN && whenFull == WhenFull::wait) {
            pollfd room{.fd = descriptor, .events = POLLOUT, .revents = 0};
            ::poll(&room, 1, -1);
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

}  // namespace trellant
