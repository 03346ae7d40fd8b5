#include <trellant/base/precondition.h>

#include <cstdlib>
#include <cstring>
#include <unistd.h>

namespace trellant {

namespace {

// Nothing is allocated: the process may be out of memory or in a damaged state. A write that fails
// leaves the abort as the only sign.
void writeAll(const char* text) noexcept {
    std::size_t left = std::strlen(text);
    while (left > 0) {
        const ssize_t written = ::write(STDERR_FILENO, text, left);
        if (written <= 0) {
            return;
        }
        text += written;
        left -= static_cast<std::size_t>(written);
    }
}

}  // namespace

void preconditionFailure(const char* message) noexcept {
    writeAll("precondition failed: ");
    writeAll(message);
    writeAll("\n");
    std::abort();
}

}  // namespace trellant
