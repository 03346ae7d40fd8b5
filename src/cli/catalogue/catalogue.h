// SPDX-License-Identifier: Apache-2.0
// `trellant catalogue`: the rows of scans in one SQLite file, and what it can be asked.
#pragma once

#include "terminal/console.h"
#include "terminal/destination.h"
#include "terminal/exit_status.h"

#include <trellant/base/cancellation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace trellant::cli {

struct CatalogueCall {
    enum class What { build, query, stats };
    enum class Form { people, csv, json };
    What what = What::stats;
    std::string catalogue;
    /// Shards of `build`; of `query` the question and what it is asked with.
    std::vector<std::string> rest;
    /// In place of a question that is ready.
    std::optional<std::string> sql;
    Form form = Form::people;
    /// Rows at most; 0: all.
    std::uint64_t limit = 1'000;
    Destination destination;
};

[[nodiscard]] ExitStatus runCatalogue(const CatalogueCall& call, Console& console,
                                      const StopToken& stop);

}  // namespace trellant::cli
