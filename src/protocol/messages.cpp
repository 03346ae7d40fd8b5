// SPDX-License-Identifier: Apache-2.0
#include "message_fields.h"

#include <trellant/model/timeline_json.h>
#include <trellant/protocol/messages.h>

namespace trellant {

AAFWorkerProtocol::Request decodeRequest(std::string_view json) {
    return decodeJson<AAFWorkerProtocol::Request>(json);
}

std::string encodeRequest(const AAFWorkerProtocol::Request& request) {
    return declaredJson(request);
}

AAFWorkerProtocol::Progress decodeProgress(std::string_view json) {
    return decodeJson<AAFWorkerProtocol::Progress>(json);
}

std::string encodeProgress(const AAFWorkerProtocol::Progress& progress) {
    return declaredJson(progress);
}

AAFWorkerProtocol::Result decodeResult(std::string_view json, TimelineChecks checks,
                                       const StopToken& stop) {
    return decodeJson<AAFWorkerProtocol::Result>(json, checks, stop);
}

void encodeResult(const AAFWorkerProtocol::Result& result, JsonSink& sink) {
    JsonWriter writer(sink);
    encodeSorted(writer, result);
    writer.flush();
}

}  // namespace trellant
