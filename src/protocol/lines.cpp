// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/printable_text.h>
#include <trellant/base/text.h>
#include <trellant/protocol/lines.h>
#include <trellant/protocol/messages.h>

#include <cmath>

namespace trellant {

std::string progressLine(std::string_view phase, double fraction) {
    if (!std::isfinite(fraction) || !isValidUTF8(phase)) {
        return {};
    }
    const AAFWorkerProtocol::Progress progress{std::string(phase), fraction, std::nullopt};
    return std::string(progressMarker).append(encodeProgress(progress)).append("\n");
}

std::string logLineText(std::string_view message) {
    return std::string(logPrefix).append(message).append("\n");
}

}  // namespace trellant
