// SPDX-License-Identifier: Apache-2.0
#include "worker_call.h"

#include <trellant/base/printable_text.h>
#include <trellant/base/system_error_text.h>
#include <trellant/base/text.h>
#include <trellant/base/url.h>
#include <trellant/client/worker_client.h>
#include <trellant/model/validation.h>

#include <algorithm>
#include <csignal>
#include <string_view>
#include <system_error>
#include <utility>

namespace trellant {

namespace {

using Request = AAFWorkerProtocol::Request;
using Result = AAFWorkerProtocol::Result;

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
    throw AAFWorkerClientError::launchFailed("\"" + printableText(text) +
                                             "\" is not UTF-8 and cannot be sent to a worker");
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

Result decoded(std::string_view answer, TimelineChecks checks, const StopToken& stop) {
    try {
        Result result = decodeResult(answer, checks, stop);
        if (result.protocolVersion == AAFWorkerProtocol::version) {
            return result;
        }
    } catch (const JsonDecodingStopped&) {
        throw AAFCancellationError();
    } catch (const JsonDecodingError& error) {
        throw AAFWorkerClientError::invalidResponse(error.what());
    } catch (const AAFRawTimelineValidation::Failure& failure) {
        throw AAFWorkerClientError::invalidResponse(failure.description());
    }
    throw AAFWorkerClientError::invalidResponse("protocol version mismatch");
}

struct Call {
    AAFWorkerClient client;
    Request request;
    AAFWorkerClient::Progress progress;
    StopToken stop;
    TimelineChecks checks;
};

/// The whole call, on its own thread.
Result perform(const Call& call) {
    if (call.stop.stop_requested()) {
        throw AAFCancellationError();
    }
    std::optional<std::filesystem::path> executable;
    if (call.client.helperURLProvider) {
        executable = call.client.helperURLProvider(call.client.helperName);
    }
    if (!executable) {
        throw AAFWorkerClientError::helperMissing();
    }
    const std::string request = encoded(call.request);
    if (call.stop.stop_requested()) {
        throw AAFCancellationError();
    }
    const std::string answer = answerTo({.executable = *executable,
                                         .request = request,
                                         .progress = call.progress,
                                         .stop = call.stop,
                                         .resultLimit = call.client.resultLimit});
    return decoded(answer, call.checks, call.stop);
}

template <class T>
std::future<T> failedFuture(std::exception_ptr failure) {
    std::promise<T> failed;
    failed.set_exception(std::move(failure));
    return failed.get_future();
}

/// The future of `work`, done on a thread of its own. A thread that the system refuses is a launch
/// that failed, told in the same way as any other.
template <class Work>
auto started(Work work) -> std::future<decltype(work())> {
    try {
        const SignalsBlocked inTheNewThread;
        return std::async(std::launch::async, std::move(work));
    } catch (const std::system_error& error) {
        return failedFuture<decltype(work())>(
            std::make_exception_ptr(AAFWorkerClientError::launchFailed(
                "cannot start a thread: " + systemErrorText(error.code().value()))));
    }
}

/// Throws AAFWorkerClientError launchFailed for a relative path where the current directory is
/// gone.
std::string absoluteText(const std::filesystem::path& path) {
    if (path.is_absolute()) {
        return path.native();
    }
    std::error_code failure;
    const std::filesystem::path directory = std::filesystem::current_path(failure);
    if (failure) {
        throw AAFWorkerClientError::launchFailed("cannot tell the current directory: " +
                                                 systemErrorText(failure.value()));
    }
    return absolutePath(path.native(), directory.native());
}

Request inspection(const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
                   const std::optional<std::filesystem::path>& mediaSearchDirectory) {
    Request request{.protocolVersion = AAFWorkerProtocol::version,
                    .operation = Request::Operation::extractAndInspect,
                    .aafPath = absoluteText(aafURL),
                    .workDirectory = absoluteText(workDirectory),
                    .mediaSearchDirectory = std::nullopt,
                    .recoverProToolsTrueFades = true,
                    .removeProToolsSampleAccurateEditFragments = true};
    if (mediaSearchDirectory) {
        request.mediaSearchDirectory = absoluteText(*mediaSearchDirectory);
    }
    return request;
}

/// Letters of ASCII only: the extensions that are looked for hold no others.
std::string lowerCased(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(), [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    });
    return text;
}

}  // namespace

AAFWorkerClient AAFWorkerClient::fuer(const std::filesystem::path& url) {
    const std::string extension =
        lowerCased((url.has_filename() ? url : url.parent_path()).extension().string());
    AAFWorkerClient client;
    if (extension == ".omf" || extension == ".omfi") {
        client.helperName = "trellant-omf";
    }
    return client;
}

std::future<AAFTimeline> AAFWorkerClient::inspect(
    const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
    const std::optional<std::filesystem::path>& mediaSearchDirectory, Progress progress,
    StopToken stop) const {
    try {
        return started(
            [call = Call{*this, inspection(aafURL, workDirectory, mediaSearchDirectory),
                         std::move(progress), std::move(stop), TimelineChecks::validate}] {
                return std::move(perform(call).timeline);
            });
    } catch (const AAFWorkerClientError&) {
        return failedFuture<AAFTimeline>(std::current_exception());
    }
}

std::future<AAFWorkerProtocol::Result> AAFWorkerClient::run(AAFWorkerProtocol::Request request,
                                                            Progress progress, StopToken stop,
                                                            TimelineChecks checks) const {
    return started([call = Call{*this, std::move(request), std::move(progress), std::move(stop),
                                checks}] { return perform(call); });
}

}  // namespace trellant
