// SPDX-License-Identifier: Apache-2.0
#include "client_fixture.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <thread>

namespace trellant::testing {

namespace {

std::string percentEncoded(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    for (const char byte : bytes) {
        const auto number = static_cast<unsigned char>(byte);
        if (std::isalnum(number) != 0) {
            text += byte;
        } else {
            text.append({'%', digits[number / 16U], digits[number % 16U]});
        }
    }
    return text;
}

bool isGone(pid_t process) {
    return ::kill(process, 0) != 0 && errno == ESRCH;
}

/// Whether the process is a misbehaving worker; its number may belong to somebody else by now.
bool isMisbehavingWorker(pid_t process) {
    std::error_code none;
    return std::filesystem::read_symlink("/proc/" + std::to_string(process) + "/exe", none) ==
           std::filesystem::canonical(TRELLANT_MISBEHAVING_WORKER);
}

}  // namespace

Request Act::request() const {
    Request request;
    for (const std::string& piece : errors) {
        request.aafPath.append(request.aafPath.empty() ? "" : "|").append(percentEncoded(piece));
    }
    request.workDirectory = percentEncoded(output);
    request.mediaSearchDirectory =
        signal ? "signal" + std::to_string(*signal) : std::to_string(status);
    return request;
}

Request plainRequest() {
    Request request;
    request.aafPath = "/film.omf";
    request.workDirectory = "/work";
    return request;
}

Request largeRequest() {
    constexpr std::size_t size = 2'000'000;
    Request request = plainRequest();
    request.aafPath.append(size, 'x');
    return request;
}

bool eventually(const std::function<bool()>& condition) {
    constexpr std::chrono::seconds patience{60};
    constexpr std::chrono::milliseconds rest{1};
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(rest);
    }
    return true;
}

MisbehavingWorkers::~MisbehavingWorkers() {
    endAll();
}

AAFWorkerClient MisbehavingWorkers::client(const std::string& behaviour) const {
    AAFWorkerClient client;
    client.helperName = behaviour;
    client.helperURLProvider = [path = executable(behaviour)](const std::string& name) {
        EXPECT_TRUE(path.ends_with("/" + name)) << name;
        return path;
    };
    return client;
}

std::string MisbehavingWorkers::executable(const std::string& behaviour) const {
    std::string path = directory_.file(behaviour);
    if (!std::filesystem::is_symlink(path)) {
        std::filesystem::create_symlink(TRELLANT_MISBEHAVING_WORKER, path);
    }
    return path;
}

std::vector<pid_t> MisbehavingWorkers::announced(const std::string& behaviour,
                                                 std::string_view list) const {
    std::ifstream file(directory_.file(behaviour + std::string(list)));
    std::vector<pid_t> processes;
    // A line without its line feed is still being written.
    for (std::string line; std::getline(file, line) && !file.eof();) {
        processes.push_back(std::stoi(line));
    }
    return processes;
}

void MisbehavingWorkers::awaitAnnouncement(const std::string& behaviour,
                                           std::string_view list) const {
    ASSERT_TRUE(eventually([&] { return !announced(behaviour, list).empty(); })) << behaviour;
}

void MisbehavingWorkers::release(const std::string& behaviour) const {
    writeFile(directory_.file(behaviour + ".release"), {});
}

bool MisbehavingWorkers::areGone(const std::string& behaviour) const {
    const std::vector<pid_t> processes = announced(behaviour);
    return !processes.empty() && std::all_of(processes.begin(), processes.end(), isGone);
}

void MisbehavingWorkers::expectGone(const std::string& behaviour) const {
    EXPECT_TRUE(areGone(behaviour)) << behaviour;
}

void MisbehavingWorkers::expectGrandchildrenEnd(const std::string& behaviour) const {
    const std::vector<pid_t> processes = announced(behaviour, ".grandchildren");
    EXPECT_FALSE(processes.empty()) << behaviour;
    EXPECT_TRUE(eventually([&] {
        return std::none_of(processes.begin(), processes.end(), isMisbehavingWorker);
    })) << behaviour;
}

void MisbehavingWorkers::expectNeverStarted(const std::string& behaviour) const {
    EXPECT_FALSE(std::filesystem::exists(directory_.file(behaviour + ".pids"))) << behaviour;
}

void MisbehavingWorkers::endAll() const {
    for (const auto& entry : std::filesystem::directory_iterator(directory_.path())) {
        const std::filesystem::path& path = entry.path();
        if (path.extension() == ".pids" || path.extension() == ".grandchildren") {
            for (const pid_t process : announced(path.stem().string(), path.extension().string())) {
                if (isMisbehavingWorker(process)) {
                    ::kill(process, SIGKILL);
                }
            }
        }
    }
}

void ClientTest::expectCancelEnds(const std::string& behaviour, const Request& request) const {
    StopSource stop;
    auto call = client(behaviour).run(request, {}, stop.get_token());
    workers_.awaitAnnouncement(behaviour);
    stop.request_stop();
    expectCancelled(std::move(call));
    workers_.expectGone(behaviour);
}

}  // namespace trellant::testing
