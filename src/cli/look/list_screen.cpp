// SPDX-License-Identifier: Apache-2.0
// Lists for people.
#include "cell_text.h"
#include "list.h"

#include <utility>

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
                holdsText_.push_back(false);
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
        keepFilled(table_.columns);
        for (std::vector<std::string>& row : table_.rows) {
            keepFilled(row);
        }
        return std::move(table_);
    }

    Cell& begin(std::size_t /*column*/) override {
        table_.rows.back().emplace_back();
        return *this;
    }

  private:
    void take(std::string_view text) override {
        std::vector<std::string>& row = table_.rows.back();
        row.back() = text;
        holdsText_[row.size() - 1] = holdsText_[row.size() - 1] || !text.empty();
    }

    /// Leaves what belongs to the columns that hold a text.
    template <class Part>
    void keepFilled(std::vector<Part>& parts) const {
        std::size_t kept = 0;
        for (std::size_t i = 0; i < parts.size(); ++i) {
            if (holdsText_[i]) {
                std::swap(parts[kept++], parts[i]);
            }
        }
        parts.resize(kept);
    }

    bool everything_;
    std::vector<std::size_t> chosen_;
    /// Of each column that is chosen, in any row.
    std::vector<bool> holdsText_;
    Table table_;
};

}  // namespace

Table tableForPeople(const List& list, bool everything) {
    return TableFiller(list, everything).table();
}

}  // namespace trellant::cli
