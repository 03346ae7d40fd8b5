// One run of `trellant extract`, step by step. Every step throws AAFCancellationError after a stop
// and FileSystemError where the system refuses.
#pragma once

#include "embedded_media.h"
#include "extract.h"
#include "look/step_progress.h"
#include "placement.h"
#include "report.h"
#include "staging.h"
#include "wave_conversion.h"

#include <optional>
#include <string>
#include <unordered_map>

namespace trellant::cli {

class Extraction {
  public:
    /// References must outlive this. `directory`: an existing folder, absolute.
    Extraction(const ExtractOptions& options, std::string directory, StepProgress& progress);

    /// All of it; throws AAFWorkerClientError too.
    [[nodiscard]] ExtractReport run();

    /// The name of the hidden folder in which files come into being.
    [[nodiscard]] std::string stagingName() const { return staging_.name(); }
    /// Audio files that have their final names by now.
    [[nodiscard]] std::size_t placedCount() const noexcept { return placement_.placed().size(); }

  private:
    void runWorker();
    void separate();
    void convert();
    void placeAudio();
    void search();
    void makeUsable();
    PlacedFile writeDocument(const std::string& name, const std::string& text);
    [[nodiscard]] std::string manifestText() const;
    [[nodiscard]] std::vector<AudioEntry> entries();
    [[nodiscard]] AudioEntry entryOf(std::size_t index) const;

    const ExtractOptions& options_;
    std::string directory_;
    StepProgress& progress_;
    Staging staging_;
    Placement placement_;
    Inspection inspection_;
    std::optional<UnusedMedia> unused_;
    WaveConversions conversions_;
    /// By essence id.
    std::unordered_map<std::string, PlacedFile> placedByEssence_;
    OpenChoices choices_;
};

}  // namespace trellant::cli
