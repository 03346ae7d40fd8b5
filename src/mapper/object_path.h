// SPDX-License-Identifier: Apache-2.0
// Where in the object tree something was found, as records name it: CMOB[12]/slot[34]/SEQU[56].
//
// A path is a chain of steps, each on the stack of the call that took it. Text is made only when
// something is recorded: most segments are walked without a word.
#pragma once

#include <trellant/omf/values.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace trellant {

class ObjectPath {
  public:
    /// The first step. `label` must outlive the path.
    ObjectPath(std::string_view label, OMFObject object)
        : label_(label), number_(trellant::number(object)) {}
    /// A step below `parent`, which must outlive it: "label[number]".
    ObjectPath(const ObjectPath& parent, std::string_view label, std::uint64_t number)
        : parent_(&parent), label_(label), number_(number) {}
    ObjectPath(const ObjectPath& parent, std::string_view label, OMFObject object)
        : ObjectPath(parent, label, trellant::number(object)) {}
    /// A step without a number: "label".
    ObjectPath(const ObjectPath& parent, std::string_view label)
        : parent_(&parent), label_(label) {}

    [[nodiscard]] std::string text() const {
        std::string result;
        // Exactly: a hostile composition keeps millions of paths.
        result.reserve(size());
        appendTo(result);
        return result;
    }

  private:
    [[nodiscard]] std::size_t size() const {
        std::size_t total = label_.size() + (parent_ != nullptr ? parent_->size() + 1 : 0);
        if (number_) {
            total += 3;
            for (std::uint64_t rest = *number_ / 10; rest != 0; rest /= 10) {
                ++total;
            }
        }
        return total;
    }
    void appendTo(std::string& text) const {
        if (parent_ != nullptr) {
            parent_->appendTo(text);
            text += '/';
        }
        text += label_;
        if (number_) {
            text += '[';
            text += std::to_string(*number_);
            text += ']';
        }
    }

    const ObjectPath* parent_ = nullptr;
    std::string_view label_;
    std::optional<std::uint64_t> number_;
};

}  // namespace trellant
