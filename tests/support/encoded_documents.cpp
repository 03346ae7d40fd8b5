// SPDX-License-Identifier: Apache-2.0
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <trellant_testing/encoded_documents.h>
#include <unistd.h>

namespace trellant::testing {

namespace {

constexpr std::string_view progressMarker = "TRELLANT-AAF-PROGRESS ";
constexpr std::string_view invalidRequest = "trellant-omf: invalid request JSON: ";
constexpr std::string_view otherVersion = "trellant-omf: unsupported protocol version ";

const char* folder() {
    return std::getenv("TRELLANT_ENCODED");
}

/// FNV-1a: the same in every run and on every machine.
std::uint64_t contentHash(std::string_view text) {
    std::uint64_t hash = 0xcbf29ce484222325;
    for (const char character : text) {
        hash = (hash ^ static_cast<unsigned char>(character)) * 0x100000001b3;
    }
    return hash;
}

std::string fileName(std::string_view kind, std::string_view json) {
    std::array<char, 17> hash{};
    static_cast<void>(std::snprintf(hash.data(), hash.size(), "%016llx",
                                    static_cast<unsigned long long>(contentHash(json))));
    return std::string(kind).append("-").append(hash.data()).append(".json");
}

void keepProgress(std::string_view errors) {
    while (!errors.empty()) {
        const std::size_t end = errors.find('\n');
        const std::string_view line = errors.substr(0, end);
        if (end != std::string_view::npos && line.starts_with(progressMarker)) {
            keepEncoded("progress", line.substr(progressMarker.size()));
        }
        errors.remove_prefix(end == std::string_view::npos ? errors.size() : end + 1);
    }
}

void keepRequest(std::string_view request, std::string_view errors) {
    if (errors.starts_with(progressMarker)) {
        keepEncoded("request", request);
    } else if (errors.starts_with(otherVersion) ||
               (errors.starts_with(invalidRequest) &&
                !errors.substr(invalidRequest.size()).starts_with("syntax error"))) {
        keepEncoded("refused", request);
    }
}

}  // namespace

bool keepsEncodedDocuments() {
    return folder() != nullptr;
}

void keepEncoded(std::string_view kind, std::string_view json) {
    if (!keepsEncodedDocuments()) {
        return;
    }
    const std::filesystem::path path = std::filesystem::path(folder()) / fileName(kind, json);
    if (std::filesystem::exists(path)) {
        return;
    }
    // Other processes keep documents at the same time: a file appears whole or not at all.
    std::filesystem::path draft = path;
    draft += "." + std::to_string(::getpid());
    std::ofstream file(draft, std::ios::binary);
    file.write(json.data(), static_cast<std::streamsize>(json.size()));
    file.close();
    if (!file) {
        throw std::runtime_error("cannot keep " + path.string());
    }
    std::filesystem::rename(draft, path);
}

void keepWorkerRun(std::string_view request, std::string_view result, std::string_view errors) {
    if (!keepsEncodedDocuments()) {
        return;
    }
    keepRequest(request, errors);
    keepProgress(errors);
    if (!result.empty()) {
        keepEncoded("result", result);
    }
}

}  // namespace trellant::testing
