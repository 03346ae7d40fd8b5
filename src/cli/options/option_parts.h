// SPDX-License-Identifier: Apache-2.0
// Options that several commands have.
#pragma once

#include "look/fail_on.h"
#include "terminal/destination.h"

#include <trellant/base/printable_text.h>

#include <CLI/CLI.hpp>
#include <cstdint>
#include <initializer_list>
#include <map>
#include <string>
#include <utility>
#include <vector>

namespace trellant::cli {

/// A command of the program with its one sentence and its examples, a line each.
[[nodiscard]] CLI::App& addCommand(CLI::App& program, const std::string& name,
                                   const std::string& description, const std::string& examples);

/// An option that takes one of a few words; the library's own texts for that show its numbers.
template <class Choice>
CLI::Option* addChoice(CLI::App& command, const std::string& name, Choice& chosen,
                       const std::string& description,
                       std::initializer_list<std::pair<std::string, Choice>> words) {
    std::string list;
    for (const auto& [word, choice] : words) {
        list += (list.empty() ? "" : "|") + word;
    }
    return command
        .add_option_function<std::string>(
            name,
            [name, list, &chosen,
             choices = std::map<std::string, Choice>(words.begin(), words.end())](
                const std::string& word) {
                const auto found = choices.find(word);
                if (found == choices.end()) {
                    throw CLI::ValidationError(
                        name, "is one of " + list + ", not \"" + printableText(word) + "\"");
                }
                chosen = found->second;
            },
            description)
        ->type_name(list);
}

/// A number without a point or a unit, both ends included.
[[nodiscard]] CLI::Validator wholeNumber(std::int64_t least, std::int64_t most);

void addFailOn(CLI::App& command, FailOn& failOn);

/// --media, once for each folder.
void addMedia(CLI::App& command, std::vector<std::string>& folders);

/// --output and --force.
void addDestination(CLI::App& command, Destination& destination);

}  // namespace trellant::cli
