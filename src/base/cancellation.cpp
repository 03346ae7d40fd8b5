// SPDX-License-Identifier: Apache-2.0
// The registrations of one stop form a list through themselves, so that nothing is allocated for
// them and nothing can fail when the stop is requested. The lock is never held during a call.
#include <trellant/base/cancellation.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

namespace trellant {

class StopState {
  public:
    [[nodiscard]] bool requested() const noexcept {
        return requested_.load(std::memory_order_acquire);
    }

    bool request() noexcept {
        std::unique_lock lock(mutex_);
        if (requested_.exchange(true, std::memory_order_acq_rel)) {
            return false;
        }
        requester_ = std::this_thread::get_id();
        while (first_ != nullptr) {
            StopRegistration& next = *first_;
            unlink(next);
            running_ = &next;
            lock.unlock();
            next.function_(next.argument_);
            lock.lock();
            // It may be gone by now: a callback may end its own registration.
            running_ = nullptr;
            ended_.notify_all();
        }
        return true;
    }

    /// False when the stop was requested already; then nothing is kept.
    [[nodiscard]] bool add(StopRegistration& registration) {
        const std::lock_guard lock(mutex_);
        if (requested()) {
            return false;
        }
        registration.next_ = first_;
        if (first_ != nullptr) {
            first_->previous_ = &registration;
        }
        first_ = &registration;
        return true;
    }

    void remove(StopRegistration& registration) noexcept {
        std::unique_lock lock(mutex_);
        if (first_ == &registration || registration.previous_ != nullptr) {
            unlink(registration);
        } else if (requester_ != std::this_thread::get_id()) {
            ended_.wait(lock, [&] { return running_ != &registration; });
        }
    }

  private:
    void unlink(StopRegistration& registration) noexcept {
        StopRegistration*& link =
            registration.previous_ == nullptr ? first_ : registration.previous_->next_;
        link = registration.next_;
        if (registration.next_ != nullptr) {
            registration.next_->previous_ = registration.previous_;
        }
        registration.next_ = nullptr;
        registration.previous_ = nullptr;
    }

    std::atomic<bool> requested_{false};
    std::mutex mutex_;
    std::condition_variable ended_;
    StopRegistration* first_ = nullptr;
    /// The one that is being called, and on which thread.
    const StopRegistration* running_ = nullptr;
    std::thread::id requester_;
};

bool StopToken::stop_requested() const noexcept {
    return state_ != nullptr && state_->requested();
}

StopSource::StopSource() : state_(std::make_shared<StopState>()) {}

bool StopSource::request_stop() noexcept {
    // A callback may take this source away.
    const std::shared_ptr<StopState> state = state_;
    return state != nullptr && state->request();
}

StopRegistration::StopRegistration(const StopToken& token, void (*function)(void*), void* argument)
    : state_(token.state_), function_(function), argument_(argument) {
    if (state_ != nullptr && !state_->add(*this)) {
        state_.reset();
        function_(argument_);
    }
}

StopRegistration::~StopRegistration() {
    if (state_ != nullptr) {
        state_->remove(*this);
    }
}

}  // namespace trellant
