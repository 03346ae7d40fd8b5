// SPDX-License-Identifier: Apache-2.0
#include "behaviours.h"
#include "life.h"

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace trellant::testing::misbehaving {

namespace {

/// The text under `key`, which must hold no escapes; empty when there is no such key.
std::string textUnder(const std::string& request, const std::string& key) {
    const std::string start = "\"" + key + "\":\"";
    const std::size_t place = request.find(start);
    if (place == std::string::npos) {
        return {};
    }
    const std::size_t first = place + start.size();
    return request.substr(first, request.find('"', first) - first);
}

std::string decoded(std::string_view text) {
    std::string bytes;
    for (std::size_t index = 0; index < text.size(); ++index) {
        if (text[index] == '%') {
            const std::string digits(text.substr(index + 1, 2));
            bytes += static_cast<char>(std::strtol(digits.c_str(), nullptr, 16));
            index += 2;
        } else {
            bytes += text[index];
        }
    }
    return bytes;
}

void writePieces(std::string_view pieces) {
    while (!pieces.empty()) {
        const std::size_t end = pieces.find('|');
        const std::string piece = decoded(pieces.substr(0, end));
        if (end == std::string_view::npos) {
            // Last words: they may lie in the pipe when this process is gone.
            writeAll(STDERR_FILENO, piece);
            return;
        }
        writeAlone(STDERR_FILENO, piece);
        pieces.remove_prefix(end + 1);
    }
}

int end(const std::string& how) {
    constexpr std::string_view bySignal = "signal";
    if (how.starts_with(bySignal)) {
        const rlimit noCoreFile{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCoreFile);
        std::raise(std::atoi(how.c_str() + bySignal.size()));
        return brokenStatus;
    }
    return std::atoi(how.c_str());
}

}  // namespace

int actAsTold() {
    announce();
    const std::string request = readRequest();
    writePieces(textUnder(request, "aafPath"));
    writeAll(STDOUT_FILENO, decoded(textUnder(request, "workDirectory")));
    return end(textUnder(request, "mediaSearchDirectory"));
}

int repeatAsTold() {
    announce();
    const std::string request = readRequest();
    const std::string parts = textUnder(request, "aafPath");
    const std::size_t first = parts.find('|');
    const std::size_t second = parts.find('|', first + 1);
    const std::string unit = decoded(parts.substr(first + 1, second - first - 1));
    std::size_t count =
        std::strtoull(textUnder(request, "mediaSearchDirectory").c_str(), nullptr, 10);

    constexpr std::size_t pieceSize = 65'536;
    const std::size_t unitsInPiece = pieceSize / unit.size() + 1;
    std::string piece;
    for (std::size_t units = 0; units < unitsInPiece; ++units) {
        piece += unit;
    }
    writeAll(STDOUT_FILENO, decoded(parts.substr(0, first)));
    while (count > 0) {
        const std::size_t units = std::min(count, unitsInPiece);
        writeAll(STDOUT_FILENO, std::string_view(piece).substr(0, units * unit.size()));
        count -= units;
    }
    writeAll(STDOUT_FILENO, decoded(parts.substr(second + 1)));
    return 0;
}

int reportAsTold() {
    const std::string request = readRequest();
    const int count = std::atoi(textUnder(request, "aafPath").c_str());
    const auto size = std::strtoull(textUnder(request, "workDirectory").c_str(), nullptr, 10);
    const auto report = [](const std::string& phase) {
        writeAlone(STDERR_FILENO,
                   R"(TRELLANT-AAF-PROGRESS {"fraction":0,"phase":")" + phase + "\"}\n");
    };
    report("first");
    announce();
    waitForRelease();
    for (int number = 1; number <= count; ++number) {
        std::string phase = std::to_string(number);
        phase.resize(std::max<std::size_t>(size, phase.size()), ' ');
        report(phase);
    }
    writeAll(STDOUT_FILENO, echo(request));
    return 0;
}

}  // namespace trellant::testing::misbehaving
