// SPDX-License-Identifier: Apache-2.0
#include "policy.h"

#include <array>
#include <cstdint>
#include <nettle/base64.h>
#include <nettle/sha2.h>
#include <vector>

namespace trellant::page {

std::string policyHash(std::string_view text) {
    const std::vector<std::uint8_t> bytes(text.begin(), text.end());
    sha256_ctx state{};
    ::sha256_init(&state);
    ::sha256_update(&state, bytes.size(), bytes.data());
    std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
    ::sha256_digest(&state, digest.size(), digest.data());
    std::array<char, BASE64_ENCODE_RAW_LENGTH(SHA256_DIGEST_SIZE)> encoded{};
    ::base64_encode_raw(encoded.data(), digest.size(), digest.data());
    return "sha256-" + std::string(encoded.data(), encoded.size());
}

std::string contentPolicy(std::string_view script, std::string_view style) {
    const std::string scripts = script.empty() ? "'none'" : "'" + policyHash(script) + "'";
    // Audio files beside the document play in an element of their own; a page opened as a file
    // reaches them by the scheme alone.
    return "default-src 'none'; script-src " + scripts + "; style-src '" + policyHash(style) +
           "'; img-src data:; media-src 'self' file: data: blob:; base-uri 'none'; "
           "form-action 'none'";
}

}  // namespace trellant::page
