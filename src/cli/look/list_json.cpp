// SPDX-License-Identifier: Apache-2.0
// Lists for programs.
#include "list.h"
#include "terminal/failure_line.h"
#include "terminal/json_line.h"

#include <cmath>

namespace trellant::cli {

namespace {

/// Names its member when it is given a value: what is absent has no key.
class JsonRow final : public Cell, public List::RowTaker {
  public:
    using Cell::integer;
    using Cell::number;
    using Cell::text;

    JsonRow(JsonLine& line, const std::vector<Column>& columns) : line_(line), columns_(columns) {}

    Cell& begin(std::size_t column) override {
        key_ = columns_[column].key;
        return *this;
    }

    void text(std::string_view value) override { line_.text(key_, value); }
    void word(std::string_view value) override { line_.word(key_, value); }
    void integer(std::int64_t value) override { line_.integer(key_, value); }
    void number(double value) override { line_.number(key_, value); }
    void boolean(bool value) override { line_.boolean(key_, value); }
    void decibels(double factor) override {
        line_.number(key_, 20 * std::log10(std::fabs(factor)));
    }
    void fraction(const AAFRational& value) override { line_.fraction(key_, value); }
    void lossNumbers(const std::vector<std::size_t>& numbers) override {
        line_.integers(key_, numbers);
    }
    void points(const AAFAutomationEnvelope& envelope) override {
        line_.objects(key_, envelope.points, [](JsonLine& line, const AAFAutomationPoint& point) {
            line.fraction("place", point.timelineOffset).number("gain", point.value);
        });
    }

  private:
    JsonLine& line_;
    const std::vector<Column>& columns_;
    std::string_view key_;
};

}  // namespace

void writeJsonLines(const std::string& file, const std::optional<std::string>& omfVersion,
                    const List& list, JsonSink& sink) {
    std::vector<std::size_t> chosen;
    for (std::size_t i = 0; i < list.columns().size(); ++i) {
        if (list.columns()[i].audience != Audience::people) {
            chosen.push_back(i);
        }
    }
    const std::string name = fileForPrograms(file);
    if (list.rowCount() == 0) {
        return;
    }
    JsonLine line(sink);
    JsonRow taker(line, list.columns());
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        if (row > 0) {
            line.begin();
        }
        line.text("file", name).text("omfVersion", omfVersion);
        list.sayRow(row, chosen, taker);
        line.end();
    }
}

}  // namespace trellant::cli
