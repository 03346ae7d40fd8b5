// SPDX-License-Identifier: Apache-2.0
#include <trellant_testing/requests.h>

namespace trellant::testing {

std::string RequestText::json() const {
    std::string members;
    const auto member = [&](std::string_view key, std::string_view value) {
        if (!value.empty()) {
            members.append(members.empty() ? "\"" : ",\"").append(key).append("\":").append(value);
        }
    };
    member("protocolVersion", protocolVersion);
    member("operation", operation);
    member("aafPath", aafPath);
    member("workDirectory", workDirectory);
    member("mediaSearchDirectory", mediaSearchDirectory);
    member("recoverProToolsTrueFades", recoverProToolsTrueFades);
    member("removeProToolsSampleAccurateEditFragments", removeProToolsSampleAccurateEditFragments);
    return "{" + members + more + "}";
}

std::string jsonString(std::string_view text) {
    std::string json = "\"";
    for (const char character : text) {
        if (character == '"' || character == '\\') {
            json += '\\';
        }
        json += character;
    }
    return json + "\"";
}

RequestText requestFor(std::string_view operation, std::string_view aafPath,
                       std::string_view workDirectory,
                       std::optional<std::string> mediaSearchDirectory) {
    RequestText request{.operation = jsonString(operation),
                        .aafPath = jsonString(aafPath),
                        .workDirectory = jsonString(workDirectory)};
    if (mediaSearchDirectory) {
        request.mediaSearchDirectory = jsonString(*mediaSearchDirectory);
    }
    return request;
}

std::string progressLineText(std::string_view phase, std::string_view fraction) {
    return std::string("TRELLANT-AAF-PROGRESS {\"phase\":\"")
        .append(phase)
        .append("\",\"fraction\":")
        .append(fraction)
        .append("}\n");
}

std::string logLineText(std::string_view message) {
    return std::string("trellant-omf: ").append(message).append("\n");
}

}  // namespace trellant::testing
