// SPDX-License-Identifier: Apache-2.0
#include "worker_call.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/system_error_text.h>
#include <trellant/base/text.h>
#include <trellant/client/worker_client.h>
#include <trellant/model/validation.h>

#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

namespace trellant {

namespace {

using Request = AAFWorkerProtocol::Request;
using Result = AAFWorkerProtocol::Result;
using LaunchFailed = AAFWorkerClientError::LaunchFailed;
using InvalidResponse = AAFWorkerClientError::InvalidResponse;

/// While one lives, threads that are started have their signals blocked from birth. Signals are the
/// host's: its handlers do not expect to run on a call's thread, and a write to a worker that is
/// gone must not end the host. Faults of the thread's own stay what they are.
class SignalsBlocked {
  public:
    SignalsBlocked() noexcept {
        sigset_t signals;
        ::sigfillset(&signals);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS}) {
            ::sigdelset(&signals, fault);
        }
        ::pthread_sigmask(SIG_BLOCK, &signals, &before_);
    }
    ~SignalsBlocked() { ::pthread_sigmask(SIG_SETMASK, &before_, nullptr); }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    SignalsBlocked(SignalsBlocked&&) = delete;
    SignalsBlocked& operator=(SignalsBlocked&&) = delete;

  private:
    sigset_t before_{};
};

[[noreturn]] void failText(std::string_view text) {
    throw AAFWorkerClientError::launchFailed(
        "\"" + printableText(text) + "\" is not UTF-8 and cannot be sent to a worker",
        LaunchFailed::Cause::unsendableRequest);
}

std::string encoded(const Request& request) {
    for (const std::string* text : {&request.aafPath, &request.workDirectory}) {
        if (!isValidUTF8(*text)) {
            failText(*text);
        }
    }
    if (request.mediaSearchDirectory && !isValidUTF8(*request.mediaSearchDirectory)) {
        failText(*request.mediaSearchDirectory);
    }
    return encodeRequest(request);
}

InvalidResponse::Kind kindOf(JsonDecodingError::Kind kind) noexcept {
    switch (kind) {
        case JsonDecodingError::Kind::missingKey:
            return InvalidResponse::Kind::missingKey;
        case JsonDecodingError::Kind::wrongType:
            return InvalidResponse::Kind::wrongType;
        case JsonDecodingError::Kind::corrupt:
            return InvalidResponse::Kind::corrupt;
    }
    return InvalidResponse::Kind::other;
}

Result decoded(std::string_view answer, TimelineChecks checks, const StopToken& stop) {
    try {
        Result result = decodeResult(answer, checks, stop);
        if (result.protocolVersion == AAFWorkerProtocol::version) {
            return result;
        }
    } catch (const JsonDecodingStopped&) {
        throw AAFCancellationError();
    } catch (const JsonDecodingError& error) {
        throw AAFWorkerClientError::invalidResponse(error.what(), kindOf(error.kind()),
                                                    error.keyPath());
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        throw AAFWorkerClientError::invalidResponse(failure.description(),
                                                    InvalidResponse::Kind::invalidTimeline);
    }
    throw AAFWorkerClientError::invalidResponse("protocol version mismatch",
                                                InvalidResponse::Kind::otherVersion);
}

struct Call {
    AAFWorkerClient client;
    Request request;
    AAFWorkerCallOptions options;
    TimeLimit timeLimit{client.timeLimit};
};

/// Whether the client searches as it does by default.
bool searchesBundle(const AAFWorkerClient& client) {
    using Function = std::optional<std::filesystem::path> (*)(const std::string&);
    const Function* const function = client.helperURLProvider.target<Function>();
    return function != nullptr && *function == &bundledHelper;
}

std::filesystem::path executableFor(const Call& call) {
    const AAFWorkerClient& client = call.client;
    const bool searches = searchesBundle(client);
    const std::string name = searches && client.helperName == AAFWorkerClient::defaultHelperName
                                 ? AAFWorkerClient::fuer(call.request.aafPath).helperName
                                 : client.helperName;
    std::optional<std::filesystem::path> executable;
    if (client.helperURLProvider) {
        executable = client.helperURLProvider(name);
    }
    if (!executable) {
        throw AAFWorkerClientError::helperMissing(
            name, searches ? bundledHelperPlaces(name) : std::vector<std::filesystem::path>());
    }
    return *executable;
}

