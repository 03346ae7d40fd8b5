// SPDX-License-Identifier: Apache-2.0
// The worker's three streams, without buffers of the language between: each line is one write, and
// nothing waits when the process ends.
#pragma once

#include <trellant/json/json_writer.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace trellant {

/// Exit statuses, as the host reads them.
enum class ExitStatus : std::int32_t { success = 0, requestRejected = 1, processingFailed = 2 };

/// Makes the streams safe to use: a reader that goes away becomes a failed write, not a signal,
/// and a stream that was closed from the start ends the process.
void prepareStandardStreams() noexcept;

/// Standard input to its end; what a failing read cuts off is left out.
[[nodiscard]] std::string readStandardInput();

/// Writes one progress line to standard error.
void emitProgress(std::string_view phase, double fraction);

/// Writes one log line to standard error.
void logLine(std::string_view message);

/// Logs the message and ends the process.
[[noreturn]] void fail(std::string_view message, ExitStatus code);

/// Ends the process at once.
[[noreturn]] void end(ExitStatus status) noexcept;

/// Where the result goes. A reader that went away ends the process without a word; any other
/// failure throws FileSystemError.
class StandardOutput final : public JsonSink {
  public:
    void write(std::string_view text) override;
};

}  // namespace trellant
