// SPDX-License-Identifier: Apache-2.0
// How much a composition expands to. Segments may share what they refer to, or refer to their own
// track, so that a few thousand bytes describe millions of segments: the mapping has its bounds
// for them, but under the sanitizers a run up to these takes minutes.
#pragma once

#include <trellant/omf/document.h>

#include <cstddef>

namespace trellant::fuzzing {

/// Whether a walk over all compositions of `document` visits more than `limit` segments, each
/// counted as often as it is come to.
[[nodiscard]] bool expandsBeyond(const OMFDocument& document, std::size_t limit);

}  // namespace trellant::fuzzing
