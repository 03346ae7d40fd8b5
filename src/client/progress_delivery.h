// SPDX-License-Identifier: Apache-2.0
// Progress on its way from a call's thread to the host's callback, which has a thread of its own:
// a callback that takes its time, or waits for somebody who waits for the call, holds up neither
// the reading nor a cancellation.
#pragma once

#include "call_alarm.h"

#include <trellant/base/cancellation.h>
#include <trellant/client/worker_client.h>

#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <thread>

namespace trellant {

class ProgressDelivery {
  public:
    /// Records that wait for the callback, and bytes of them; the oldest go first.
    static constexpr std::size_t waitingRecords = 1'024;
    static constexpr std::size_t waitingBytes = 1'048'576;

    /// Starts a thread when there is a callback. `alarm` rings when the callback throws, and
    /// outlives this. Throws AAFWorkerClientError launchFailed.
    ProgressDelivery(const AAFWorkerClient::Progress& callback, CallAlarm& alarm);
    /// Closes, and waits for a callback that is running until patience is lost.
    ~ProgressDelivery();
    ProgressDelivery(const ProgressDelivery&) = delete;
    ProgressDelivery& operator=(const ProgressDelivery&) = delete;
    ProgressDelivery(ProgressDelivery&&) = delete;
    ProgressDelivery& operator=(ProgressDelivery&&) = delete;

    void add(AAFWorkerProtocol::Progress record);
    /// Throws what the callback threw.
    void check() const;
    /// Waits until the callback has had all records, has thrown, a stop is requested or patience is
    /// lost.
    void finish(const StopToken& stop);
    /// From now on no callback begins.
    void close() noexcept;

  private:
    using Clock = std::chrono::steady_clock;
    struct State;

    static void deliver(State& state);

    /// Shared with the thread, which may be left behind in a callback that does not return.
    std::shared_ptr<State> state_;
    std::thread thread_;
    std::optional<Clock::time_point> patienceEnds_;
};

}  // namespace trellant
