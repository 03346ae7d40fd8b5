// SPDX-License-Identifier: Apache-2.0
#include "call_alarm.h"

#include <trellant/base/system_call_error.h>
#include <trellant/client/errors.h>

#include <unistd.h>

namespace trellant {

Pipe makePipeOfCall() {
    try {
        return makePipe();
    } catch (const SystemCallError& error) {
        throw AAFWorkerClientError::launchFailed(
            error.what(), AAFWorkerClientError::LaunchFailed::Cause::systemRefused);
    }
}

CallAlarm::CallAlarm() : pipe_(makePipeOfCall()) {
    makeNonBlocking(pipe_.writing);
}

void CallAlarm::ring() noexcept {
    const char byte = 0;
    [[maybe_unused]] const auto written = ::write(pipe_.writing.number(), &byte, 1);
}

}  // namespace trellant
