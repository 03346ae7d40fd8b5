// SPDX-License-Identifier: Apache-2.0
// Progress of long work, on the console.
#pragma once

#include "terminal/console.h"

#include <trellant/base/cancellation.h>
#include <trellant/handoff/work_progress.h>

#include <string>
#include <utility>

namespace trellant::cli {

class ConsoleProgress final : public WorkProgress {
  public:
    /// `console` must outlive this.
    ConsoleProgress(Console& console, StopToken stop)
        : WorkProgress(std::move(stop)), console_(console) {}

    void show(double fraction, const std::string& label) override;
    void say(Remark kind, const std::string& text) override;

  private:
    Console& console_;
};

}  // namespace trellant::cli
