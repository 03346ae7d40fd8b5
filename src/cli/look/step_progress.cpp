#include "step_progress.h"

#include <trellant/client/errors.h>

#include <algorithm>
#include <utility>

namespace trellant::cli {

void StepProgress::begin(std::string label, std::uint64_t totalBytes) {
    label_ = std::move(label);
    totalBytes_ = totalBytes;
    at(0);
}

void StepProgress::at(std::uint64_t bytes) {
    check();
    bytes_ = bytes;
    const double total = static_cast<double>(std::max<std::uint64_t>(totalBytes_, 1));
    console_.bar(std::min(1.0, static_cast<double>(bytes) / total), label_);
}

void StepProgress::check() const {
    if (stop_.stop_requested()) {
        throw AAFCancellationError();
    }
}

}  // namespace trellant::cli
