// SPDX-License-Identifier: Apache-2.0
#include "require.h"
#include "targets.h"

#include <trellant/base/text.h>
#include <trellant/protocol/messages.h>

namespace trellant::fuzzing {

void runRequest(ByteView input) {
    const std::string_view text(reinterpret_cast<const char*>(input.data()), input.size());
    try {
        const auto request = decodeRequest(text);
        const std::string json = encodeRequest(request);
        const auto again = decodeRequest(json);
        require(again == request, "a request that was written is read as it was");
        require(encodeRequest(again) == json, "a request is written the same each time");
    } catch (const JsonDecodingError& error) {
        const std::string_view reason = error.what();
        require(isValidUTF8(reason) && reason.find('\n') == std::string_view::npos,
                "an error is one line");
    }
    try {
        const auto progress = decodeProgress(text);
        require(decodeProgress(encodeProgress(progress)) == progress,
                "progress that was written is read as it was");
    } catch (const JsonDecodingError&) {
        return;
    }
}

}  // namespace trellant::fuzzing
