// SPDX-License-Identifier: Apache-2.0
// How a long piece of work says how far it is, and how it learns that nobody waits any more.
#pragma once

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <string>
#include <utility>

namespace [[gnu::visibility("default")]] trellant {

/// By itself it shows nothing; who wants to see something derives from it. Used by one thread at a
/// time.
class WorkProgress {
  public:
    /// What a remark is about: something to know, or something that did not work.
    enum class Remark { note, problem };

    explicit WorkProgress(StopToken stop = {}) : stop_(std::move(stop)) {}
    virtual ~WorkProgress() = default;
    WorkProgress(const WorkProgress&) = delete;
    WorkProgress& operator=(const WorkProgress&) = delete;
    WorkProgress(WorkProgress&&) = delete;
    WorkProgress& operator=(WorkProgress&&) = delete;

    [[nodiscard]] const StopToken& stop() const noexcept { return stop_; }

    /// A new step of so many bytes; 0 when nobody knows.
    void begin(std::string label, std::uint64_t totalBytes);
    /// Bytes done since the step began. Throws AAFCancellationError after a stop.
    void at(std::uint64_t bytes);
    /// Bytes done in this step by now.
    [[nodiscard]] std::uint64_t bytes() const noexcept { return bytes_; }
    /// Further bytes done.
    void advance(std::uint64_t bytes) { at(bytes_ + bytes); }
    /// Throws AAFCancellationError after a stop.
    void check() const;

    /// Work that measures itself: `fraction` from 0 to 1.
    virtual void show(double /*fraction*/, const std::string& /*label*/) {}
    /// One sentence for the person who waits.
    virtual void say(Remark /*kind*/, const std::string& /*text*/) {}

  private:
    StopToken stop_;
    std::string label_;
    std::uint64_t totalBytes_ = 0;
    std::uint64_t bytes_ = 0;
};

}  // namespace trellant
