// SPDX-License-Identifier: Apache-2.0
// The timeline's records from JSON and to it.
#pragma once

#include <trellant/json/json_decode.h>
#include <trellant/json/json_encode.h>
#include <trellant/model/record_fields.h>

namespace [[gnu::visibility("default")]] trellant {

/// `validate`: each AAFTimeline that is read passes AAFRawTimelineValidation before it is returned,
/// which else throws its Failure. `none`: for tools that show what a damaged timeline holds.
using TimelineChecks = RecordChecks;

}  // namespace trellant
