// SPDX-License-Identifier: Apache-2.0
// What a request asked for beside the timeline, read out of the file that is open already.
#pragma once

#include "memory_use.h"

#include <trellant/mapper/mapper.h>
#include <trellant/model/timeline.h>
#include <trellant/omf/document.h>
#include <trellant/protocol/messages.h>

#include <string_view>

namespace trellant {

/// Whether the request names that extension.
[[nodiscard]] bool asksFor(const AAFWorkerProtocol::Request& request, std::string_view extension);

/// The extensions of an answer; absent when the request has no such key. `mapper` has made
/// `timeline` of `document`, and has kept the places of losses when they are asked for; `memory` is
/// that of this process. Audio is written again only for a request that takes audio out. Throws
/// what writing it throws.
[[nodiscard]] Boxed<AAFWorkerExtensions> extensionsFor(const AAFWorkerProtocol::Request& request,
                                                       const OMFDocument& document,
                                                       const Mapper& mapper,
                                                       const AAFTimeline& timeline,
                                                       const MemoryUse& memory);

}  // namespace trellant
