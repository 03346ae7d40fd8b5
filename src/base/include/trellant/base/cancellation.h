// SPDX-License-Identifier: Apache-2.0
// One side requests a stop, others look whether it was requested or are called when it is. The
// meaning is that of std::stop_source, std::stop_token and std::stop_callback, which not every
// standard library has.
#pragma once

#include <memory>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {

class StopState;

/// Tells whether a stop was requested. A value: copies tell the same. Safe from several threads.
class StopToken {
  public:
    /// One that is never asked to stop.
    StopToken() noexcept = default;

    /// True from the request on.
    [[nodiscard]] bool stop_requested() const noexcept;
    /// False for a token that has no source.
    [[nodiscard]] bool stop_possible() const noexcept { return state_ != nullptr; }

  private:
    friend class StopSource;
    friend class StopRegistration;
    explicit StopToken(std::shared_ptr<StopState> state) noexcept : state_(std::move(state)) {}

    std::shared_ptr<StopState> state_;
};

/// Requests the stop that its tokens tell of. Copies request the same stop. Safe from several
/// threads; tokens may outlive it.
class StopSource {
  public:
    StopSource();

    [[nodiscard]] StopToken get_token() const noexcept { return StopToken(state_); }
    [[nodiscard]] bool stop_requested() const noexcept { return get_token().stop_requested(); }
    /// Runs the callbacks that are registered, one after the other, on this thread. False when the
    /// stop had been requested before; then nothing is run.
    bool request_stop() noexcept;

  private:
    std::shared_ptr<StopState> state_;
};

/// The part of StopCallback that does not depend on what is called.
class StopRegistration {
  public:
    /// Calls `function` with `argument` when the stop is requested; before returning when it was
    /// already.
    StopRegistration(const StopToken& token, void (*function)(void*), void* argument);
    /// Afterwards the function is not running and will not be called. Waits for a call on another
    /// thread to return; may itself run within the call.
    ~StopRegistration();
    StopRegistration(const StopRegistration&) = delete;
    StopRegistration& operator=(const StopRegistration&) = delete;
    StopRegistration(StopRegistration&&) = delete;
    StopRegistration& operator=(StopRegistration&&) = delete;

  private:
    friend class StopState;

    std::shared_ptr<StopState> state_;
    void (*function_)(void*);
    void* argument_;
    // The neighbours in the list of those that wait for the stop; guarded by the state.
    StopRegistration* previous_ = nullptr;
    StopRegistration* next_ = nullptr;
};

/// Calls `callback` once when the stop is requested, on the thread that requests it; at once, on
/// this thread, when it was already. A callback that throws ends the process. The destructor waits
/// for a call that is running on another thread.
template <class Callback>
class StopCallback {
  public:
    StopCallback(const StopToken& token, Callback callback)
        : callback_(std::move(callback)), registration_(token, call, &callback_) {}

  private:
    static void call(void* callback) noexcept { (*static_cast<Callback*>(callback))(); }

    Callback callback_;
    // Goes first: the callback must not be called any more when it goes.
    StopRegistration registration_;
};

}  // namespace trellant
