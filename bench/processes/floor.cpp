// SPDX-License-Identifier: Apache-2.0
// The least that a program can do which takes a request: it reads standard input and ends.
#include <array>
#include <cerrno>
#include <unistd.h>

int main() {
    std::array<char, 65'536> piece;
    for (;;) {
        const auto count = ::read(STDIN_FILENO, piece.data(), piece.size());
        if (count == 0) {
            return 0;
        }
        if (count < 0 && errno != EINTR) {
            return 1;
        }
    }
}
