// SPDX-License-Identifier: Apache-2.0
#include "said.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <stdexcept>
#include <string_view>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr int closedStatus = 91;
constexpr int thrownStatus = 92;

/// The two ends of a stream; -1 for an end that is not there.
struct Stream {
    int reading = -1;
    int writing = -1;
};

void closeEnd(int& descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

Stream openTerminal(unsigned short columns) {
    termios plain{};
    ::cfmakeraw(&plain);
    winsize size{};
    size.ws_row = 24;
    size.ws_col = columns;
    Stream stream;
    if (::openpty(&stream.reading, &stream.writing, nullptr, &plain, &size) != 0) {
        throw std::runtime_error("no pseudo-terminal");
    }
    return stream;
}

Stream openStream(Listener listener, unsigned short columns) {
    if (listener == Listener::terminal) {
        return openTerminal(columns);
    }
    if (listener == Listener::closed) {
        return {};
    }
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe");
    }
    Stream stream{ends[0], ends[1]};
    if (listener == Listener::gone) {
        closeEnd(stream.reading);
    }
    if (listener == Listener::impatientPipe) {
        ::fcntl(stream.writing, F_SETFL, O_NONBLOCK);
    }
    return stream;
}

void setEnvironment(const Setting& setting) {
    ::setenv("TERM", "xterm", 1);
    ::unsetenv("NO_COLOR");
    ::unsetenv("COLUMNS");
    for (const auto& [name, value] : setting.environment) {
        if (value) {
            ::setenv(name.c_str(), value->c_str(), 1);
        } else {
            ::unsetenv(name.c_str());
        }
    }
}

void becomeStandard(int descriptor, int standard) {
    if (descriptor < 0) {
        ::close(standard);
    } else {
        ::dup2(descriptor, standard);
    }
}

[[noreturn]] void runChild(const Setting& setting, Stream out, Stream errors,
                           const std::function<int(cli::Console&)>& speak) {
    closeEnd(out.reading);
    closeEnd(errors.reading);
    becomeStandard(out.writing, STDOUT_FILENO);
    becomeStandard(errors.writing, STDERR_FILENO);
    closeEnd(out.writing);
    closeEnd(errors.writing);
    setEnvironment(setting);
    try {
        cli::Console console(setting.verbosity);
        ::_exit(speak(console));
    } catch (const cli::OutputClosed&) {
        ::_exit(closedStatus);
    } catch (const std::exception& error) {
        const std::string_view text = error.what();
        static_cast<void>(::write(STDERR_FILENO, text.data(), text.size()) < 0);
        ::_exit(thrownStatus);
    }
}

/// Takes what is there; closes the stream at its end, which a terminal tells by an error.
void take(int& descriptor, std::string& text) {
    std::array<char, 4096> piece{};
    const auto count = ::read(descriptor, piece.data(), piece.size());
    if (count > 0) {
        text.append(piece.data(), static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        closeEnd(descriptor);
    }
}

void gather(Stream& out, Stream& errors, Said& said) {
    while (out.reading >= 0 || errors.reading >= 0) {
        std::array<pollfd, 2> waiting{pollfd{out.reading, POLLIN, 0},
                                      pollfd{errors.reading, POLLIN, 0}};
        ::poll(waiting.data(), waiting.size(), -1);
        if (waiting[0].revents != 0) {
            take(out.reading, said.out);
        }
        if (waiting[1].revents != 0) {
            take(errors.reading, said.errors);
        }
    }
}

}  // namespace

Said saidWithStatus(const Setting& setting, const std::function<int(cli::Console&)>& speak) {
    Stream out = openStream(setting.out, setting.columns);
    Stream errors = openStream(setting.errors, setting.columns);
    const pid_t child = ::fork();
    if (child == 0) {
        runChild(setting, out, errors, speak);
    }
    closeEnd(out.writing);
    closeEnd(errors.writing);
    Said result;
    gather(out, errors, result);
    int status = 0;
    ::waitpid(child, &status, 0);
    result.status = WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status);
    return result;
}

Said said(const Setting& setting, const std::function<void(cli::Console&)>& speak) {
    return saidWithStatus(setting, [&](cli::Console& console) {
        speak(console);
        return 0;
    });
}

}  // namespace trellant::testing
