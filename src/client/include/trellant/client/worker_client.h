// SPDX-License-Identifier: Apache-2.0
// AAFWorkerClient: the host's side of a worker process. Each call starts one worker, hands it one
// request, turns its progress lines into callbacks and gives back what it answered. Whatever a file
// does to the worker, the host sees it as a typed error.
#pragma once

#include <trellant/base/cancellation.h>
#include <trellant/client/errors.h>
#include <trellant/model/timeline.h>
#include <trellant/model/timeline_json.h>
#include <trellant/protocol/messages.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <future>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// Where an installed worker of this name lies: in "AAFTools" beside the host's executable, then in
/// "../libexec/trellant/AAFTools" and "../bin" seen from the executable's folder. The first place
/// that holds something other than a folder under that name; absent when none does. Links to the
/// executable are resolved first: the folder is that of the program itself.
[[nodiscard]] std::optional<std::filesystem::path> bundledHelper(const std::string& helperName);
/// The places that `bundledHelper` looks at, in that order; none for a name that is empty or leads
/// elsewhere.
[[nodiscard]] std::vector<std::filesystem::path> bundledHelperPlaces(const std::string& helperName);

/// What a call gave that went well.
struct AAFWorkerAnswer {
    /// With the worker's remarks on the mapping, its `diagnostics`.
    AAFWorkerProtocol::Result result;
    /// What the worker wrote to standard error beside progress: the last lines, at most 60.
    std::vector<std::string> logLines;
};

/// What one call can be given beside its request.
struct AAFWorkerCallOptions {
    /// As AAFWorkerClient::Progress.
    std::function<void(const AAFWorkerProtocol::Progress&)> progress{};
    StopToken stop{};
    TimelineChecks checks = TimelineChecks::validate;
    /// Called once, however the call ends, after the last callback for progress: the future's `get`
    /// then returns without waiting, but for the moment that handing over takes. On the call's own
    /// thread, or before `ask` returns when there is none to be had. For hosts that would else have
    /// to look at the future again and again. The future is ready once it has returned; what it
    /// throws comes out of the future.
    std::function<void()> completion{};
};

/// A value: copies are independent, calls hold no state between them. One client may be used for
/// any number of calls at once, from any threads; each has its own process.
struct AAFWorkerClient {
    /// From a worker's name to its executable; absent when there is none. Called once in each call,
    /// on that call's thread, so on several threads at once. A relative location is taken against
    /// the current directory of the moment of the start. A stop is heeded once it has returned.
    /// What it throws comes out of the future.
    using HelperURLProvider =
        std::function<std::optional<std::filesystem::path>(const std::string& helperName)>;
    /// Takes each progress record in the order written, one at a time, on a thread of its own
    /// (where all signals are blocked except those of faults). The worker is read, seen to its end
    /// and cancelled meanwhile. Records that come while the callback runs wait for it: the newest
    /// 1,024 of them, and of these the newest that fit 1 MiB; older ones are left out.
    ///
    /// No callback begins once the future is ready, and one that returns soon is never running
    /// then. A slow one holds the future up: with all that wait by two seconds at most after the
    /// worker has ended, the one that runs by half a second at most after a failure or a stop. One
    /// that has not returned by then (because it waits for a thread that waits for the call) is
    /// left to itself: what it uses must live as long as it runs.
    ///
    /// What it throws ends the worker and comes out of the future. May be empty. The record is as
    /// the worker wrote it: a fraction is any finite number, a phase any text of up to 64 KiB.
    using Progress = std::function<void(const AAFWorkerProtocol::Progress&)>;

    /// The bound for one answer, in bytes: about a thousand times what a feature film needs.
    static constexpr std::uint64_t defaultResultLimit = 2'147'483'648;

    static constexpr const char* defaultHelperName = "trellant-aaf";

