// SPDX-License-Identifier: Apache-2.0
#include "forward_window.h"

#include <trellant/base/precondition.h>

#include <algorithm>
#include <span>

namespace trellant::salvage {

ByteView ForwardWindow::at(std::uint64_t position, std::size_t count) {
    precondition(position >= begin_ && count <= bufferBytes / 4, "windows move forward");
    const std::uint64_t skipped = position - begin_;
    if (skipped > filled_ || filled_ - skipped < count) {
        const std::size_t kept =
            skipped < filled_ ? filled_ - static_cast<std::size_t>(skipped) : 0;
        std::copy_n(buffer_.begin() + static_cast<std::ptrdiff_t>(filled_ - kept), kept,
                    buffer_.begin());
        const auto room = std::span(buffer_).subspan(kept);
        filled_ = kept + file_.readAvailable(position + kept, room);
        begin_ = position;
    }
    return ByteView(buffer_).first(filled_).subspan(static_cast<std::size_t>(position - begin_));
}

}  // namespace trellant::salvage
