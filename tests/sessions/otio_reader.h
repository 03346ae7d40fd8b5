// SPDX-License-Identifier: Apache-2.0
// A strict reader of OTIO files for tests: from the schemas alone, apart from what stands under
// metadata.trellant.
#pragma once

#include <trellant/exchange/export_plan.h>

#include <string_view>

namespace trellant::testing {

/// The plan that the file says. Throws std::runtime_error for an object of another schema or one
/// without a key that its schema asks for, and for what is not JSON.
[[nodiscard]] exchange::ExportPlan planOfOtio(std::string_view text);

}  // namespace trellant::testing
