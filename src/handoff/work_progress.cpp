// SPDX-License-Identifier: Apache-2.0
#include <trellant/client/errors.h>
#include <trellant/handoff/work_progress.h>

#include <algorithm>
#include <utility>

namespace trellant {

void WorkProgress::begin(std::string label, std::uint64_t totalBytes) {
    label_ = std::move(label);
    totalBytes_ = totalBytes;
    at(0);
}

void WorkProgress::at(std::uint64_t bytes) {
    check();
    bytes_ = bytes;
    const double total = static_cast<double>(std::max<std::uint64_t>(totalBytes_, 1));
    show(std::min(1.0, static_cast<double>(bytes) / total), label_);
}

void WorkProgress::check() const {
    if (stop_.stop_requested()) {
        throw AAFCancellationError();
    }
}

}  // namespace trellant
