// SPDX-License-Identifier: Apache-2.0
// Everything that the encoder writes in a test can be kept for the tests of the schemas: where the
// environment variable TRELLANT_ENCODED names a folder, each document becomes a file in it, named
// after its kind and its content, so that equal ones are kept once. Without the variable nothing
// happens.
#pragma once

#include <string_view>

namespace trellant::testing {

/// Whether documents are kept: encode only then what the test itself has no use for.
[[nodiscard]] bool keepsEncodedDocuments();

/// Keeps `json`. `kind` is the schema that describes it ("request", "progress", "result",
/// "timeline"), or a record within that of the timeline ("timeline.event"). A folder that cannot be
/// written to stops the test.
void keepEncoded(std::string_view kind, std::string_view json);

/// What one run of the worker took and gave. `request` is the text of its standard input: one that
/// was accepted is kept as a request, one that was JSON and turned down as "refused". `result` is
/// the whole standard output of a run that succeeded, else empty.
void keepWorkerRun(std::string_view request, std::string_view result, std::string_view errors);

}  // namespace trellant::testing
