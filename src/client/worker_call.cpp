// SPDX-License-Identifier: Apache-2.0
#include "worker_call.h"

#include "call_alarm.h"
#include "child_process.h"
#include "error_lines.h"
#include "progress_delivery.h"

#include <trellant/base/file_descriptor.h>
#include <trellant/base/system_error_text.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <memory>
#include <optional>
#include <poll.h>
#include <span>
#include <unistd.h>

namespace trellant {

namespace {

/// What a pipe holds, so that one read takes all that is there.
constexpr int pipeBytes = 65'536;
using Chunk = std::array<char, pipeBytes>;
/// How often to look after the worker where the system does not tell of its end.
constexpr int lookMilliseconds = 5;
/// Reads that empty the largest pipe; more would come from somebody who outlived the worker.
constexpr int lastReads = 17;
/// Lines of the worker that an error carries.
constexpr std::size_t reportedLines = 8;

using LaunchFailed = AAFWorkerClientError::LaunchFailed;

class Conversation {
  public:
    explicit Conversation(const WorkerCall& call)
        : call_(call),
          onStop_(call.stop, Ring{alarm_}),
          progress_(call.progress, alarm_),
          lines_(progress_),
          chunk_(std::make_unique_for_overwrite<Chunk>()) {}
    /// However it ends, no callback begins while the worker is seen to its end.
    ~Conversation() { progress_.close(); }
    Conversation(const Conversation&) = delete;
    Conversation& operator=(const Conversation&) = delete;
    Conversation(Conversation&&) = delete;
    Conversation& operator=(Conversation&&) = delete;

    WorkerOutput answer() {
        start();
        while (!outputEnded_ || !workerEnded_) {
            waitForNews();
        }
        const ChildEnd end = worker_->reap();
        progress_.finish(call_.stop);
        checkAlarm();
        // Whether its end or the closed pipe is seen first is chance, and another process that is
        // just being started may hold the pipe open for a moment.
        if (inputEnd_.isOpen()) {
            failWrite(EPIPE);
        }
        checkStatus(end);
        return {std::move(output_), lines_.taken()};
    }

  private:
    enum class Reading { more, nothingNow, ended };

    struct Ring {
        CallAlarm& alarm;
        void operator()() const noexcept { alarm.ring(); }
    };

    void start() {
        Pipe input = makePipeOfCall();
        Pipe output = makePipeOfCall();
        Pipe errors = makePipeOfCall();
        makeNonBlocking(input.writing);
        makeNonBlocking(output.reading);
        makeNonBlocking(errors.reading);
        // With larger pages a pipe holds more, and a read would cut a line in two.
        limitCapacity(errors.reading, pipeBytes);
        inputEnd_ = std::move(input.writing);
        outputEnd_ = std::move(output.reading);
        errorsEnd_ = std::move(errors.reading);
        // A request that fits the pipe is in it before the worker starts, so one that ends at once
        // is judged by its status and its last words, not by whether it was still there to be
        // written to.
        writeRequest();
        worker_.emplace(call_.executable,
                        ChildStreams{std::move(input.reading), std::move(output.writing),
                                     std::move(errors.writing)});
        // It waits for the end of its request before it takes any memory.
        if (call_.memoryLimit) {
            worker_->limitMemory(*call_.memoryLimit);
        }
        endWrittenRequest();
    }

    void waitForNews() {
        std::array<pollfd, 5> watched{
            pollfd{.fd = inputEnd_.number(), .events = POLLOUT, .revents = 0},
            pollfd{.fd = outputEnd_.number(), .events = POLLIN, .revents = 0},
            pollfd{.fd = errorsEnd_.number(), .events = POLLIN, .revents = 0},
            pollfd{.fd = alarm_.descriptor(), .events = POLLIN, .revents = 0},
            pollfd{.fd = workerEnded_ ? -1 : worker_->endNotice(), .events = POLLIN, .revents = 0}};
        const bool told = workerEnded_ || worker_->endNotice() >= 0;
        if (::poll(watched.data(), watched.size(),
                   call_.timeLimit.wait(told ? -1 : lookMilliseconds)) < 0 &&
            errno != EINTR && errno != EAGAIN) {
            throw AAFWorkerClientError::launchFailed(
                "cannot wait for the helper: " + systemErrorText(errno),
                LaunchFailed::Cause::systemRefused);
        }
        checkAlarm();
        if (call_.timeLimit.isOver()) {
            throw AAFTimeLimitError();
        }
        if (watched[0].revents != 0) {
            writeRequest();
            endWrittenRequest();
        }
        if (watched[1].revents != 0) {
            readOutput();
        }
        if (watched[2].revents != 0) {
            readErrors();
        }
        if (!workerEnded_ && (watched[4].revents != 0 || !told) && worker_->hasEnded()) {
            noticeEnd();
        }
    }

