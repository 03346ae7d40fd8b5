// SPDX-License-Identifier: Apache-2.0
// How a call of the worker client fails: a fault between host and worker, a cancellation, or the
// end of its time.
#pragma once

#include <cstdint>
#include <exception>
#include <filesystem>
#include <string>
#include <variant>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// A call that gave no result. Two texts come with it: `technicalDetail` for logs, always in
/// English, and `errorDescription` for the person in front of the host.
class AAFWorkerClientError final : public std::exception {
  public:
    /// The worker could not be started, or ended before its whole request was written to it.
    struct LaunchFailed {
        enum class Cause {
            other,
            /// Nothing lies where the worker should, or where what runs it should.
            workerNotFound,
            /// What lies there may not or cannot be run.
            workerNotExecutable,
            /// The request holds a text that is not UTF-8.
            unsendableRequest,
            /// A relative path was given and the current directory is gone.
            noCurrentDirectory,
            /// The worker ended, or closed its input, before it had all of the request.
            requestNotTaken,
            /// The system gave no thread, pipe or process.
            systemRefused
        };

        std::string reason;
        Cause cause = Cause::other;
        /// The cause says the reason once more, for programs.
        bool operator==(const LaunchFailed& other) const { return reason == other.reason; }
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
        enum class Kind {
            other,
            /// Longer than the client's `resultLimit`.
            tooLong,
            /// No JSON, or a value that means nothing in its place.
            corrupt,
            missingKey,
            wrongType,
            /// A timeline that does not pass AAFRawTimelineValidation.
            invalidTimeline,
            /// Of another AAFWorkerProtocol::version.
            otherVersion
        };

        std::string reason;
        Kind kind = Kind::other;
        /// "timeline.events[3].duration": where it does not decode; may be empty.
        std::string keyPath{};
        /// Kind and key path say the reason once more, for programs.
        bool operator==(const InvalidResponse& other) const { return reason == other.reason; }
    };
    /// The client's `helperURLProvider` knows no worker of that name.
    struct HelperMissing {
        std::string helperName{};
        /// Where it was looked for, in that order, when the provider is `bundledHelper` or says so
        /// itself by throwing this; else empty.
        std::vector<std::filesystem::path> searched{};
        /// Wherever it was: there is one way to be missing.
        bool operator==(const HelperMissing& /*other*/) const { return true; }
    };
    using Fault = std::variant<LaunchFailed, NonZeroExit, InvalidResponse, HelperMissing>;

    explicit AAFWorkerClientError(Fault fault);
    [[nodiscard]] static AAFWorkerClientError launchFailed(
        std::string reason, LaunchFailed::Cause cause = LaunchFailed::Cause::other);
    [[nodiscard]] static AAFWorkerClientError nonZeroExit(std::int32_t status,
                                                          std::string logLines);
    [[nodiscard]] static AAFWorkerClientError invalidResponse(
        std::string reason, InvalidResponse::Kind kind = InvalidResponse::Kind::other,
        std::string keyPath = {});
    [[nodiscard]] static AAFWorkerClientError helperMissing(
        std::string helperName = {}, std::vector<std::filesystem::path> searched = {});

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

/// The client's `timeLimit` was over before there was a result. The worker is gone by then, as
/// after a cancellation.
class AAFTimeLimitError final : public std::exception {
  public:
    [[nodiscard]] const char* what() const noexcept override {
        return "the time of the call is over";
    }
};

}  // namespace trellant
