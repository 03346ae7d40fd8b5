// SPDX-License-Identifier: Apache-2.0
// A tokenizer of REAPER projects for tests, and the plan that a project says.
#pragma once

#include <trellant/exchange/export_plan.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant::testing {

struct ReaperChunk {
    /// A word and its fields, quotes taken off.
    using Line = std::vector<std::string>;

    Line head{};
    std::vector<Line> lines{};
    std::vector<ReaperChunk> chunks{};

    /// The one line or the chunks that begin with this word. `line` throws std::runtime_error where
    /// there is not exactly one.
    [[nodiscard]] const Line& line(std::string_view word) const;
    [[nodiscard]] std::vector<Line> linesOf(std::string_view word) const;
    [[nodiscard]] std::vector<ReaperChunk> chunksOf(std::string_view word) const;
};

/// Throws std::runtime_error for a quote that does not end, a chunk that does not, and for what
/// stands behind the outermost one.
[[nodiscard]] ReaperChunk reaperProject(std::string_view text);

/// What the project says of tracks, clips and media. `media` have the rates of the files.
[[nodiscard]] exchange::ExportPlan planOfReaper(std::string_view text,
                                                const std::vector<exchange::PlannedMedia>& media);

/// The plan as a project says it: of media the file's name alone, no label of the start, fades of
/// the shapes that there are, crossfades by their overlaps alone, a pan of its own for every track.
[[nodiscard]] exchange::ExportPlan asReaperSays(const exchange::ExportPlan& plan);

}  // namespace trellant::testing