    void checkAlarm() const {
        progress_.check();
        if (call_.stop.stop_requested()) {
            throw AAFCancellationError();
        }
    }

    /// Its last words are in the pipe already; who else holds the pipe open is not waited for.
    void noticeEnd() {
        workerEnded_ = true;
        for (int reads = 0; errorsEnd_.isOpen() && reads < lastReads; ++reads) {
            if (readErrors() != Reading::more) {
                break;
            }
        }
        errorsEnd_.close();
    }

    void writeRequest() {
        while (written_ < call_.request.size()) {
            const auto count = ::write(inputEnd_.number(), call_.request.data() + written_,
                                       call_.request.size() - written_);
            if (count >= 0) {
                written_ += static_cast<std::size_t>(count);
            } else if (errno == EAGAIN) {
                return;
            } else if (errno != EINTR) {
                failWrite(errno);
            }
        }
    }
    void endWrittenRequest() {
        if (written_ == call_.request.size()) {
            inputEnd_.close();
        }
    }

    [[noreturn]] static void failWrite(int errorNumber) {
        throw AAFWorkerClientError::launchFailed(
            "cannot write the request: " + systemErrorText(errorNumber),
            LaunchFailed::Cause::requestNotTaken);
    }

    /// One read to the head of `room`; `count` says how many bytes came.
    static Reading readSome(FileDescriptor& from, std::span<char> room, std::size_t& count) {
        const auto read = ::read(from.number(), room.data(), room.size());
        if (read > 0) {
            count = static_cast<std::size_t>(read);
            return Reading::more;
        }
        if (read < 0 && (errno == EAGAIN || errno == EINTR)) {
            return Reading::nothingNow;
        }
        from.close();
        return Reading::ended;
    }

    void readOutput() {
        std::size_t count = 0;
        const Reading reading = readSome(outputEnd_, output_.room(pipeBytes), count);
        outputEnded_ = reading == Reading::ended;
        if (count > call_.resultLimit - output_.size()) {
            throw AAFWorkerClientError::invalidResponse(
                "longer than " + std::to_string(call_.resultLimit) + " bytes",
                AAFWorkerClientError::InvalidResponse::Kind::tooLong);
        }
        output_.add(count);
    }

    Reading readErrors() {
        std::size_t count = 0;
        const Reading reading = readSome(errorsEnd_, *chunk_, count);
        lines_.take({chunk_->data(), count});
        return reading;
    }

    void checkStatus(const ChildEnd& end) const {
        // Without a status the output tells: a worker writes one only when all went well.
        const std::int32_t status = end.status.value_or(output_.size() == 0 ? -1 : 0);
        if (status != 0) {
            throw AAFWorkerClientError::nonZeroExit(status, lines_.lastLines(reportedLines));
        }
    }

    const WorkerCall& call_;
    // What rings goes before the alarm, and the worker before the progress: while it is asked to
    // end, so may a callback.
    CallAlarm alarm_;
    StopCallback<Ring> onStop_;
    ProgressDelivery progress_;
    ErrorLines lines_;
    std::unique_ptr<Chunk> chunk_;
    FileDescriptor inputEnd_;
    FileDescriptor outputEnd_;
    FileDescriptor errorsEnd_;
    std::optional<ChildProcess> worker_;
    std::size_t written_ = 0;
    AnswerText output_;
    bool outputEnded_ = false;
    bool workerEnded_ = false;
};

}  // namespace

WorkerOutput answerTo(const WorkerCall& call) {
    return Conversation(call).answer();
}

}  // namespace trellant
