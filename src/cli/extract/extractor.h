// SPDX-License-Identifier: Apache-2.0
// One file's audio taken out, and what is said of it.
//
// The worker writes into a fresh folder inside the wanted one, and only whole files move from there
// to their final names. So whatever ends the run, what is on disk is whole.
#pragma once

#include "extract.h"
#include "report.h"

#include <trellant/extraction/extraction_report.h>

#include <optional>
#include <string>

namespace trellant::cli {

/// One file of a call, and where its audio goes.
struct ExtractJob {
    std::string file;
    std::string directory;
};

class Extractor {
  public:
    /// All of them must outlive this.
    Extractor(const ExtractOptions& options, Console& console, const StopToken& stop)
        : options_(options), console_(console), stop_(stop) {}

    /// Takes the audio of one file out and says on the console what is where.
    [[nodiscard]] ExitStatus run(const ExtractJob& job);

  private:
    /// A job's report, or why there is none, which was said then.
    struct Outcome {
        std::optional<ExtractionReport> report{};
        std::string failure{};
        std::optional<BagFacts> bag{};
    };

    [[nodiscard]] Outcome extract(const ExtractJob& job);
    [[nodiscard]] Outcome intoFolder(const ExtractJob& job, std::size_t& placed);
    [[nodiscard]] Outcome intoBag(const ExtractJob& job);
    [[nodiscard]] ExtractionRequest requestFor(const ExtractJob& job) const;
    [[nodiscard]] Outcome failureToWrite(const ExtractJob& job, const std::string& reason,
                                         std::size_t placed);
    [[nodiscard]] ExitStatus conclude(const ExtractJob& job, const Outcome& outcome);

    const ExtractOptions& options_;
    Console& console_;
    const StopToken& stop_;
    bool isFirst_ = true;
};

}  // namespace trellant::cli
