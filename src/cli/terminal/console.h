// SPDX-License-Identifier: Apache-2.0
// What a command says: data on standard output, messages on standard error. Knows whether a person
// or a pipe is at the other end.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace trellant::cli {

enum class Verbosity { quiet, normal, verbose };

/// The reader of standard output has gone away: no error, but nothing more to say.
struct OutputClosed {};

class Console {
  public:
    /// Columns of a page that is no terminal.
    static constexpr std::size_t unlimitedColumns = 0;

    /// Looks at the streams, NO_COLOR, TERM and COLUMNS. From then on a reader that goes away and a
    /// file at its size limit are failed writes to the process, not signals, and a stream that was
    /// closed from the start stays unused.
    explicit Console(Verbosity verbosity = Verbosity::normal);

    /// Writes data to standard output, unbuffered by line: call it with whole pieces. Throws
    /// OutputClosed when the reader has gone, FileSystemError for any other failure.
    void out(std::string_view text);
    /// Writes "trellant: MESSAGE" and a line feed to standard error: what went wrong. Control
    /// characters of the message are shown harmlessly.
    void error(std::string_view text);
    /// The same for what a person should know; not when quiet.
    void note(std::string_view text);
    /// The same for what helps to find a fault; only when verbose.
    void detail(std::string_view text);

    /// Terminal cells a line of standard output has; unlimitedColumns when it is no terminal.
    [[nodiscard]] std::size_t outColumns() const noexcept { return outColumns_; }
    [[nodiscard]] bool outIsTerminal() const noexcept { return outIsTerminal_; }
    [[nodiscard]] bool outHasColour() const noexcept { return outHasColour_; }
    [[nodiscard]] Verbosity verbosity() const noexcept { return verbosity_; }

    /// Whether bar() shows anything.
    [[nodiscard]] bool hasBar() const noexcept { return hasBar_; }
    /// One line at the foot of the terminal on standard error, drawn anew at each call; nothing
    /// when that is no terminal or when quiet. `fraction` from 0 to 1. Messages in between do not
    /// mix with it.
    void bar(double fraction, std::string_view label);
    /// Takes the bar away.
    void endBar();

  private:
    void message(std::string_view text);
    void wipeBar();

    Verbosity verbosity_;
    bool outIsTerminal_ = false;
    bool outHasColour_ = false;
    std::size_t outColumns_ = unlimitedColumns;
    bool hasBar_ = false;
    /// What stands at the foot of the terminal now; empty when nothing does.
    std::string barLine_;
};

/// `text` bold, dimmed or in a colour when `wanted`, else as it is.
enum class Paint { bold, dim, red, yellow, green };
[[nodiscard]] std::string painted(std::string_view text, Paint paint, bool wanted);

}  // namespace trellant::cli
