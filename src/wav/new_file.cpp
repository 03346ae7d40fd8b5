// SPDX-License-Identifier: Apache-2.0
#include "new_file.h"

#include "conversion_error.h"

#include <trellant/base/write_all.h>

#include <cerrno>
#include <fcntl.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace trellant::wav {

namespace {

std::string systemText(int errorNumber) {
    return std::generic_category().message(errorNumber);
}

}  // namespace

NewFile::NewFile(const std::string& path, std::string kind) : path_(path), kind_(std::move(kind)) {
    const EndPutOff untilItIsKnown;
    descriptor_ = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0666);
    if (descriptor_ < 0) {
        throw because("no " + kind_ + " could be created", systemText(errno));
    }
    unfinished_.emplace(path_.c_str());
}

NewFile::~NewFile() {
    if (!kept_) {
        ::unlink(path_.c_str());
    }
    ::close(descriptor_);
}

void NewFile::write(ByteView bytes) {
    if (const int reason = writeAll(descriptor_, bytes); reason != 0) {
        throw because("the " + kind_ + " could not be written", systemText(reason));
    }
}

}  // namespace trellant::wav
