// SPDX-License-Identifier: Apache-2.0
// Lists for programs.
#include "list.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <cmath>

namespace trellant::cli {

namespace {

/// Names its member when it is given a value: what is absent has no key.
class JsonCell final : public Cell {
  public:
    using Cell::integer;
    using Cell::number;
    using Cell::text;

    void aim(JsonLine& line, std::string_view key) {
        line_ = &line;
        key_ = key;
    }

    void text(std::string_view value) override { line_->text(key_, value); }
    void integer(std::int64_t value) override { line_->integer(key_, value); }
    void number(double value) override { line_->number(key_, value); }
    void boolean(bool value) override { line_->boolean(key_, value); }
    void decibels(double factor) override {
        line_->number(key_, 20 * std::log10(std::fabs(factor)));
    }
    void fraction(const AAFRational& value) override { line_->fraction(key_, value); }
    void lossNumbers(const std::vector<std::size_t>& numbers) override {
        line_->integers(key_, numbers);
    }
    void points(const AAFAutomationEnvelope& envelope) override {
        line_->objects(key_, envelope.points, [](JsonLine& line, const AAFAutomationPoint& point) {
            line.fraction("place", point.timelineOffset).number("gain", point.value);
        });
    }

  private:
    JsonLine* line_ = nullptr;
    std::string_view key_;
};

class JsonRow final : public List::RowTaker {
  public:
    JsonRow(JsonLine& line, JsonCell& cell, const std::vector<Column>& columns)
        : line_(line), cell_(cell), columns_(columns) {}
    Cell& begin(std::size_t column) override {
        cell_.aim(line_, columns_[column].key);
        return cell_;
    }

  private:
    JsonLine& line_;
    JsonCell& cell_;
    const std::vector<Column>& columns_;
};

}  // namespace

void writeJsonLines(const std::string& file, const List& list, JsonSink& sink) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < list.columns().size(); ++i) {
        if (list.columns()[i].audience != Audience::people) {
            chosen.push_back(i);
        }
    }
    const std::string name = fileForPrograms(file);
    JsonCell cell;
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        JsonLine line(sink);
        line.text("file", name);
        JsonRow taker(line, cell, list.columns());
        list.sayRow(row, chosen, taker);
        line.end();
    }
}

}  // namespace trellant::cli
