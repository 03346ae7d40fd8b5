// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/system_call_error.h>
#include <trellant/sessions/session.h>

#include <cerrno>
#include <limits>
#include <unistd.h>

namespace trellant::sessions {

PlacedSink descriptorPlacedSink(int descriptor) {
    return [descriptor](std::uint64_t offset, ByteView bytes) {
        constexpr auto mostOffset = static_cast<std::uint64_t>(std::numeric_limits<off_t>::max());
        while (!bytes.empty()) {
            if (offset > mostOffset) {
                throw SystemCallError("write", EFBIG);
            }
            const ssize_t written =
                ::pwrite(descriptor, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            if (written > 0) {
                bytes = bytes.subspan(static_cast<std::size_t>(written));
                offset += static_cast<std::uint64_t>(written);
            } else if (written == 0 || errno != EINTR) {
                // Nothing refused and nothing taken would go on for ever.
                throw SystemCallError("write", written == 0 ? EIO : errno);
            }
        }
    };
}

}  // namespace trellant::sessions
