// SPDX-License-Identifier: Apache-2.0
#include "life.h"

#include "answers.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace trellant::testing::misbehaving {

namespace {

constexpr unsigned lifeSeconds = 180;
constexpr useconds_t restMicroseconds = 200;

struct Places {
    std::string program;
    std::string sigterm;
};

Places& places() {
    static Places instance;
    return instance;
}

[[noreturn]] void giveUp() {
    ::_exit(brokenStatus);
}

void addToList(std::string_view list, pid_t process) {
    const std::string file = places().program + std::string(list);
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    if (descriptor < 0) {
        giveUp();
    }
    writeAll(descriptor, std::to_string(process) + "\n");
    ::close(descriptor);
}

}  // namespace

void setProgram(std::string path) {
    places() = {path, path + ".sigterm"};
}

void announce() {
    addToList(".pids", ::getpid());
}

void announceGrandchild(pid_t process) {
    addToList(".grandchildren", process);
}

void waitForRelease() {
    const std::string file = places().program + ".release";
    while (::access(file.c_str(), F_OK) != 0) {
        ::usleep(restMicroseconds);
    }
}

void noteSignal() {
    const int descriptor = ::open(places().sigterm.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    ::close(descriptor);
}

void sleepForever() {
    for (;;) {
        ::pause();
    }
}

void limitLife() {
    ::alarm(lifeSeconds);
}

void startGrandchild(const std::function<void()>& work) {
    const pid_t process = ::fork();
    if (process == 0) {
        limitLife();
        work();
        ::_exit(0);
    }
    announceGrandchild(process);
}

std::string readRequest() {
    std::string request;
    std::array<char, 65'536> piece{};
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count == 0) {
            return request;
        }
        if (count > 0) {
            request.append(piece.data(), static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            giveUp();
        }
    }
}

void writeAll(int stream, std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(stream, text.data(), text.size());
        if (count > 0) {
            text.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            giveUp();
        }
    }
}

void writeAlone(int stream, std::string_view text) {
    writeAll(stream, text);
    int waiting = 1;
    while (waiting > 0) {
        if (::ioctl(stream, FIONREAD, &waiting) != 0) {
            giveUp();
        }
        ::usleep(restMicroseconds);
    }
}

void flood(int stream, std::size_t size) {
    constexpr std::size_t lineSize = 4'096;
    std::string line(lineSize, 'f');
    line.back() = '\n';
    while (size > 0) {
        const std::size_t count = size < line.size() ? size : line.size();
        writeAll(stream, std::string_view(line).substr(0, count));
        size -= count;
    }
}

std::string quoted(std::string_view text) {
    std::string json = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            json += '\\';
        }
        json += character;
    }
    return json + "\"";
}

std::string echo(const std::string& request) {
    const std::string text = quoted(request);
    return resultText(timelineText(std::string_view(text).substr(1, text.size() - 2)), text);
}

}  // namespace trellant::testing::misbehaving
