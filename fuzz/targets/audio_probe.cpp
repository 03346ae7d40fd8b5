// SPDX-License-Identifier: Apache-2.0
#include "memory_file.h"
#include "require.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/omf/audio_probe.h>

namespace trellant::fuzzing {

void runAudioProbe(ByteView input) {
    constexpr std::size_t probedBytes = 1'048'576;
    const auto format = AudioProbe::probe(input);
    if (input.size() <= probedBytes) {
        const MemoryFile file(input);
        require(AudioProbe::probeFile(file.path()) == format, "a file says what its bytes say");
    }
    if (format) {
        require(!format->sampleRate || format->sampleRate->denominator() == 1,
                "sample rates are whole");
        require(!format->codec || isValidUTF8(*format->codec), "codecs are UTF-8");
    }
}

}  // namespace trellant::fuzzing
