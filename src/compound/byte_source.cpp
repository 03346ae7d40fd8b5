// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/system_call_error.h>
#include <trellant/base/write_all.h>
#include <trellant/compound/byte_source.h>

namespace trellant::compound {

ByteSink descriptorSink(int descriptor) {
    return [descriptor](ByteView bytes) {
        if (const int failure = writeAll(descriptor, bytes, WhenFull::wait); failure != 0) {
            throw SystemCallError("write", failure);
        }
    };
}

}  // namespace trellant::compound
