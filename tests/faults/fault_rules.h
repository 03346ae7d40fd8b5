// SPDX-License-Identifier: Apache-2.0
// What may become of a request of which one system call failed. The rules, by what the call is for:
//
//   call                        a failure comes to
//   startup (C library)         the same result, or an end without a word on standard output
//   memory                      the same result, the searched file not found, or "out of memory"
//   signals, confinement,       the same result
//     memoryLook, memoryRead,
//     closing, kernelCopy
//   streamCheck                 status 2, not a word
//   requestRead                 what was read counts: status 1 when nothing was
//   lineWrite                   status 2, not a word more; the result only if it was out already
//   resultWrite                 status 2 and a log line; for a reader that is gone no line
//   folderCreation, folderLook  status 2 and a log line, unless the folder is there
//   sourceOpen, first look      status 2 and a log line
//   sourceRead                  footer and table, and while copying: status 2 and a log line; small
//                               values are read a second time, so the same result; the head of
//                               audio that is not taken out: its format is what its descriptor says
//   nameLook                    the same result, or the next free name: nothing is ever replaced
//   fileCreation, fileWrite     status 2 and a log line
//   probe...                    the audio's format is what its descriptor says
//   mediaLook, search...        the audio is not located
//
// An interrupted call is made again wherever the system may interrupt one: the same result.
#pragma once

#include "scene.h"
#include "traced_run.h"

#include <gtest/gtest.h>

#include <vector>

namespace trellant::testing {

/// The errno values worth trying in a call of this kind.
[[nodiscard]] std::vector<int> errorsOf(const SeenCall& seen);

/// The run that met no fault.
struct Undisturbed {
    std::string output{};
    std::string errors{};
    std::map<std::string, std::string> everything{};
};

struct Fault {
    SeenCall seen{};
    int errorNumber = 0;
};

/// Whether the run came to what the rules allow for its fault. `before` is what stood in the
/// scene's folder before it.
[[nodiscard]] ::testing::AssertionResult judge(const Scene& scene, const Undisturbed& undisturbed,
                                               const std::map<std::string, std::string>& before,
                                               const Fault& fault, const TracedRun& traced);

}  // namespace trellant::testing
