// SPDX-License-Identifier: Apache-2.0
// The sound of the page as JSON, its bytes in base64: read by the script when they are wanted.
#pragma once

#include <trellant/json/json_writer.h>
#include <trellant/page/page_sound.h>

namespace trellant::page {

/// A text for each source, empty where it has no waveform; nothing without `sound`.
void writeWaveforms(const PageSound* sound, JsonSink& sink);
/// For each piece [source, channel (-1: all), first frame, file].
void writePreviews(const PageSound* sound, JsonSink& sink);

}  // namespace trellant::page
