// SPDX-License-Identifier: Apache-2.0
// Lists for sheets.
#include "cell_text.h"
#include "csv_text.h"
#include "list.h"
#include "terminal/failure_line.h"

namespace trellant::cli {

namespace {

/// Writes records into a text, which its owner takes away.
class RecordTaker final : public TextCell, public List::RowTaker {
  public:
    explicit RecordTaker(const List& list) {
        for (std::size_t i = 0; i < list.columns().size(); ++i) {
            if (list.columns()[i].audience != Audience::people) {
                chosen.push_back(i);
            }
        }
        columns_ = &list.columns();
    }

    std::vector<std::size_t> chosen;
    std::string records;

    void beginRecord(const std::string* file) {
        start_ = records.size();
        isFirst_ = true;
        if (file != nullptr) {
            appendCsvText(records, *file);
            isFirst_ = false;
        }
    }
    void endRecord() {
        endFraction();
        // A record of one empty cell would be an empty line.
        records += records.size() == start_ ? "\"\"\r\n" : "\r\n";
    }
    Cell& begin(std::size_t column) override {
        endFraction();
        if (!isFirst_) {
            records += ',';
        }
        isFirst_ = false;
        owesDenominator_ = (*columns_)[column].isFraction;
        return *this;
    }
    void fraction(const AAFRational& value) override {
        integer(value.numerator());
        records += ',';
        integer(value.denominator());
        owesDenominator_ = false;
    }

  private:
    void endFraction() {
        if (owesDenominator_) {
            records += ',';
        }
        owesDenominator_ = false;
    }
    void take(std::string_view text) override { appendCsvText(records, text); }
    void takeWord(std::string_view text) override { records += text; }

    const std::vector<Column>* columns_ = nullptr;
    std::size_t start_ = 0;
    bool isFirst_ = true;
    /// A fraction's column was begun and nothing was said: it has two cells all the same.
    bool owesDenominator_ = false;
};

}  // namespace

void CsvWriter::titles(const List& list) {
    std::string record = tellsFiles_ ? "File," : "";
    for (const Column& column : list.columns()) {
        if (column.audience == Audience::people) {
            continue;
        }
        const std::string title(column.title);
        if (column.isFraction) {
            appendCsvText(record, title + " numerator");
            record += ',';
            appendCsvText(record, title + " denominator");
        } else {
            appendCsvText(record, title);
        }
        record += ',';
    }
    record.pop_back();
    sink_.write(record + "\r\n");
}

void CsvWriter::records(const std::string& file, const List& list) {
    constexpr std::size_t gathered = 65'536;
    RecordTaker taker(list);
    const std::string name = fileForPrograms(file);
    for (std::size_t row = 0; row < list.rowCount(); ++row) {
        taker.beginRecord(tellsFiles_ ? &name : nullptr);
        list.sayRow(row, taker.chosen, taker);
        taker.endRecord();
        if (taker.records.size() >= gathered) {
            sink_.write(taker.records);
            taker.records.clear();
        }
    }
    sink_.write(taker.records);
}

}  // namespace trellant::cli
