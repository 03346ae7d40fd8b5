// SPDX-License-Identifier: Apache-2.0
// XML written as it is said, without a tree in between: a run over a thousand files is one
// document.
#pragma once

#include <trellant/json/json_writer.h>

#include <string>
#include <string_view>
#include <vector>

namespace trellant::cli {

/// Texts come from strangers: what XML cannot hold in them is replaced by U+FFFD.
class XmlStream {
  public:
    /// Writes the declaration. `sink` must outlive this.
    explicit XmlStream(JsonSink& sink);

    /// Begins an element within the one that is open; its attributes follow.
    void open(std::string_view name);
    void attribute(std::string_view name, std::string_view value);
    /// Of the open element; no attribute comes behind it.
    void text(std::string_view text);
    /// Ends the element that was opened last.
    void close();

  private:
    void endHead();

    JsonSink& sink_;
    std::vector<std::string> open_;
    bool isInHead_ = false;
    bool hasText_ = false;
};

}  // namespace trellant::cli