    /// Left as it is, with `bundledHelper` as the provider, it names no worker: the file's name
    /// then tells which one is looked for, as with `fuer`, so that a worker that does not come with
    /// this library is asked for only by who names it.
    std::string helperName = defaultHelperName;
    /// Empty counts as one that finds nothing.
    HelperURLProvider helperURLProvider = bundledHelper;
    /// Bytes; a worker that writes more is ended, and the call fails with `invalidResponse`. While
    /// an answer is decoded, memory of about three times its size is in use; one that was made to
    /// take as much as it can (a list of empty strings) takes up to 36 times its size. A host that
    /// trusts its worker less sets the limit by that. What a worker writes to standard error takes
    /// at most 8 MiB, however much it is.
    std::uint64_t resultLimit = defaultResultLimit;
    /// How long a worker may take, counted from the call; then it is ended, and the call fails with
    /// AAFTimeLimitError within a second. What comes after the worker's end, reading its answer for
    /// one, is not counted. Absent: as long as it takes.
    std::optional<std::chrono::milliseconds> timeLimit{};
    /// Bytes of data that a worker may have at once; it keeps within what the machine has left
    /// anyway. One that needs more fails with status 2 and "out of memory". Has an effect on Linux
    /// only.
    std::optional<std::uint64_t> memoryLimit{};

    /// The client for a file, told by its name's extension in any case: "trellant-omf" for "omf"
    /// and "omfi", else "trellant-aaf". The file is not looked at.
    [[nodiscard]] static AAFWorkerClient fuer(const std::filesystem::path& url);
    /// The same in English.
    [[nodiscard]] static AAFWorkerClient forFile(const std::filesystem::path& url) {
        return fuer(url);
    }

    /// Reads the file at `aafURL`, taking embedded audio out into `workDirectory` (created when
    /// missing) and looking for external media in `mediaSearchDirectory` and below. Relative
    /// locations, the empty one too, are taken against the current directory of the moment of the
    /// call, "." and ".." removed without a look at links.
    ///
    /// Returns at once; the work is done on a thread of its own, which is gone once `get`, `wait`
    /// or the future's destructor has returned, and so is that of the callback, unless it was left
    /// to itself. The future gives a timeline that passed AAFRawTimelineValidation, or throws
    /// AAFWorkerClientError, AAFTimeLimitError, AAFCancellationError within a second of a request
    /// to `stop` (the worker is asked to end, then killed), what `helperURLProvider` or `progress`
    /// threw, or std::bad_alloc. Its destructor waits for the end of the call: request a stop first
    /// to have done with it soon.
    ///
    /// The caller keeps nothing alive for the call; `progress` is kept by value as long as the
    /// future.
    [[nodiscard]] std::future<AAFTimeline> inspect(
        const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
        const std::optional<std::filesystem::path>& mediaSearchDirectory = std::nullopt,
        Progress progress = {}, StopToken stop = {}) const;

    /// The request that `inspect` sends. Throws AAFWorkerClientError launchFailed for a relative
    /// path where the current directory is gone.
    [[nodiscard]] static AAFWorkerProtocol::Request inspection(
        const std::filesystem::path& aafURL, const std::filesystem::path& workDirectory,
        const std::optional<std::filesystem::path>& mediaSearchDirectory = std::nullopt);

    /// Sends any request and gives all that came back; everything else is as with `run`.
    [[nodiscard]] std::future<AAFWorkerAnswer> ask(AAFWorkerProtocol::Request request,
                                                   AAFWorkerCallOptions options = {}) const;

    /// Sends any request and gives the whole result; everything else is as with `inspect`. The
    /// request's paths go out as they are, and the worker starts in the host's current directory.
    /// With TimelineChecks::none the timeline is given as the worker wrote it, also where it would
    /// not pass validation: computing with such a one may stop the process, so repair it first
    /// (repair.h).
    [[nodiscard]] std::future<AAFWorkerProtocol::Result> run(
        AAFWorkerProtocol::Request request, Progress progress = {}, StopToken stop = {},
        TimelineChecks checks = TimelineChecks::validate) const;
};

}  // namespace trellant
