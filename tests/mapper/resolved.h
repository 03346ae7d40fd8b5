// SPDX-License-Identifier: Apache-2.0
// Source resolution on its own, over a document under construction.
#pragma once

#include "clip_loss.h"
#include "mapping_notes.h"
#include "source_resolution.h"

#include <trellant/omf/document.h>

#include <optional>
#include <string>
#include <trellant_testing/omf_builder.h>
#include <trellant_testing/temporary_directory.h>
#include <variant>
#include <vector>

namespace trellant::testing {

struct Resolution {
    std::optional<ResolvedSource> source{};
    std::optional<std::string> lossReason{};
    std::vector<std::string> diagnostics{};
    /// Those beside the loss of the clip, each as "TEXT at PATH".
    std::vector<std::string> records{};
};

/// Resolves `clip` in edit units of 1/`rate` of a second, nothing trimmed.
inline Resolution resolved(const OmfBuilder& omf, ObjectID clip, std::int64_t rate = 48'000,
                           const AAFRational& trim = AAFRational::zero()) {
    const TemporaryDirectory folder;
    const OMFDocument document(writeFile(folder.file("song.omf"), omf.build()));
    const OMFDocument::MobMap mobs = document.mobMap();
    MappingNotes notes;
    BoundedReads reads(document);
    DataKinds kinds(reads);
    SourceResolution resolution(reads, mobs, kinds);
    const SourceOrLoss found =
        resolution.resolveSourceClip(static_cast<OMFObject>(clip), AAFRational(rate), trim);
    Resolution result;
    if (const auto* loss = std::get_if<ClipLoss>(&found)) {
        result.lossReason = verlustGrund(*loss);
        recordDropped(*loss, ObjectPath("SCLP", static_cast<OMFObject>(clip)), notes);
    } else {
        result.source = std::get<ResolvedSource>(found);
    }
    result.diagnostics = notes.diagnostics();
    for (const AAFUnsupportedFeature& record : notes.takeUnsupported()) {
        if (record.severity == AAFUnsupportedFeature::Severity::renderAffecting) {
            result.records.push_back(record.description + " at " + record.objectPath.value_or(""));
        }
    }
    return result;
}

inline OMFObject object(const ObjectBuilder& builder) {
    return static_cast<OMFObject>(builder.id());
}

}  // namespace trellant::testing
