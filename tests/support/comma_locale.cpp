// SPDX-License-Identifier: Apache-2.0
#include <bit>
#include <clocale>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <trellant_testing/comma_locale.h>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

namespace {

bool countsWithComma() {
    return std::strcmp(std::localeconv()->decimal_point, ",") == 0;
}

bool takeInstalled() {
    return std::setlocale(LC_NUMERIC, "de_DE.UTF-8") != nullptr && countsWithComma();
}

/// Compiles a locale that knows nothing but its decimal comma.
bool takeMade() {
    const TemporaryDirectory folder;
    std::ofstream(folder.file("source"))
        << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \"\"\ngrouping -1\nEND LC_NUMERIC\n";
    const char* const order = std::endian::native == std::endian::big ? "big" : "little";
    const std::string command = "localedef -c --" + std::string(order) + "-endian -i " +
                                folder.file("source") + " " + folder.file("xx_XX") +
                                " >/dev/null 2>&1";
    // It warns of all that the locale does not know, and its status says so.
    static_cast<void>(std::system(command.c_str()));
    const char* const value = std::getenv("LOCPATH");
    const auto before = value == nullptr ? std::nullopt : std::optional<std::string>(value);
    ::setenv("LOCPATH", folder.path().c_str(), 1);
    const bool taken = std::setlocale(LC_NUMERIC, "xx_XX") != nullptr && countsWithComma();
    if (before) {
        ::setenv("LOCPATH", before->c_str(), 1);
    } else {
        ::unsetenv("LOCPATH");
    }
    return taken;
}

}  // namespace

CommaLocale::CommaLocale() : before_(std::setlocale(LC_NUMERIC, nullptr)) {
    if (!takeInstalled() && !takeMade()) {
        std::setlocale(LC_NUMERIC, before_.c_str());
        throw std::runtime_error(
            "no locale with a decimal comma: install de_DE.UTF-8, or the program localedef");
    }
}

CommaLocale::~CommaLocale() {
    std::setlocale(LC_NUMERIC, before_.c_str());
}

}  // namespace trellant::testing
