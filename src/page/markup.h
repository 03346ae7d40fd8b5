// SPDX-License-Identifier: Apache-2.0
// Markup on its way to the document. What came from outside passes `text` and nothing else, so that
// no name can become an element, turn the direction of what follows or fill the page.
#pragma once

#include <trellant/json/json_writer.h>

#include <string>
#include <string_view>

namespace trellant::page {

/// A text of a stranger as it is shown: one line of at most 200 bytes of it, controls and what
/// turns the direction of writing made visible, UTF-8.
[[nodiscard]] std::string shownText(std::string_view text);

class Markup {
  public:
    /// `sink` must outlive this.
    explicit Markup(JsonSink& sink) : sink_(sink) {}

    /// Markup of our own.
    Markup& raw(std::string_view markup);
    /// A text that is shown as it is, whatever it holds: for element content and for attribute
    /// values in double quotes.
    Markup& text(std::string_view text);
    /// The same for a stranger's text, by shownText.
    Markup& name(std::string_view text) { return this->text(shownText(text)); }
    /// Hands the rest to the sink.
    void flush();

  private:
    JsonSink& sink_;
    std::string gathered_;
};

/// Hands JSON on in a form that may stand in a script element: every `<` is written as an escape.
class ScriptSafeSink final : public JsonSink {
  public:
    /// `markup` must outlive this.
    explicit ScriptSafeSink(Markup& markup) : markup_(markup) {}
    void write(std::string_view bytes) override;

  private:
    Markup& markup_;
};

}  // namespace trellant::page
