// SPDX-License-Identifier: Apache-2.0
// What the tests of bounds share: hostile files in a folder of their own, runs of the worker over
// them, and the promises that hold for every run.
#pragma once

#include "bounded_run.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <trellant_testing/temporary_directory.h>

namespace trellant::testing {

/// Program, stack, cached blocks of the file, what the C library keeps, and large pages that are
/// used in part.
inline constexpr std::uint64_t base = 8 * mebibyte;
/// The same as addresses, of which some are never used.
inline constexpr std::uint64_t addressBase = 32 * mebibyte;

/// The lines of a worker that fails before the file is open.
[[nodiscard]] std::string openingLines();
/// Those that follow until the first slot is mapped.
[[nodiscard]] std::string openSlotLines();
inline constexpr std::string_view outOfMemory = "unexpected failure: out of memory";
inline constexpr std::string_view noModel =
    "Unsupported OMF/Bento feature: not an OMF 2.x object model (OMFI:OOBJ:ObjClass registry entry "
    "missing)";
inline constexpr std::string_view noClips =
    "Malformed OMF/Bento file: composition contains no resolvable audio Source Clips";

class BoundsTest : public ::testing::Test {
  protected:
    /// Where the hostile file goes.
    [[nodiscard]] std::string file() const { return folder_.file("hostile.omf"); }
    [[nodiscard]] std::string work() const { return folder_.file("work"); }

    /// Runs the worker on the file with so many bytes of address space. Fails unless it comes to an
    /// end of its own with status 0 or 2, says nothing on standard output but an answer, and says
    /// why it failed in one line.
    [[nodiscard]] BoundedRun inspect(std::uint64_t addressSpace) const {
        return run("inspect", addressSpace);
    }
    [[nodiscard]] BoundedRun extract(std::uint64_t addressSpace) const {
        return run("extractAndInspect", addressSpace);
    }
    [[nodiscard]] BoundedRun run(std::string_view operation, std::uint64_t addressSpace,
                                 const std::string& groupProcesses = {}) const;

    /// The answer for the small document, of which the file holds all.
    [[nodiscard]] std::string smallAnswer() const;

    /// It failed for this reason. `progress`: the lines before.
    static void expectFailed(const BoundedRun& run, std::string_view progress,
                             std::string_view message);
    /// It failed for want of memory, wherever it was.
    static void expectOutOfMemory(const BoundedRun& run);
    /// At most so many bytes were resident at once. Records the figures under `shape`.
    static void expectPeak(const BoundedRun& run, std::string_view shape, std::uint64_t bound);

  private:
    TemporaryDirectory folder_;
};

}  // namespace trellant::testing
