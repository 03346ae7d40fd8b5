// SPDX-License-Identifier: Apache-2.0
// What a system call of the worker is made for: the ground on which a fault in it is judged.
#pragma once

#include "tracee.h"

#include <map>
#include <optional>
#include <string>

namespace trellant::testing {

enum class CallKind {
    /// Of the C library, before the program's first own call.
    startup,
    memory,
    signals,
    /// Whether an output is open.
    streamCheck,
    /// How much memory there is, by asking and by opening and reading the files of control groups.
    memoryLook,
    memoryRead,
    requestRead,
    /// To standard error.
    lineWrite,
    /// To standard output.
    resultWrite,
    /// Giving up what the request does not need.
    confinement,
    folderCreation,
    /// Whether a folder on the way to the work directory is there.
    folderLook,
    sourceOpen,
    /// The size of the source.
    sourceLook,
    sourceRead,
    /// Whether a name in the work directory is free.
    nameLook,
    fileCreation,
    kernelCopy,
    fileWrite,
    /// Opening, asking and reading a file of audio for its header.
    probeOpen,
    probeLook,
    probeRead,
    /// Whether a file that a locator names is there.
    mediaLook,
    searchOpen,
    searchLook,
    searchRead,
    closing,
    /// Its end, and asking for its number.
    infallible,
    /// Nobody has thought about it.
    unknown
};

/// For messages.
[[nodiscard]] const char* nameOf(CallKind kind);

struct SeenCall {
    /// Counted from the start of the program.
    std::size_t index = 0;
    CallKind kind = CallKind::unknown;
    /// How many of its kind came before.
    std::size_t ordinal = 0;
    SystemCall call{};
    /// What the call names, or what its descriptor was opened as; empty for other calls.
    std::string path{};
    /// Media are being copied out.
    bool isWithinCopy = false;
    /// The result is out.
    bool isAfterResult = false;
};

struct CallPlaces {
    std::string source{};
    std::string work{};
};

/// Follows the calls of one process, in their order.
class CallReader {
  public:
    explicit CallReader(CallPlaces places) : places_(std::move(places)) {}

    [[nodiscard]] SeenCall see(const SystemCall& call, const Tracee& process);
    /// The end of the call last seen.
    void returned(std::int64_t result);

  private:
    enum class Role { source, folder, audio, memory, rule };
    struct Opened {
        Role role = Role::audio;
        std::string path{};
    };

    [[nodiscard]] CallKind kindOf(const SystemCall& call, const std::string& path);
    [[nodiscard]] CallKind openingKind(const std::string& path, std::uint64_t flags);
    [[nodiscard]] CallKind lookKind(const std::string& path, std::uint64_t flags) const;
    [[nodiscard]] bool isOpenAs(std::uint64_t descriptor, Role role) const;
    [[nodiscard]] CallKind descriptorKind(std::uint64_t descriptor, CallKind ofSource,
                                          CallKind ofFolder, CallKind ofAudio) const;

    CallPlaces places_;
    std::size_t count_ = 0;
    bool hasBegun_ = false;
    bool sourceWasOpened_ = false;
    bool isWithinCopy_ = false;
    bool isAfterResult_ = false;
    std::map<CallKind, std::size_t> ordinals_;
    std::map<std::uint64_t, Opened> opened_;
    std::optional<Opened> opening_;
};

}  // namespace trellant::testing
