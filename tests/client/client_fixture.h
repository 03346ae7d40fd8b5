// SPDX-License-Identifier: Apache-2.0
// What the tests of the client share: workers that misbehave on demand, and the three ways in which
// a call may end. Nothing here measures time; a call that hangs is told from one that does not by a
// limit that only a hang reaches.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/client/worker_client.h>

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <future>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <trellant_testing/temporary_directory.h>
#include <utility>
#include <vector>

namespace trellant {

/// For the messages of failed tests.
inline void PrintTo(const AAFWorkerProtocol::Progress& progress, std::ostream* out) {
    *out << encodeProgress(progress);
}

}  // namespace trellant

namespace trellant::testing {

using Request = AAFWorkerProtocol::Request;
using Progress = AAFWorkerProtocol::Progress;
using Result = AAFWorkerProtocol::Result;
using LaunchFailed = AAFWorkerClientError::LaunchFailed;
using NonZeroExit = AAFWorkerClientError::NonZeroExit;
using InvalidResponse = AAFWorkerClientError::InvalidResponse;
using HelperMissing = AAFWorkerClientError::HelperMissing;

/// What a worker started as "acts" does: writes each of `errors` once the one before was taken,
/// then `output`, and ends.
struct Act {
    std::vector<std::string> errors{};
    std::string output{};
    int status = 0;
    /// Ends by this signal instead.
    std::optional<int> signal{};

    /// The request that tells it so.
    [[nodiscard]] Request request() const;
};

/// An `inspect` request with paths that nobody looks at.
[[nodiscard]] Request plainRequest();
/// A request of several megabytes, far more than a pipe holds.
[[nodiscard]] Request largeRequest();

/// Whether `condition` came to hold before patience was lost.
[[nodiscard]] bool eventually(const std::function<bool()>& condition);

/// Where the misbehaving workers of one test live. What is started from here and still lives at
/// the end is ended.
class MisbehavingWorkers {
  public:
    MisbehavingWorkers() = default;
    ~MisbehavingWorkers();
    MisbehavingWorkers(const MisbehavingWorkers&) = delete;
    MisbehavingWorkers& operator=(const MisbehavingWorkers&) = delete;
    MisbehavingWorkers(MisbehavingWorkers&&) = delete;
    MisbehavingWorkers& operator=(MisbehavingWorkers&&) = delete;

    /// A client that starts the misbehaving worker under this name.
    [[nodiscard]] AAFWorkerClient client(const std::string& behaviour) const;
    /// As the provider gives it.
    [[nodiscard]] std::string executable(const std::string& behaviour) const;
    [[nodiscard]] const TemporaryDirectory& directory() const { return directory_; }

    /// The processes that announced themselves in the list, in order.
    [[nodiscard]] std::vector<pid_t> announced(const std::string& behaviour,
                                               std::string_view list = ".pids") const;
    /// Waits for the first of them.
    void awaitAnnouncement(const std::string& behaviour, std::string_view list = ".pids") const;
    void release(const std::string& behaviour) const;

    /// At least one process was started under this name and all of them are gone and reaped.
    [[nodiscard]] bool areGone(const std::string& behaviour) const;
    void expectGone(const std::string& behaviour) const;
    /// What a worker of this name started ends too. Nobody says when it is reaped: it is not the
    /// client's child.
    void expectGrandchildrenEnd(const std::string& behaviour) const;
    void expectNeverStarted(const std::string& behaviour) const;
    /// Ends what lives still, so that a test that failed does not wait for it.
    void endAll() const;

  private:
    TemporaryDirectory directory_;
};

/// The end of a call: exactly one of value, fault, cancelled and other is set.
template <class Value>
struct Outcome {
    std::optional<Value> value{};
    std::optional<AAFWorkerClientError::Fault> fault{};
    bool cancelled = false;
    /// what() of any other exception.
    std::string other{};
    /// For messages.
    std::string description{};
};

class ClientTest : public ::testing::Test {
  protected:
    template <class Value>
    Outcome<Value> outcomeOf(std::future<Value> call) const {
        using namespace std::chrono_literals;
        Outcome<Value> outcome;
        if (call.wait_for(patience) != std::future_status::ready) {
            ADD_FAILURE() << "the call hangs";
            workers_.endAll();
        }
        try {
            outcome.value = call.get();
            outcome.description = "a result";
        } catch (const AAFWorkerClientError& error) {
            outcome.fault = error.fault();
            outcome.description = error.technicalDetail();
        } catch (const AAFCancellationError& error) {
            outcome.cancelled = true;
            outcome.description = error.what();
        } catch (const std::exception& error) {
            outcome.other = error.what();
            outcome.description = "another exception: " + outcome.other;
        }
        return outcome;
    }

    template <class Value>
    void expectFault(std::future<Value> call, const AAFWorkerClientError::Fault& expected) const {
        const auto outcome = outcomeOf(std::move(call));
        EXPECT_TRUE(outcome.fault == expected)
            << "expected: " << AAFWorkerClientError(expected).technicalDetail()
            << "\nfound: " << outcome.description;
    }
    template <class Value>
    void expectCancelled(std::future<Value> call) const {
        const auto outcome = outcomeOf(std::move(call));
        EXPECT_TRUE(outcome.cancelled) << outcome.description;
    }
    /// The value; an empty one after a failure of the test.
    template <class Value>
    Value valueOf(std::future<Value> call) const {
        auto outcome = outcomeOf(std::move(call));
        EXPECT_TRUE(outcome.value.has_value()) << outcome.description;
        return std::move(outcome.value).value_or(Value{});
    }

    [[nodiscard]] AAFWorkerClient client(const std::string& behaviour) const {
        return workers_.client(behaviour);
    }
    /// A call whose worker acts as told.
    [[nodiscard]] std::future<Result> act(const Act& act, AAFWorkerClient::Progress progress = {},
                                          StopToken stop = {}) const {
        return client("acts").run(act.request(), std::move(progress), std::move(stop));
    }
    /// Starts the behaviour, waits until it is what it is, requests the stop; the call must end as
    /// cancelled and the worker be gone.
    void expectCancelEnds(const std::string& behaviour,
                          const Request& request = plainRequest()) const;

    MisbehavingWorkers workers_;

  private:
    static constexpr std::chrono::seconds patience{60};
};

}  // namespace trellant::testing
