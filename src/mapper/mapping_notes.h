// What a mapping has to say beside the timeline: the records of what was lost, the diagnostics,
// and the reason of the loss in hand. The one door for losses.
#pragma once

#include "object_path.h"

#include <trellant/model/timeline.h>

#include <optional>
#include <string>
#include <unordered_set>
#include <vector>

namespace trellant {

class MappingNotes {
  public:
    /// Records that material was dropped: "omf-loss-N", informational.
    void addLoss(std::string message, const ObjectPath& at);
    /// Records that material is not rendered as meant: "omf-unsupported-N", render-affecting.
    /// N counts the records of both kinds. Neither removes duplicates.
    void addUnsupported(std::string message, const ObjectPath& at);
    /// The same, unless an earlier call of this function recorded that path. Only this function
    /// writes such paths, so no other record can hold one.
    void addUnsupportedOncePerPath(std::string message, const ObjectPath& at);

    void diagnose(std::string line) { diagnostics_.push_back(std::move(line)); }

    [[nodiscard]] const std::vector<std::string>& diagnostics() const noexcept {
        return diagnostics_;
    }
    [[nodiscard]] std::vector<AAFUnsupportedFeature> takeUnsupported() noexcept {
        return std::move(unsupported_);
    }

    /// Why the clip in hand is lost; set where its resolution fails, cleared before each clip.
    std::optional<std::string> verlustGrund;

  private:
    void add(std::string_view kind, AAFUnsupportedFeature::Severity severity, std::string message,
             std::string at);

    std::vector<AAFUnsupportedFeature> unsupported_;
    std::vector<std::string> diagnostics_;
    std::unordered_set<std::string> pathsRecordedOnce_;
};

}  // namespace trellant
