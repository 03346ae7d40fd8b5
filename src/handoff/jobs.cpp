// SPDX-License-Identifier: Apache-2.0
#include <trellant/handoff/jobs.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <system_error>
#include <thread>
#include <vector>

namespace trellant {

namespace {

/// Ends a job that nobody waits for.
struct NotWanted {};

class Crew {
  public:
    Crew(std::size_t count, const Job& job) : count_(count), job_(job) {}
    ~Crew() { dismiss(); }
    Crew(const Crew&) = delete;
    Crew& operator=(const Crew&) = delete;
    Crew(Crew&&) = delete;
    Crew& operator=(Crew&&) = delete;

    void start() {
        const std::size_t processors = std::max(1U, std::thread::hardware_concurrency());
        const std::size_t wanted = std::min(count_, processors);
        working_ = wanted;
        for (std::size_t i = 0; i < wanted; ++i) {
            try {
                threads_.emplace_back([this] { work(); });
            } catch (const std::system_error&) {
                leave(wanted - i);
                break;
            }
        }
        if (threads_.empty() && wanted != 0) {
            throw std::system_error(std::make_error_code(std::errc::resource_unavailable_try_again),
                                    "cannot start a thread");
        }
    }

    /// True once all is done, false when that takes longer than a tick.
    [[nodiscard]] bool awaitTick() {
        constexpr std::chrono::milliseconds tick{100};
        std::unique_lock lock(mutex_);
        return changed_.wait_for(lock, tick, [this] { return working_ == 0; });
    }
    [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_.load(); }

    void finish() {
        dismiss();
        if (failure_) {
            std::rethrow_exception(failure_);
        }
    }

  private:
    void work() {
        try {
            for (std::size_t number = next_++; number < count_; number = next_++) {
                check();
                bytes_ += job_(number, [this] { check(); });
            }
        } catch (const NotWanted&) {
            // Whoever does not want it knows.
        } catch (...) {
            const std::lock_guard lock(mutex_);
            failure_ = failure_ ? failure_ : std::current_exception();
            wanted_ = false;
        }
        leave(1);
    }
    void check() const {
        if (!wanted_.load()) {
            throw NotWanted();
        }
    }
    void leave(std::size_t workers) {
        const std::lock_guard lock(mutex_);
        working_ -= workers;
        changed_.notify_all();
    }
    void dismiss() {
        wanted_ = false;
        for (std::thread& thread : threads_) {
            thread.join();
        }
        threads_.clear();
    }

    std::size_t count_;
    const Job& job_;
    std::atomic<std::size_t> next_{0};
    std::atomic<std::uint64_t> bytes_{0};
    std::atomic<bool> wanted_{true};
    std::mutex mutex_;
    std::condition_variable changed_;
    std::size_t working_ = 0;
    std::exception_ptr failure_;
    std::vector<std::thread> threads_;
};

}  // namespace

void runJobs(std::size_t count, const Job& job, WorkProgress& progress,
             const std::atomic<std::uint64_t>* underWay) {
    const auto done = [&](const Crew& crew) {
        return crew.bytes() + (underWay == nullptr ? 0 : underWay->load());
    };
    progress.check();
    Crew crew(count, job);
    crew.start();
    while (!crew.awaitTick()) {
        progress.at(done(crew));
    }
    crew.finish();
    progress.at(done(crew));
}

}  // namespace trellant
