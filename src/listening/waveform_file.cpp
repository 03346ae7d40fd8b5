// SPDX-License-Identifier: Apache-2.0
#include <trellant/extraction/staging.h>
#include <trellant/extraction/wave_conversion.h>
#include <trellant/listening/waveform_file.h>

namespace trellant::listening {

std::optional<std::string> writeWaveformFile(const std::string& converter,
                                             const std::string& source,
                                             const std::string& destination,
                                             std::uint32_t framesPerPair, audio::PeakBits bits,
                                             WorkProgress& progress) {
    // What is written goes out in pieces, by which its size can be seen to grow; how large it will
    // be is not known here.
    progress.begin("Listening", 0);
    return runConverter({converter, "--waveform", source, destination,
                         std::to_string(framesPerPair), std::to_string(static_cast<int>(bits))},
                        destination, [&] { progress.at(bytesOfFile(destination)); });
}

}  // namespace trellant::listening
