// SPDX-License-Identifier: Apache-2.0
// Requests as JSON text, written here and not by the code under test.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace trellant::testing {

struct RequestText {
    /// JSON texts of the values; a key whose text is empty is left out.
    std::string protocolVersion = "1";
    std::string operation = "\"inspect\"";
    std::string aafPath = "\"\"";
    std::string workDirectory = "\"\"";
    std::string mediaSearchDirectory{};
    std::string recoverProToolsTrueFades = "false";
    std::string removeProToolsSampleAccurateEditFragments = "false";
    /// Further members, each beginning with a comma.
    std::string more{};

    /// The whole object.
    [[nodiscard]] std::string json() const;
};

/// `text` as a JSON string; its bytes must be UTF-8 without control characters.
[[nodiscard]] std::string jsonString(std::string_view text);

/// A request as hosts write it.
[[nodiscard]] RequestText requestFor(std::string_view operation, std::string_view aafPath,
                                     std::string_view workDirectory,
                                     std::optional<std::string> mediaSearchDirectory = {});

/// One progress line; the fraction as JSON has it.
[[nodiscard]] std::string progressLineText(std::string_view phase, std::string_view fraction);
/// The log line with this message.
[[nodiscard]] std::string logLineText(std::string_view message);

}  // namespace trellant::testing
