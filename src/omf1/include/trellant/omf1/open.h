// SPDX-License-Identifier: Apache-2.0
// Files of OMF 1.x, read as far as their structure is known. Their objects are presented as those
// of OMF 2.x, so that whoever reads one model reads both.
#pragma once

#include <trellant/omf/document.h>

#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Opens the file at `path`, whichever of the two models it is; of OMF 1.x the document says so
/// (OMFDocument::olderModel). Throws as OMFDocument does, and unsupported for a file of OMF 1.x
/// whose lists and texts lie over one another beyond all bounds.
[[nodiscard]] OMFDocument openAnyOMF(const std::string& path);

}  // namespace trellant
