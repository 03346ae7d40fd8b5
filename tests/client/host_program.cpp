// SPDX-License-Identifier: Apache-2.0
#include "host_program.h"

#include <array>
#include <cstdio>
#include <stdexcept>

namespace trellant::testing {

namespace {

/// For the shell; the texts of these tests hold no quotes.
std::string quoted(const std::string& word) {
    return " '" + word + "'";
}

}  // namespace

std::string outputOfProgram(const std::vector<std::string>& commandLine,
                            const std::vector<std::string>& environment) {
    std::string command = "env -i";
    for (const std::vector<std::string>& words : {environment, commandLine}) {
        for (const std::string& word : words) {
            command += quoted(word);
        }
    }
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    if (pipe == nullptr) {
        throw std::runtime_error("cannot run " + command);
    }
    std::string output;
    std::array<char, 4'096> piece{};
    for (std::size_t count = 1; count > 0;) {
        count = std::fread(piece.data(), 1, piece.size(), pipe);
        output.append(piece.data(), count);
    }
    const int status = ::pclose(pipe);
    return status == 0 ? output : "ended with " + std::to_string(status) + ": " + output;
}

}  // namespace trellant::testing
