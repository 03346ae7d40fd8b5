// SPDX-License-Identifier: Apache-2.0
// Lists for people.
#include "cell_text.h"
#include "list.h"

#include <algorithm>

namespace trellant::cli {

namespace {

/// Gathers the columns that people may see, row by row.
class TableFiller final : public TextCell, public List::RowTaker {
  public:
    TableFiller(const List& list, bool everything) : everything_(everything) {
        for (std::size_t i = 0; i < list.columns().size(); ++i) {
            const Column& column = list.columns()[i];
            if (column.audience == Audience::everyone || column.audience == Audience::people ||
                (everything && column.audience == Audience::details)) {
                chosen_.push_back(i);
                table_.columns.push_back(
                    {std::string(column.title), column.align, column.mayShrink, column.rank});
            }
        }
        table_.rows.reserve(list.rowCount());
        for (std::size_t row = 0; row < list.rowCount(); ++row) {
            table_.rows.emplace_back();
            table_.rows.back().reserve(chosen_.size());
            list.sayRow(row, chosen_, *this);
        }
    }

    Table table() && {
        if (everything_) {
            return std::move(table_);
        }
        Table filled;
        std::vector<std::size_t> kept;
        for (std::size_t i = 0; i < chosen_.size(); ++i) {
            if (std::any_of(table_.rows.begin(), table_.rows.end(),
                            [i](const auto& row) { return !row[i].empty(); })) {
                kept.push_back(i);
                filled.columns.push_back(std::move(table_.columns[i]));
            }
        }
        filled.rows.reserve(table_.rows.size());
        for (std::vector<std::string>& row : table_.rows) {
            filled.rows.emplace_back();
            filled.rows.back().reserve(kept.size());
            for (const std::size_t i : kept) {
                filled.rows.back().push_back(std::move(row[i]));
            }
        }
        return filled;
    }

    Cell& begin(std::size_t /*column*/) override {
        table_.rows.back().emplace_back();
        return *this;
    }

  private:
    void take(std::string_view text) override { table_.rows.back().back() = text; }

    bool everything_;
    std::vector<std::size_t> chosen_;
    Table table_;
};

}  // namespace

Table tableForPeople(const List& list, bool everything) {
    return TableFiller(list, everything).table();
}

}  // namespace trellant::cli
