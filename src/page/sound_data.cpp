// SPDX-License-Identifier: Apache-2.0
#include "sound_data.h"

#include <algorithm>
#include <cstdint>
#include <nettle/base64.h>
#include <string>
#include <vector>

namespace trellant::page {

namespace {

std::string base64(const Bytes& bytes) {
    std::vector<std::uint8_t> plain(bytes.size());
    std::transform(bytes.begin(), bytes.end(), plain.begin(),
                   [](std::byte byte) { return std::to_integer<std::uint8_t>(byte); });
    std::string text(BASE64_ENCODE_RAW_LENGTH(plain.size()), '\0');
    ::base64_encode_raw(text.data(), plain.size(), plain.data());
    return text;
}

}  // namespace

void writeWaveforms(const PageSound* sound, JsonSink& sink) {
    JsonWriter writer(sink);
    writer.beginArray();
    if (sound != nullptr) {
        for (const Bytes& waveform : sound->waveforms) {
            writer.string(base64(waveform));
        }
    }
    writer.endArray();
    writer.flush();
}

void writePreviews(const PageSound* sound, JsonSink& sink) {
    JsonWriter writer(sink);
    writer.beginArray();
    if (sound != nullptr) {
        for (const SoundPiece& piece : sound->pieces) {
            writer.beginArray();
            writer.unsignedInteger(piece.essence);
            writer.integer(piece.channel.value_or(-1));
            writer.integer(piece.firstFrame);
            writer.string(base64(piece.file));
            writer.endArray();
        }
    }
    writer.endArray();
    writer.flush();
}

}  // namespace trellant::page
