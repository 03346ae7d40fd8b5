#include "behaviours.h"
#include "life.h"

#include <csignal>
#include <cstdlib>
#include <string>
#include <sys/resource.h>
#include <unistd.h>

namespace trellant::testing::odd {

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

}  // namespace trellant::testing::odd
