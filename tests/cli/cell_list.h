// SPDX-License-Identifier: Apache-2.0
// A list whose cells a test names one by one.
#pragma once

#include "look/list.h"

#include <functional>
#include <utility>
#include <vector>

namespace trellant::testing {

using SaidCell = std::function<void(cli::Cell&)>;

/// A cell that has nothing to say.
[[nodiscard]] inline SaidCell nothing() {
    return [](cli::Cell&) {};
}
[[nodiscard]] inline SaidCell text(std::string value) {
    return [value = std::move(value)](cli::Cell& cell) { cell.text(value); };
}
[[nodiscard]] inline SaidCell word(std::string value) {
    return [value = std::move(value)](cli::Cell& cell) { cell.word(value); };
}
[[nodiscard]] inline SaidCell integer(std::int64_t value) {
    return [value](cli::Cell& cell) { cell.integer(value); };
}
[[nodiscard]] inline SaidCell number(double value) {
    return [value](cli::Cell& cell) { cell.number(value); };
}
[[nodiscard]] inline SaidCell boolean(bool value) {
    return [value](cli::Cell& cell) { cell.boolean(value); };
}
[[nodiscard]] inline SaidCell decibels(double factor) {
    return [factor](cli::Cell& cell) { cell.decibels(factor); };
}
[[nodiscard]] inline SaidCell fraction(AAFRational value) {
    return [value](cli::Cell& cell) { cell.fraction(value); };
}

class CellList final : public cli::List {
  public:
    CellList(std::vector<cli::Column> columns, std::vector<std::vector<SaidCell>> rows)
        : columns_(std::move(columns)), rows_(std::move(rows)) {}

    [[nodiscard]] const std::vector<cli::Column>& columns() const override { return columns_; }
    [[nodiscard]] std::size_t rowCount() const override { return rows_.size(); }
    void sayRow(std::size_t row, std::span<const std::size_t> chosen,
                RowTaker& taker) const override {
        for (const std::size_t column : chosen) {
            rows_[row].at(column)(taker.begin(column));
        }
    }

  private:
    std::vector<cli::Column> columns_;
    std::vector<std::vector<SaidCell>> rows_;
};

[[nodiscard]] inline std::string jsonOf(const cli::List& list) {
    StringSink sink;
    cli::writeJsonLines("a.omf", std::nullopt, list, sink);
    return std::move(sink.text);
}

[[nodiscard]] inline std::string csvOf(const cli::List& list) {
    StringSink sink;
    cli::CsvWriter csv(sink, false);
    csv.titles(list);
    csv.records("a.omf", list);
    return std::move(sink.text);
}

}  // namespace trellant::testing
