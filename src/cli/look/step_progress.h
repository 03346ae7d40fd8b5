// What a long step tells the person who waits, and how it learns that nobody does any more.
#pragma once

#include "terminal/console.h"

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <string>
#include <utility>

namespace trellant::cli {

class StepProgress {
  public:
    /// `console` must outlive this.
    StepProgress(Console& console, StopToken stop) : console_(console), stop_(std::move(stop)) {}

    [[nodiscard]] Console& console() const noexcept { return console_; }
    [[nodiscard]] const StopToken& stop() const noexcept { return stop_; }

    /// A new step of so many bytes; 0 when nobody knows.
    void begin(std::string label, std::uint64_t totalBytes);
    /// Bytes done since the step began. Throws AAFCancellationError after a stop.
    void at(std::uint64_t bytes);
    /// Bytes done in this step by now.
    [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_; }
    /// Further bytes done.
    void advance(std::uint64_t bytes) { at(bytes_ + bytes); }
    /// Throws AAFCancellationError after a stop.
    void check() const;

  private:
    Console& console_;
    StopToken stop_;
    std::string label_;
    std::uint64_t totalBytes_ = 0;
    std::uint64_t bytes_ = 0;
};

}  // namespace trellant::cli
