// The layer of system calls: seccomp.
#pragma once

namespace trellant {

/// From here on the calling thread, and what it starts, has only the calls that reading a file and
/// answering take, with `mayWrite` also those that create and remove a file; every other call fails
/// with ENOSYS. No file is opened for truncation, none for writing without `mayWrite`. 0, or the
/// errno value of the refusal, and then nothing has changed. Needs no_new_privs.
[[nodiscard]] int restrictCalls(bool mayWrite) noexcept;

}  // namespace trellant
