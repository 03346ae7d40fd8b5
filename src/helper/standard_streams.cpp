// SPDX-License-Identifier: Apache-2.0
#include "standard_streams.h"

#include <trellant/base/write_all.h>
#include <trellant/io/errors.h>
#include <trellant/protocol/lines.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace trellant {

namespace {

/// Room on the stack; a request is short.
constexpr std::size_t readPiece = 8192;

void writeLine(std::string_view line) noexcept {
    if (writeAll(STDERR_FILENO, line) != 0) {
        // Nobody listens any more, and there is nowhere left to say so.
        end(ExitStatus::processingFailed);
    }
}

}  // namespace

void prepareStandardStreams() noexcept {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    // So does a file that reaches the size limit.
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    // A closed stream's number would be given to the next file opened, and lines meant for the
    // host would be written into that file.
    for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(descriptor, F_GETFD) < 0) {
            end(ExitStatus::processingFailed);
        }
    }
}

std::string readStandardInput() {
    std::string input;
    std::array<char, readPiece> piece;
    for (;;) {
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count > 0) {
            input.append(piece.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return input;
        }
    }
}

void emitProgress(std::string_view phase, double fraction) {
    writeLine(progressLine(phase, fraction));
}

void logLine(std::string_view message) {
    writeLine(logLineText(message));
}

void fail(std::string_view message, ExitStatus code) {
    logLine(message);
    end(code);
}

void end(ExitStatus status) noexcept {
    ::_exit(static_cast<int>(status));
}

void StandardOutput::write(std::string_view text) {
    switch (const int reason = writeAll(STDOUT_FILENO, text)) {
        case 0:
            return;
        case EPIPE:
            end(ExitStatus::processingFailed);
        default:
            throw FileSystemError("write", "standard output", reason);
    }
}

}  // namespace trellant
