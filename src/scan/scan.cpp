// SPDX-License-Identifier: Apache-2.0
// One thread finds files, `jobs` threads read them, the calling thread tells how far it is.
#include "file_queue.h"

#include <trellant/client/errors.h>
#include <trellant/scan/scan.h>
#include <trellant/scan/shard_file.h>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <new>
#include <numeric>
#include <thread>
#include <utility>
#include <vector>

namespace trellant::scan {

namespace {

constexpr std::chrono::milliseconds betweenLooks{100};
/// Failures that wait to be told; more are counted.
constexpr std::size_t mostWaitingFailures = 1'000;

class Run {
  public:
    Run(const ScanRequest& request, const ScanCalls& calls, const StopToken& stop)
        : request_(request),
          calls_(calls),
          stop_(stop),
          shard_(request.shardPath, done_),
          reader_(request.reading) {}

    ScanTotals run() {
        std::vector<std::thread> threads;
        try {
            startThreads(threads);
        } catch (...) {
            fail(std::current_exception());
        }
        waitFor(threads);
        {
            const std::lock_guard lock(mutex_);
            writeRest();
        }
        tell();
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (stop_.stop_requested()) {
            throw AAFCancellationError();
        }
        const std::lock_guard lock(mutex_);
        return current();
    }

  private:
    void startThreads(std::vector<std::thread>& threads) {
        const auto start = [this, &threads](void (Run::*work)()) {
            {
                const std::lock_guard lock(mutex_);
                ++running_;
            }
            try {
                threads.emplace_back([this, work] { guarded(work); });
            } catch (...) {
                ended();
                throw;
            }
        };
        start(&Run::find);
        for (unsigned job = 0; job < std::max(request_.jobs, 1U); ++job) {
            start(&Run::readFiles);
        }
        if (request_.countsAhead) {
            start(&Run::countAhead);
        }
    }

    /// Until all threads have ended, telling how far they are.
    void waitFor(std::vector<std::thread>& threads) {
        std::unique_lock lock(mutex_);
        while (running_ > 0) {
            news_.wait_for(lock, betweenLooks);
            shardMayWait();
            lock.unlock();
            if (stop_.stop_requested()) {
                ending_.request_stop();
                files_.abandon();
            }
            try {
                tell();
            } catch (...) {
                fail(std::current_exception());
            }
            lock.lock();
        }
        lock.unlock();
        for (std::thread& thread : threads) {
            thread.join();
        }
    }

    void guarded(void (Run::*work)()) {
        try {
            (this->*work)();
        } catch (const AAFCancellationError&) {
            files_.abandon();
        } catch (...) {
            fail(std::current_exception());
        }
        ended();
    }

    void ended() {
        const std::lock_guard lock(mutex_);
        --running_;
        news_.notify_all();
    }

    void fail(std::exception_ptr failure) {
        files_.abandon();
        ending_.request_stop();
        const std::lock_guard lock(mutex_);
        if (!failure_) {
            failure_ = std::move(failure);
        }
    }

    void checkStop() const {
        if (ending_.stop_requested()) {
            throw AAFCancellationError();
        }
    }

    void find() {
        findFiles(request_.places,
                  {.file = [this](FoundFile file) { found(std::move(file)); },
                   .failure = [this](const std::string& path,
                                     const std::string& why) { failedAt(path, why); },
                   .looked =
                       [this] {
                           checkStop();
                           const std::lock_guard lock(mutex_);
                           ++totals_.looked;
                       }});
        files_.close();
    }

    void found(FoundFile file) {
        checkStop();
        const DoneRows::State state = done_.of(file);
        const bool isKnown = request_.again == Again::never    ? state != DoneRows::State::absent
                             : request_.again == Again::failed ? state == DoneRows::State::done
                                                               : false;
        if (isKnown) {
            const std::lock_guard lock(mutex_);
            ++totals_.known;
        } else if (!shard_.isAt(file.path) && !files_.put(std::move(file))) {
            throw AAFCancellationError();
        }
    }

    void countAhead() {
        const std::uint64_t entries = countEntries(request_.places, [this] { checkStop(); });
        const std::lock_guard lock(mutex_);
        totals_.entries = entries;
    }

    void readFiles() {
        while (const auto file = files_.take()) {
            try {
                add(*file, reader_.read(*file, ending_.get_token()));
            } catch (const std::bad_alloc&) {
                failedAt(file->path, "there is no memory left to read it");
            }
        }
    }

    void add(const FoundFile& file, const std::optional<ScanRow>& row) {
        if (!row) {
            const std::lock_guard lock(mutex_);
            ++totals_.others;
            return;
        }
        const std::string line = rowLine(*row);
        const std::lock_guard lock(mutex_);
        shard_.add(line);
        ++totals_.rows.at(static_cast<std::size_t>(row->status));
        totals_.bytes += file.size;
    }

    void failedAt(const std::string& path, const std::string& why) {
        const std::lock_guard lock(mutex_);
        ++totals_.failures;
        if (failures_.size() < mostWaitingFailures) {
            failures_.emplace_back(path, why);
        }
    }

    /// Rows that were gathered before a file that takes long are not kept waiting by it. With the
    /// lock held.
    void shardMayWait() {
        try {
            shard_.flushOld();
        } catch (...) {
            failure_ = failure_ ? failure_ : std::current_exception();
            ending_.request_stop();
            files_.abandon();
        }
    }

    /// With the lock held.
    void writeRest() {
        try {
            shard_.flush();
        } catch (...) {
            failure_ = failure_ ? failure_ : std::current_exception();
        }
    }

    /// With the lock held.
    [[nodiscard]] ScanTotals current() const {
        ScanTotals totals = totals_;
        totals.time = std::chrono::steady_clock::now() - began_;
        return totals;
    }

    void tell() {
        std::vector<std::pair<std::string, std::string>> failures;
        ScanTotals totals;
        {
            const std::lock_guard lock(mutex_);
            failures.swap(failures_);
            totals = current();
        }
        for (const auto& [path, why] : failures) {
            if (calls_.failure) {
                calls_.failure(path, why);
            }
        }
        if (calls_.progress) {
            calls_.progress(totals);
        }
    }

    const ScanRequest& request_;
    const ScanCalls& calls_;
    const StopToken& stop_;
    DoneRows done_;
    ShardFile shard_;
    FileReader reader_;
    FileQueue files_;
    /// Requested when the scan is to stop or a thread failed: all end.
    StopSource ending_;
    std::chrono::steady_clock::time_point began_ = std::chrono::steady_clock::now();

    std::mutex mutex_;
    std::condition_variable news_;
    unsigned running_ = 0;
    ScanTotals totals_;
    std::vector<std::pair<std::string, std::string>> failures_;
    std::exception_ptr failure_;
};

}  // namespace

std::uint64_t ScanTotals::added() const noexcept {
    return std::accumulate(rows.begin(), rows.end(), std::uint64_t{0});
}

ScanTotals runScan(const ScanRequest& request, const ScanCalls& calls, const StopToken& stop) {
    return Run(request, calls, stop).run();
}

}  // namespace trellant::scan
