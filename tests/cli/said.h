// SPDX-License-Identifier: Apache-2.0
// Runs something that speaks through a console in a process of its own, its streams being pipes or
// pseudo-terminals, and gathers what it said.
#pragma once

#include "terminal/console.h"

#include <functional>
#include <map>
#include <optional>
#include <string>

namespace trellant::testing {

enum class Listener {
    pipe,
    /// A pipe whose writes return at once, however little of the text they took.
    impatientPipe,
    terminal,
    /// A pipe whose reader has gone.
    gone,
    /// No stream at all.
    closed
};

struct Setting {
    Listener out = Listener::pipe;
    Listener errors = Listener::pipe;
    /// Of terminals; 0 for one that does not tell.
    unsigned short columns = 80;
    cli::Verbosity verbosity = cli::Verbosity::normal;
    /// Set, or removed where absent, beside TERM=xterm, without NO_COLOR and COLUMNS.
    std::map<std::string, std::optional<std::string>> environment{};
};

struct Said {
    std::string out;
    std::string errors;
    /// What `speak` gave; 91 after OutputClosed, 92 after an exception, whose text then ends
    /// `errors`; 128 and the signal's number when a signal ended it.
    int status = 0;
};

[[nodiscard]] Said saidWithStatus(const Setting& setting,
                                  const std::function<int(cli::Console&)>& speak);
/// The same with status 0.
[[nodiscard]] Said said(const Setting& setting, const std::function<void(cli::Console&)>& speak);

}  // namespace trellant::testing
