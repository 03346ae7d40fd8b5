// SPDX-License-Identifier: Apache-2.0
#include "progress_delivery.h"

#include <trellant/base/system_error_text.h>

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <exception>
#include <mutex>
#include <system_error>
#include <utility>

namespace trellant {

namespace {

using Report = AAFWorkerProtocol::Progress;

/// How long the callbacks may hold up a call whose worker has ended by itself.
constexpr std::chrono::milliseconds patienceAtTheEnd{2'000};
/// How long one that is running may hold up a call that fails or is cancelled; the other half of
/// the second that a cancelled call has is the worker's.
constexpr std::chrono::milliseconds patienceAfterAStop{500};

std::size_t bytesOf(const Report& record) noexcept {
    return sizeof(Report) + record.phase.size() + (record.detail ? record.detail->size() : 0);
}

}  // namespace

struct ProgressDelivery::State {
    State(const AAFWorkerClient::Progress& called, CallAlarm& rung)
        : callback(called), alarm(rung) {}

    AAFWorkerClient::Progress callback;
    /// Not touched any more once closed.
    CallAlarm& alarm;

    // Guards all that follows; not held while calling out.
    std::mutex mutex{};
    std::condition_variable changed{};
    std::deque<Report> waiting{};
    std::size_t bytes = 0;
    bool isRunning = false;
    bool isClosed = false;
    std::exception_ptr failure{};

    /// The caller holds the lock.
    Report takeFirst() {
        Report record = std::move(waiting.front());
        waiting.pop_front();
        bytes -= bytesOf(record);
        return record;
    }
};

ProgressDelivery::ProgressDelivery(const AAFWorkerClient::Progress& callback, CallAlarm& alarm) {
    if (!callback) {
        return;
    }
    state_ = std::make_shared<State>(callback, alarm);
    try {
        thread_ = std::thread([state = state_] { deliver(*state); });
    } catch (const std::system_error& error) {
        throw AAFWorkerClientError::launchFailed(
            "cannot start a thread: " + systemErrorText(error.code().value()),
            AAFWorkerClientError::LaunchFailed::Cause::systemRefused);
    }
}

ProgressDelivery::~ProgressDelivery() {
    if (state_ == nullptr) {
        return;
    }
    close();
    std::unique_lock lock(state_->mutex);
    const bool isDone =
        state_->changed.wait_until(lock, *patienceEnds_, [this] { return !state_->isRunning; });
    lock.unlock();
    if (isDone) {
        thread_.join();
    } else {
        thread_.detach();
    }
}

/// On the thread of the callbacks, until closed.
void ProgressDelivery::deliver(State& state) {
    std::unique_lock lock(state.mutex);
    for (;;) {
        state.changed.wait(lock, [&] { return state.isClosed || !state.waiting.empty(); });
        if (state.isClosed) {
            return;
        }
        const Report record = state.takeFirst();
        state.isRunning = true;
        lock.unlock();
        std::exception_ptr failure;
        try {
            state.callback(record);
        } catch (...) {
            failure = std::current_exception();
        }
        lock.lock();
        state.isRunning = false;
        if (failure != nullptr && !state.isClosed) {
            state.isClosed = true;
            state.failure = std::move(failure);
            state.alarm.ring();
        }
        state.changed.notify_all();
    }
}

void ProgressDelivery::add(Report record) {
    if (state_ == nullptr) {
        return;
    }
    const std::lock_guard lock(state_->mutex);
    if (state_->isClosed) {
        return;
    }
    const std::size_t bytes = bytesOf(record);
    while (!state_->waiting.empty() &&
           (state_->waiting.size() == waitingRecords || bytes > waitingBytes - state_->bytes)) {
        (void)state_->takeFirst();
    }
    state_->waiting.push_back(std::move(record));
    state_->bytes += bytes;
    state_->changed.notify_all();
}

void ProgressDelivery::check() const {
    if (state_ == nullptr) {
        return;
    }
    const std::lock_guard lock(state_->mutex);
    if (state_->failure != nullptr) {
        std::rethrow_exception(state_->failure);
    }
}

void ProgressDelivery::finish(const StopToken& stop) {
    if (state_ == nullptr) {
        return;
    }
    patienceEnds_ = Clock::now() + patienceAtTheEnd;
    auto wake = [this] {
        const std::lock_guard lock(state_->mutex);
        state_->changed.notify_all();
    };
    const StopCallback<decltype(wake)> onStop(stop, std::move(wake));
    std::unique_lock lock(state_->mutex);
    state_->changed.wait_until(lock, *patienceEnds_, [&] {
        return state_->isClosed || stop.stop_requested() ||
               (state_->waiting.empty() && !state_->isRunning);
    });
}

void ProgressDelivery::close() noexcept {
    if (state_ == nullptr) {
        return;
    }
    const Clock::time_point end = Clock::now() + patienceAfterAStop;
    patienceEnds_ = std::min(patienceEnds_.value_or(end), end);
    const std::lock_guard lock(state_->mutex);
    state_->isClosed = true;
    state_->changed.notify_all();
}

}  // namespace trellant