void checkStop(const Call& call) {
    if (call.options.stop.stop_requested()) {
        throw AAFCancellationError();
    }
}

/// The whole call, on its own thread.
AAFWorkerAnswer perform(const Call& call) {
    checkStop(call);
    const std::filesystem::path executable = executableFor(call);
    const std::string request = encoded(call.request);
    checkStop(call);
    WorkerOutput output = answerTo({.executable = executable,
                                    .request = request,
                                    .progress = call.options.progress,
                                    .stop = call.options.stop,
                                    .resultLimit = call.client.resultLimit,
                                    .memoryLimit = call.client.memoryLimit,
                                    .timeLimit = call.timeLimit});
    return {decoded(output.answer.view(), call.options.checks, call.options.stop),
            std::move(output.logLines)};
}

template <class T>
std::future<T> failedFuture(std::exception_ptr failure) {
    std::promise<T> failed;
    failed.set_exception(std::move(failure));
    return failed.get_future();
}

/// The future of `work`, done on a thread of its own. A thread that the system refuses is a launch
/// that failed.
template <class Work>
auto started(Work work) -> std::future<decltype(work())> {
    try {
        const SignalsBlocked inTheNewThread;
        return std::async(std::launch::async, std::move(work));
    } catch (const std::system_error& error) {
        throw AAFWorkerClientError::launchFailed(
            "cannot start a thread: " + systemErrorText(error.code().value()),
            LaunchFailed::Cause::systemRefused);
    }
}

/// What `start` gives; what fails before there is a thread is told in the same way as all else.
template <class Start>
auto futureOf(const Start& start) -> decltype(start()) {
    try {
        return start();
    } catch (const AAFWorkerClientError&) {
        return failedFuture<decltype(start().get())>(std::current_exception());
    }
}

/// What `work` gives or throws, after a call of `completion`.
template <class Work>
auto completed(const Work& work, const std::function<void()>& completion) -> decltype(work()) {
    std::optional<decltype(work())> value;
    std::exception_ptr failure;
    try {
        value = work();
    } catch (...) {
        failure = std::current_exception();
    }
    if (completion) {
        completion();
    }
    if (failure != nullptr) {
        std::rethrow_exception(failure);
    }
    return std::move(*value);
}

}  // namespace

std::future<AAFTimeline> AAFWorkerClient::inspect(
    const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
    const std::optional<std::filesystem::path>& mediaSearchDirectory, Progress progress,
    StopToken stop) const {
    return futureOf([&] {
        return started([call = Call{*this,
                                    inspection(aafURL, workDirectory, mediaSearchDirectory),
                                    {.progress = std::move(progress), .stop = std::move(stop)}}] {
            return std::move(perform(call).result.timeline);
        });
    });
}

std::future<AAFWorkerProtocol::Result> AAFWorkerClient::run(AAFWorkerProtocol::Request request,
                                                            Progress progress, StopToken stop,
                                                            TimelineChecks checks) const {
    return futureOf([&] {
        return started(
            [call = Call{
                 *this,
                 std::move(request),
                 {.progress = std::move(progress), .stop = std::move(stop), .checks = checks}}] {
                return std::move(perform(call).result);
            });
    });
}

std::future<AAFWorkerAnswer> AAFWorkerClient::ask(AAFWorkerProtocol::Request request,
                                                  AAFWorkerCallOptions options) const {
    const std::function<void()> completion = options.completion;
    try {
        return started([call = Call{*this, std::move(request), std::move(options)}] {
            return completed([&] { return perform(call); }, call.options.completion);
        });
    } catch (const AAFWorkerClientError&) {
        const std::exception_ptr refusal = std::current_exception();
        std::promise<AAFWorkerAnswer> failed;
        try {
            failed.set_value(completed(
                [&]() -> AAFWorkerAnswer { std::rethrow_exception(refusal); }, completion));
        } catch (...) {
            failed.set_exception(std::current_exception());
        }
        return failed.get_future();
    }
}

}  // namespace trellant
