// SPDX-License-Identifier: Apache-2.0
// Where the data of a command goes: standard output, or a file that is whole or not there.
#pragma once

#include "console.h"
#include "destination.h"

#include <trellant/base/read_files.h>
#include <trellant/json/json_writer.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

/// To be asked before the work is done: false, with the reason told, for a file that is there
/// already and may not be replaced, or that is one of `inputs`.
[[nodiscard]] bool mayDeliver(const Destination& destination,
                              const std::vector<std::string>& inputs, Console& console);

/// Data on its way to its destination, written as it is made. A file that is replaced stays as it
/// was until the new one is whole; without finish() nothing has happened to it.
class Delivery final : public JsonSink {
  public:
    /// Opens the destination; a failure is reported by finish().
    Delivery(Destination destination, Console& console);
    ~Delivery() override;
    Delivery(const Delivery&) = delete;
    Delivery& operator=(const Delivery&) = delete;
    Delivery(Delivery&&) = delete;
    Delivery& operator=(Delivery&&) = delete;

    /// Throws as Console::out does, for standard output.
    void write(std::string_view bytes) override;
    /// A file that was read for what is written: it is never replaced.
    void protect(const std::string& path) { read_.add(path); }
    /// Hands on what was gathered, so that whoever reads along sees it now.
    void flush();
    /// False when anything failed, which was said on the console then.
    [[nodiscard]] bool finish();

  private:
    void open();
    /// Puts the new file in its place; 0 or the error's number.
    [[nodiscard]] int place();

    Destination destination_;
    Console& console_;
    bool isConsole_;
    /// The new file, or the device or pipe that is written to; -1 when there is none.
    int descriptor_ = -1;
    /// The new file's own name until it is in its place; empty for a device or a pipe.
    std::string beside_;
    int failure_ = 0;
    ReadFiles read_;
    std::string gathered_;
};

/// Writes `text` there; false when that failed, which was said on the console then.
[[nodiscard]] bool deliver(const Destination& destination, std::string_view text, Console& console);

}  // namespace trellant::cli
