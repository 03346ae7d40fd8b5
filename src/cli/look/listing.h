// SPDX-License-Identifier: Apache-2.0
// Lists of facts in three forms: aligned columns for people, CSV for sheets, one JSON object a line
// for programs. What a person sees is a choice of the columns; the others get all.
#pragma once

#include "terminal/table.h"

#include <trellant/model/rational.h>

#include <cstddef>
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

/// A number that has to stay exact.
struct Fraction {
    AAFRational value{};
};

/// Nothing, a text, a number, a yes or no, a gain, a fraction.
using Value = std::variant<std::monostate, std::string, std::int64_t, double, bool, Gain, Fraction>;

enum class Audience {
    everyone,
    /// Sheets and programs, and people who ask for everything.
    details,
    /// Short forms of what sheets and programs get whole.
    people,
    /// What people get in a short form.
    machines
};

struct Field {
    /// The name in JSON; plain ASCII; not used for people's own columns.
    std::string_view key;
    /// The title of the column.
    std::string_view title;
    Audience audience = Audience::details;
    Align align = Align::left;
    bool mayShrink = false;
    /// As in Column.
    std::size_t rank = 0;
    /// Holds fractions: two columns in a sheet, which takes "1/2" for a date.
    bool isFraction = false;
};

struct Listing {
    std::vector<Field> fields;
    /// Each row has a value for each field.
    std::vector<std::vector<Value>> rows;
};

/// The columns for people, less those that hold nothing; with `everything` the details too, and
/// nothing left out.
[[nodiscard]] Table tableForPeople(const Listing& listing, bool everything = false);
/// The value as a cell; numbers with as many digits as it takes to read them back.
[[nodiscard]] std::string cellText(const Value& value);
/// RFC 4180: CRLF after each record, titles first, quotes where needed. Numbers as cellText tells
/// them, a fraction as numerator and denominator. A text that a sheet would take for a formula (it
/// begins with = + - @ or a tab) gets an apostrophe in front; control characters other than tab and
/// line feed are replaced.
[[nodiscard]] std::string csv(const Listing& listing);
/// One object a row, each followed by a line feed; keys in the order of the fields, what is absent
/// left out.
[[nodiscard]] std::string jsonLines(const Listing& listing);

}  // namespace trellant::cli
