// SPDX-License-Identifier: Apache-2.0
// `trellant extract --salvage`: the sounds of one damaged file, found and copied in a confined
// child, then moved to their final names.
#pragma once

#include "extractor.h"

#include <trellant/salvage/salvage_report.h>

#include <variant>

namespace trellant::cli {

class Salvager {
  public:
    /// Both must outlive this. To be used while no other thread is at work.
    Salvager(const ExtractCall& call, Console& console) : call_(call), console_(console) {}

    /// Takes the sounds of one file out and says on the console what is where.
    [[nodiscard]] ExitStatus run(const ExtractJob& job);

  private:
    /// What came of a job, or why nothing did.
    using Outcome = std::variant<salvage::SalvageReport, std::string>;

    [[nodiscard]] Outcome salvage(const ExtractJob& job);
    [[nodiscard]] ExitStatus conclude(const ExtractJob& job, const salvage::SalvageReport& report);

    const ExtractCall& call_;
    Console& console_;
    bool isFirst_ = true;
};

}  // namespace trellant::cli
