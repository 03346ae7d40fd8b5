// SPDX-License-Identifier: Apache-2.0
// Lists of facts in three forms: aligned columns for people, CSV for sheets, one JSON object a line
// for programs. What a person sees is a choice of the columns; the others get all.
//
// A list is a table of columns, each with its name and the function that says its value. Rows are
// made one by one while they are written: a list of a million clips takes no more memory than one.
#pragma once

#include "terminal/table.h"

#include <trellant/json/json_writer.h>
#include <trellant/model/timeline.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace trellant::cli {

enum class Audience {
    everyone,
    /// Sheets and programs, and people who ask for everything.
    details,
    /// Short forms of what sheets and programs get whole.
    people,
    /// What people get in a short form.
    machines
};

struct Column {
    /// The name in JSON; plain ASCII; not used for people's own columns.
    std::string_view key;
    /// The title of the column.
    std::string_view title;
    Audience audience = Audience::details;
    Align align = Align::left;
    bool mayShrink = false;
    /// As in TableColumn.
    std::size_t rank = 0;
    /// Holds fractions: two columns in a sheet, which takes "1/2" for a date.
    bool isFraction = false;
};

/// Takes the value of one column of one row: one call at most, none when there is nothing to say.
class Cell {
  public:
    Cell() = default;
    Cell(const Cell&) = delete;
    Cell(Cell&&) = delete;
    Cell& operator=(const Cell&) = delete;
    Cell& operator=(Cell&&) = delete;
    virtual ~Cell() = default;

    virtual void text(std::string_view value) = 0;
    /// A text that no stranger had a hand in: a timecode, a word of ours. Printable ASCII, of which
    /// no form needs an escape, quotes or a guard.
    virtual void word(std::string_view value) = 0;
    virtual void integer(std::int64_t value) = 0;
    virtual void number(double value) = 0;
    virtual void boolean(bool value) = 0;
    /// A linear factor that is shown in decibels.
    virtual void decibels(double factor) = 0;
    virtual void fraction(const AAFRational& value) = 0;
    /// Numbers of losses, from 1.
    virtual void lossNumbers(const std::vector<std::size_t>& numbers) = 0;
    virtual void points(const AAFAutomationEnvelope& envelope) = 0;

    void text(const std::optional<std::string>& value) {
        if (value) {
            text(std::string_view(*value));
        }
    }
    void text(const std::string& value) { text(std::string_view(value)); }
    void text(const char* value) { text(std::string_view(value)); }
    void integer(const std::optional<std::int64_t>& value) {
        if (value) {
            integer(*value);
        }
    }
    void number(const std::optional<double>& value) {
        if (value) {
            number(*value);
        }
    }
};

class List {
  public:
    List() = default;
    List(const List&) = delete;
    List(List&&) = delete;
    List& operator=(const List&) = delete;
    List& operator=(List&&) = delete;
    virtual ~List() = default;

    [[nodiscard]] virtual const std::vector<Column>& columns() const = 0;
    [[nodiscard]] virtual std::size_t rowCount() const = 0;
    /// Calls `begin(column number)` for each column of `chosen`, in that order, which gives the
    /// cell that takes its value.
    class RowTaker {
      public:
        virtual Cell& begin(std::size_t column) = 0;

      protected:
        ~RowTaker() = default;
    };
    virtual void sayRow(std::size_t row, std::span<const std::size_t> chosen,
                        RowTaker& taker) const = 0;
};

/// A column of rows of one kind: what it is called, and what it says of a row.
template <class Row>
struct ColumnOf {
    Column column;
    void (*say)(const Row& row, Cell& cell);
};

/// The list of the rows that `Rows` makes: it has a type `Row`, `columns()` (a container of
/// ColumnOf<Row>), `count()` and `row(position)`.
template <class Rows>
class ListOf final : public List {
  public:
    explicit ListOf(Rows rows) : rows_(std::move(rows)) {
        for (const ColumnOf<typename Rows::Row>& column : Rows::columns()) {
            columns_.push_back(column.column);
        }
    }
    [[nodiscard]] const std::vector<Column>& columns() const override { return columns_; }
    [[nodiscard]] std::size_t rowCount() const override { return rows_.count(); }
    void sayRow(std::size_t row, std::span<const std::size_t> chosen,
                RowTaker& taker) const override {
        const typename Rows::Row said = rows_.row(row);
        const auto& all = Rows::columns();
        for (const std::size_t column : chosen) {
            all[column].say(said, taker.begin(column));
        }
    }

  private:
    Rows rows_;
    std::vector<Column> columns_;
};

/// The columns for people, less those that hold nothing; with `everything` the details too, and
/// nothing left out.
[[nodiscard]] Table tableForPeople(const List& list, bool everything = false);

/// RFC 4180: CRLF after each record, quotes where needed. Numbers with as many digits as it takes
/// to read them back, a fraction as numerator and denominator. A text that a sheet would take for a
/// formula (it begins with = + - @ or a tab, at its start or behind a separator) gets an apostrophe
/// in front; control characters other than tab and line feed are replaced.
class CsvWriter {
  public:
    /// `sink` must outlive the writer. With `tellsFiles` the first column names the file of each
    /// record.
    CsvWriter(JsonSink& sink, bool tellsFiles) : sink_(sink), tellsFiles_(tellsFiles) {}
    /// The titles of the columns.
    void titles(const List& list);
    void records(const std::string& file, const List& list);

  private:
    JsonSink& sink_;
    bool tellsFiles_;
};

/// One object a row, each followed by a line feed: the file, its version where it is OMF 1.x, then
/// the keys in the order of the columns, what is absent left out.
void writeJsonLines(const std::string& file, const std::optional<std::string>& omfVersion,
                    const List& list, JsonSink& sink);

}  // namespace trellant::cli
