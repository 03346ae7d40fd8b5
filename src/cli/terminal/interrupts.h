// SPDX-License-Identifier: Apache-2.0
// Ctrl-C: a call that can be cancelled is, everything else ends at once.
#pragma once

#include <trellant/base/cancellation.h>

namespace trellant::cli {

/// Call once, before any other thread is started; it starts one itself. From then on the first
/// interrupt (or request to terminate, or a hang-up) while a Cancellable lives requests the stop of
/// interruptToken(); a second one, or one at any other time, ends the process as the signal does by
/// itself.
void watchInterrupts();

[[nodiscard]] StopToken interruptToken();

/// While one lives, somebody heeds the token.
class Cancellable {
  public:
    Cancellable() noexcept;
    ~Cancellable();
    Cancellable(const Cancellable&) = delete;
    Cancellable& operator=(const Cancellable&) = delete;
    Cancellable(Cancellable&&) = delete;
    Cancellable& operator=(Cancellable&&) = delete;
};

}  // namespace trellant::cli
