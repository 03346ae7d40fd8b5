// SPDX-License-Identifier: Apache-2.0
// A cell whose every value becomes a text, for screens and sheets.
#pragma once

#include "list.h"

#include <string>
#include <string_view>

namespace trellant::cli {

/// With as many digits as it takes to read the number back.
[[nodiscard]] std::string numberText(double value);

class TextCell : public Cell {
  public:
    using Cell::integer;
    using Cell::number;
    using Cell::text;

    void text(std::string_view value) final { take(value); }
    void word(std::string_view value) final { takeWord(value); }
    void integer(std::int64_t value) final;
    void number(double value) final;
    /// "yes", "no".
    void boolean(bool value) final;
    void decibels(double factor) final;
    void fraction(const AAFRational& value) override;
    /// "1 2".
    void lossNumbers(const std::vector<std::size_t>& numbers) final;
    /// Places within the clip (0 its start, 1 its end) and factors: "0:1 1/2:0.5 1:1".
    void points(const AAFAutomationEnvelope& envelope) final;

  protected:
    /// A text, which may be anything a stranger wrote.
    virtual void take(std::string_view text) = 0;
    /// A word, or a finite number.
    virtual void takeWord(std::string_view text) { take(text); }
};

}  // namespace trellant::cli
