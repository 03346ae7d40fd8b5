// SPDX-License-Identifier: Apache-2.0
#include "answer_form.h"

#include "look/cell_text.h"
#include "look/csv_text.h"
#include "terminal/shown_text.h"
#include "terminal/table.h"

#include <cmath>

namespace trellant::cli {

namespace {

using catalogue::Value;

std::string textOf(const Value& value) {
    switch (value.kind) {
        case Value::Kind::nothing:
            return {};
        case Value::Kind::integer:
            return std::to_string(value.integer);
        case Value::Kind::number:
            return std::isfinite(value.number) ? numberText(value.number) : std::string();
        case Value::Kind::text:
            return value.text;
    }
    return {};
}

class TableForm final : public AnswerForm {
  public:
    TableForm(JsonSink& sink, std::size_t columns, bool hasColour)
        : sink_(sink), columns_(columns), hasColour_(hasColour) {}

    void begin(const std::vector<std::string>& columns) override {
        for (const std::string& title : columns) {
            table_.columns.push_back({.title = shownText(title), .mayShrink = true});
        }
    }
    void row(const std::vector<Value>& values) override {
        std::vector<std::string> cells;
        for (std::size_t column = 0; column < values.size(); ++column) {
            const Value::Kind kind = values[column].kind;
            if (kind == Value::Kind::integer || kind == Value::Kind::number) {
                table_.columns[column].align = Align::right;
            }
            cells.push_back(textOf(values[column]));
        }
        table_.rows.push_back(std::move(cells));
    }
    void end() override {
        if (!table_.columns.empty()) {
            sink_.write(shownLines(aligned(std::move(table_), columns_, hasColour_)));
        }
    }

  private:
    JsonSink& sink_;
    std::size_t columns_;
    bool hasColour_;
    Table table_;
};

class CsvForm final : public AnswerForm {
  public:
    explicit CsvForm(JsonSink& sink) : sink_(sink) {}

    void begin(const std::vector<std::string>& columns) override { record(columns); }
    void row(const std::vector<Value>& values) override {
        std::string line;
        for (const Value& value : values) {
            separate(line, value);
            if (value.kind == Value::Kind::text) {
                appendCsvText(line, value.text);
            } else {
                line += textOf(value);
            }
        }
        sink_.write(ended(std::move(line)));
    }
    void end() override {}

  private:
    void record(const std::vector<std::string>& cells) {
        std::string line;
        for (const std::string& cell : cells) {
            separate(line, cell);
            appendCsvText(line, cell);
        }
        sink_.write(ended(std::move(line)));
    }
    template <class Cell>
    void separate(std::string& line, const Cell& /*cell*/) {
        if (count_++ > 0) {
            line += ',';
        }
    }
    [[nodiscard]] std::string ended(std::string line) {
        count_ = 0;
        // A record of one empty cell would be an empty line.
        return line.empty() ? "\"\"\r\n" : line + "\r\n";
    }

    JsonSink& sink_;
    std::size_t count_ = 0;
};

class JsonForm final : public AnswerForm {
  public:
    explicit JsonForm(JsonSink& sink) : writer_(sink) {}

    void begin(const std::vector<std::string>& columns) override { columns_ = columns; }
    void row(const std::vector<Value>& values) override {
        writer_.beginObject();
        for (std::size_t column = 0; column < values.size(); ++column) {
            const Value& value = values[column];
            if (value.kind == Value::Kind::nothing ||
                (value.kind == Value::Kind::number && !std::isfinite(value.number))) {
                continue;
            }
            writer_.key(columns_[column]);
            write(value);
        }
        writer_.endObject();
        writer_.endLine();
    }
    void end() override { writer_.flush(); }

  private:
    void write(const Value& value) {
        if (value.kind == Value::Kind::integer) {
            writer_.integer(value.integer);
        } else if (value.kind == Value::Kind::number) {
            writer_.number(value.number);
        } else if (isHarmfulText(value.text)) {
            writer_.asciiString(value.text);
        } else {
            writer_.string(value.text);
        }
    }

    JsonWriter writer_;
    std::vector<std::string> columns_;
};

}  // namespace

std::unique_ptr<AnswerForm> tableForm(JsonSink& sink, std::size_t columns, bool hasColour) {
    return std::make_unique<TableForm>(sink, columns, hasColour);
}

std::unique_ptr<AnswerForm> csvForm(JsonSink& sink) {
    return std::make_unique<CsvForm>(sink);
}

std::unique_ptr<AnswerForm> jsonForm(JsonSink& sink) {
    return std::make_unique<JsonForm>(sink);
}

}  // namespace trellant::cli
