// SPDX-License-Identifier: Apache-2.0
// An answer of a catalogue as a table, as comma-separated values or as lines of JSON.
#pragma once

#include <trellant/catalogue/catalogue.h>
#include <trellant/json/json_writer.h>

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace trellant::cli {

class AnswerForm {
  public:
    virtual ~AnswerForm() = default;
    AnswerForm() = default;
    AnswerForm(const AnswerForm&) = delete;
    AnswerForm& operator=(const AnswerForm&) = delete;
    AnswerForm(AnswerForm&&) = delete;
    AnswerForm& operator=(AnswerForm&&) = delete;

    virtual void begin(const std::vector<std::string>& columns) = 0;
    virtual void row(const std::vector<catalogue::Value>& values) = 0;
    virtual void end() = 0;
};

/// For a terminal of so many columns; its rows are kept until the end. `sink` must outlive it.
[[nodiscard]] std::unique_ptr<AnswerForm> tableForm(JsonSink& sink, std::size_t columns,
                                                    bool hasColour);
[[nodiscard]] std::unique_ptr<AnswerForm> csvForm(JsonSink& sink);
/// An object a line; a column without a value has no key.
[[nodiscard]] std::unique_ptr<AnswerForm> jsonForm(JsonSink& sink);

}  // namespace trellant::cli
