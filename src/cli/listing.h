// Lists of facts in three forms: aligned columns for people, CSV for sheets, one JSON object a line
// for programs. What a person sees is a choice of the columns; the others get all.
#pragma once

#include "table.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace trellant::cli {

/// A linear gain, shown in decibels.
struct Gain {
    double factor = 1;
};

/// Nothing, a text, a number, a yes or no, a gain.
using Value = std::variant<std::monostate, std::string, std::int64_t, double, bool, Gain>;

struct Field {
    /// The name in JSON; plain ASCII.
    std::string_view key;
    /// The title of the column.
    std::string_view title;
    bool forPeople = false;
    Align align = Align::left;
    bool mayShrink = false;
};

struct Listing {
    std::vector<Field> fields;
    /// Each row has a value for each field.
    std::vector<std::vector<Value>> rows;
};

/// The columns for people; with `everything` all of them.
[[nodiscard]] Table tableForPeople(const Listing& listing, bool everything = false);
/// All columns; numbers with as many digits as it takes to read them back.
[[nodiscard]] Table tableForSheets(const Listing& listing);
/// One object a row, each followed by a line feed; keys in the order of the fields, what is absent
/// left out.
[[nodiscard]] std::string jsonLines(const Listing& listing);

}  // namespace trellant::cli
