// SPDX-License-Identifier: Apache-2.0
// A process that works for a host ends with it, also when the host is killed and can tell nobody.
//
// The host is gone when it is no longer the parent and nobody is left at the other end of standard
// output or of standard error. Both have to hold: a thread of the host that ends is not the host, a
// shell may leave a pipeline behind that goes on, and a reader may have enough while the host
// lives.
#pragma once

#include <csignal>

namespace [[gnu::visibility("default")]] trellant {

/// From now on this process ends with `status` soon after its host, without a word: at once where
/// the system tells of a parent's end (by SIGUSR1, on Linux), else at the next look. Call once, at
/// the start.
void watchHost(int status) noexcept;

/// A look: ends the process when it watches its host and that is gone. For places that come by
/// every few milliseconds; it costs a system call.
void endIfHostIsGone() noexcept;

/// The file that this process is writing, as long as this lives: it is removed when the process
/// ends because its host is gone. Processes that watch no host leave it alone.
class UnfinishedFile {
  public:
    /// `path` outlives this.
    explicit UnfinishedFile(const char* path) noexcept;
    ~UnfinishedFile();
    UnfinishedFile(const UnfinishedFile&) = delete;
    UnfinishedFile& operator=(const UnfinishedFile&) = delete;
    UnfinishedFile(UnfinishedFile&&) = delete;
    UnfinishedFile& operator=(UnfinishedFile&&) = delete;
};

/// While one lives, nothing of what is described here ends the process: for the moment between the
/// creation of a file and its UnfinishedFile.
class EndPutOff {
  public:
    EndPutOff() noexcept;
    ~EndPutOff();
    EndPutOff(const EndPutOff&) = delete;
    EndPutOff& operator=(const EndPutOff&) = delete;
    EndPutOff(EndPutOff&&) = delete;
    EndPutOff& operator=(EndPutOff&&) = delete;

  private:
    sigset_t before_{};
};

/// SIGHUP, SIGINT and SIGTERM end the process as before (not at all where they are ignored), and
/// the unfinished file is removed first.
void removeUnfinishedFileOnSignals() noexcept;

}  // namespace trellant
