// SPDX-License-Identifier: Apache-2.0
// How a call of the worker client fails: a fault between host and worker, or a cancellation.
#pragma once

#include <cstdint>
#include <exception>
#include <string>
#include <variant>

namespace [[gnu::visibility("default")]] trellant {

/// A call that gave no result. Two texts come with it: `technicalDetail` for logs, always in
/// English, and `errorDescription` for the person in front of the host.
class AAFWorkerClientError final : public std::exception {
  public:
    /// The worker could not be started, or ended before its whole request was written to it.
    struct LaunchFailed {
        std::string reason;
        bool operator==(const LaunchFailed&) const = default;
    };
    /// The worker ended with another status than 0. One that a signal ended has the signal's number
    /// as its status. In a host that reaps all its children or ignores SIGCHLD no status is to be
    /// had: a worker that wrote nothing then counts as one that ended with -1, any other as one
    /// that ended well.
    struct NonZeroExit {
        std::int32_t status;
        /// The last of its log lines, at most 8, joined by line feeds.
        std::string logLines;
        bool operator==(const NonZeroExit&) const = default;
    };
    /// The worker ended well and what it wrote is no result.
    struct InvalidResponse {
        std::string reason;
        bool operator==(const InvalidResponse&) const = default;
    };
    /// The client's `helperURLProvider` knows no worker of that name.
    struct HelperMissing {
        bool operator==(const HelperMissing&) const = default;
    };
    using Fault = std::variant<LaunchFailed, NonZeroExit, InvalidResponse, HelperMissing>;

    explicit AAFWorkerClientError(Fault fault);
    [[nodiscard]] static AAFWorkerClientError launchFailed(std::string reason);
    [[nodiscard]] static AAFWorkerClientError nonZeroExit(std::int32_t status,
                                                          std::string logLines);
    [[nodiscard]] static AAFWorkerClientError invalidResponse(std::string reason);
    [[nodiscard]] static AAFWorkerClientError helperMissing();

    /// What happened, as data.
    [[nodiscard]] const Fault& fault() const noexcept { return fault_; }
    /// "helper exited with 2: trellant-omf: Malformed OMF/Bento file: ..." and its siblings. May
    /// span several lines; control characters of the worker's own are left in.
    [[nodiscard]] const std::string& technicalDetail() const noexcept { return technicalDetail_; }
    /// The message for a person, in the language of the host's locale where there is a catalogue
    /// for it (see localization.h), else in English. Looked up at each call.
    [[nodiscard]] std::string errorDescription() const;
    /// The same text as `technicalDetail`.
    [[nodiscard]] const char* what() const noexcept override { return technicalDetail_.c_str(); }

  private:
    Fault fault_;
    std::string technicalDetail_;
};

/// The call's stop token asked for its end before there was a result. The worker is gone by then
/// (one that is stuck in the system, where nothing can end it, was given up).
class AAFCancellationError final : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override { return "the call was cancelled"; }
};

}  // namespace trellant
