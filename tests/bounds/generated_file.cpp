// SPDX-License-Identifier: Apache-2.0
#include "generated_file.h"

#include "bounded_run.h"

#include <spawn.h>
#include <stdexcept>
#include <sys/wait.h>
#include <unistd.h>

namespace trellant::testing {

std::uint32_t generateFile(const std::string& path, const std::string& shape, std::uint32_t count,
                           const std::vector<std::string>& options) {
    const std::uint32_t real = sanitized ? count / 10 : count;
    std::vector<std::string> arguments{TRELLANT_GENERATOR, shape, path, "--count",
                                       std::to_string(real)};
    arguments.insert(arguments.end(), options.begin(), options.end());
    std::vector<char*> pointers;
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    pid_t child = 0;
    int status = -1;
    if (::posix_spawn(&child, TRELLANT_GENERATOR, nullptr, nullptr, pointers.data(), environ) !=
            0 ||
        ::waitpid(child, &status, 0) != child || status != 0) {
        throw std::runtime_error("cannot generate " + shape);
    }
    return real;
}

}  // namespace trellant::testing
