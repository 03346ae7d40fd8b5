// SPDX-License-Identifier: Apache-2.0
// What every behaviour of the misbehaving worker is made of. All of it ends the process when
// something fails that no test asks for.
#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>

namespace trellant::testing::misbehaving {

/// The status of a worker that could not do what it was started for.
inline constexpr int brokenStatus = 99;

/// Where this process was started from; the files below stand beside it.
void setProgram(std::string path);

/// Adds this process to the file PROGRAM.pids.
void announce();
/// Adds a process that this one started to the file PROGRAM.grandchildren.
void announceGrandchild(pid_t process);
/// Until the test makes the file PROGRAM.release.
void waitForRelease();
/// Makes the file PROGRAM.sigterm; safe in a signal handler.
void noteSignal();
/// For as long as any test could need it; a test that fails leaves nothing behind for good.
[[noreturn]] void sleepForever();
/// Ends this process by an alarm in a few minutes, whatever it hangs in.
void limitLife();

/// Lets a process of its own do `work`, with this one's pipes.
void startGrandchild(const std::function<void()>& work);

/// All of standard input.
[[nodiscard]] std::string readRequest();
void writeAll(int stream, std::string_view text);
/// Writes the text and waits until the other side has taken all of it, so that it cannot come
/// together with what follows.
void writeAlone(int stream, std::string_view text);
/// `size` bytes of long lines.
void flood(int stream, std::size_t size);

/// `text` between quotes.
[[nodiscard]] std::string quoted(std::string_view text);
/// A result whose composition name and only diagnostic are `request`.
[[nodiscard]] std::string echo(const std::string& request);

}  // namespace trellant::testing::misbehaving
