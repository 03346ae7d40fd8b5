// SPDX-License-Identifier: Apache-2.0
#include "console.h"

#include "bar_line.h"
#include "shown_text.h"

#include <trellant/base/write_all.h>
#include <trellant/io/errors.h>

#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace trellant::cli {

namespace {

/// Of a terminal that does not tell.
constexpr std::size_t usualColumns = 80;
constexpr std::string_view wipe = "\r\x1b[K";

std::string_view variable(const char* name) {
    // NOLINTNEXTLINE(concurrency-mt-unsafe): nothing in this program changes the environment.
    const char* value = std::getenv(name);
    return value == nullptr ? std::string_view() : std::string_view(value);
}

std::size_t columnsOf(int terminal) {
    winsize size{};
    if (::ioctl(terminal, TIOCGWINSZ, &size) == 0 && size.ws_col > 0) {
        return size.ws_col;
    }
    return usualColumns;
}

/// What the person set, for terminals that do not tell and for tests by hand.
std::size_t wantedColumns(int terminal) {
    const std::string_view text = variable("COLUMNS");
    unsigned short columns = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), columns);
    const bool isNumber = error == std::errc() && end == text.data() + text.size();
    return isNumber && columns > 0 ? columns : columnsOf(terminal);
}

/// Whoever gave us the stream may have made it return at once.
int writeWhole(int descriptor, std::string_view text) noexcept {
    return writeAll(descriptor, text, WhenFull::wait);
}

/// The number of a closed stream would go to the next file that is opened, and what is said would
/// be written into it. Opened the wrong way round, so that using the stream still fails.
void occupyClosedStreams() {
    constexpr std::array modes{O_WRONLY, O_RDONLY, O_RDONLY};
    for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
        if (::fcntl(stream, F_GETFD) < 0) {
            static_cast<void>(::open("/dev/null", modes.at(static_cast<std::size_t>(stream))));
        }
    }
}

}  // namespace

Console::Console(Verbosity verbosity) : verbosity_(verbosity) {
    static_cast<void>(std::signal(SIGPIPE, SIG_IGN));
    static_cast<void>(std::signal(SIGXFSZ, SIG_IGN));
    occupyClosedStreams();
    const std::string_view term = variable("TERM");
    const bool obeysEscapes = !term.empty() && term != "dumb";
    outIsTerminal_ = ::isatty(STDOUT_FILENO) == 1;
    outHasColour_ = outIsTerminal_ && obeysEscapes && variable("NO_COLOR").empty();
    outColumns_ = outIsTerminal_ ? wantedColumns(STDOUT_FILENO) : unlimitedColumns;
    hasBar_ = ::isatty(STDERR_FILENO) == 1 && obeysEscapes && verbosity_ != Verbosity::quiet;
}

void Console::out(std::string_view text) {
    wipeBar();
    switch (const int reason = writeWhole(STDOUT_FILENO, text)) {
        case 0:
            return;
        case EPIPE:
            throw OutputClosed{};
        default:
            throw FileSystemError("write", "standard output", reason);
    }
}

void Console::error(std::string_view text) {
    message(text);
}

void Console::note(std::string_view text) {
    if (verbosity_ != Verbosity::quiet) {
        message(text);
    }
}

void Console::detail(std::string_view text) {
    if (verbosity_ == Verbosity::verbose) {
        message(text);
    }
}

void Console::message(std::string_view text) {
    wipeBar();
    // Nobody listens when it fails, and there is nowhere left to say so.
    static_cast<void>(writeWhole(STDERR_FILENO, "trellant: " + shownText(text) + "\n"));
}

void Console::bar(double fraction, std::string_view label) {
    if (!hasBar_) {
        return;
    }
    std::string line = barLine(fraction, label, columnsOf(STDERR_FILENO));
    if (line != barLine_) {
        static_cast<void>(writeWhole(STDERR_FILENO, std::string(wipe) + line));
        barLine_ = std::move(line);
    }
}

void Console::endBar() {
    wipeBar();
}

void Console::wipeBar() {
    if (!barLine_.empty()) {
        static_cast<void>(writeWhole(STDERR_FILENO, wipe));
        barLine_.clear();
    }
}

std::string painted(std::string_view text, Paint paint, bool wanted) {
    if (!wanted || text.empty()) {
        return std::string(text);
    }
    const auto code = [&]() -> std::string_view {
        switch (paint) {
            case Paint::bold:
                return "\x1b[1m";
            case Paint::dim:
                return "\x1b[2m";
            case Paint::red:
                return "\x1b[31m";
            case Paint::yellow:
                return "\x1b[33m";
            case Paint::green:
                return "\x1b[32m";
        }
        return {};
    };
    return std::string(code()).append(text).append("\x1b[0m");
}

}  // namespace trellant::cli
