// SPDX-License-Identifier: Apache-2.0
// The audio of a hand-off, each piece in a file of its own.
//
// The worker writes into a fresh folder inside the wanted one, and only whole files move from there
// to their final names. So whatever ends the run, what is on disk is whole.
#pragma once

#include <trellant/client/worker_client.h>
#include <trellant/extraction/audio_store.h>
#include <trellant/extraction/extraction_report.h>
#include <trellant/handoff/hand_off.h>
#include <trellant/handoff/work_progress.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace [[gnu::visibility("default")]] trellant {

/// What audio files are called.
enum class FileNaming {
    /// As the source is.
    source,
    /// As its master mob where the source has no name, that of the interchange file, or one that
    /// several sources bear; else as the source is.
    masterMob
};

struct ExtractionRequest {
    std::string file{};
    /// As a person names it, and where it lies: an existing folder, absolute.
    std::string directory{};
    std::string directoryPath{};
    /// Searched for audio files that lie outside, beside the folder of `file` itself.
    std::vector<std::string> mediaFolders{};
    /// A file that is there with other bytes is replaced; else the new one gets another name. A
    /// file that the run reads (the hand-off, media outside of it) is never replaced.
    bool force = false;
    /// The written timeline names files by their whole paths; else by the way from its own folder,
    /// so that a folder may be moved and the same hand-off always gives the same bytes.
    bool absolutePaths = false;
    /// The program that makes AIFC files into WAVE files, and lets WAVE files say on which tape
    /// their sound lies where that has labels; absent: they stay as they are.
    std::optional<std::string> waveConverter{};
    AAFWorkerClient::HelperURLProvider helperURLProvider = installedWorker;
    FileNaming naming = FileNaming::source;
    /// What WAVE files of tapes with labels give as their date: seconds since 1970-01-01 00:00:00;
    /// absent: when the interchange file was changed last, as it says itself.
    std::optional<std::int64_t> date{};
    /// An existing folder, absolute: audio taken out is kept there once for equal files.
    std::optional<std::string> store{};
    AudioStore::Leaving storeLeaving = AudioStore::Leaving::link;
    /// Audio files that lie outside are copied into the folder too.
    bool copiesFound = false;
    /// Audio files are looked for in the folder of this file; empty: of `file` itself.
    std::string beside{};
};

/// Where the program that writes WAVE lies: beside the command, else in "../libexec/trellant"
/// seen from its folder; absent when it is in neither place.
[[nodiscard]] std::optional<std::string> installedWaveConverter();

/// The names of folders in `directory` that runs which were ended have left, ascending. One in
/// which a run is at work is not among them.
[[nodiscard]] std::vector<std::string> stagingFoldersIn(const std::string& directory);

/// One run. Its steps throw AAFWorkerClientError, AAFCancellationError after a stop,
/// FileSystemError where the system refuses and AudioStoreError for a damaged store.
class Extraction {
  public:
    /// Makes the hidden folder in which files come into being. `progress` must outlive this.
    Extraction(ExtractionRequest request, WorkProgress& progress);
    ~Extraction();
    Extraction(const Extraction&) = delete;
    Extraction& operator=(const Extraction&) = delete;
    Extraction(Extraction&&) = delete;
    Extraction& operator=(Extraction&&) = delete;

    /// All of it; call once. After a stop the audio files that are whole keep their final names.
    [[nodiscard]] ExtractionReport run();

    /// The name of the hidden folder.
    [[nodiscard]] std::string stagingName() const;
    /// Audio files that have their final names by now.
    [[nodiscard]] std::size_t placedCount() const noexcept;

  private:
    class Run;
    std::unique_ptr<Run> run_;
};

}  // namespace trellant
