// SPDX-License-Identifier: Apache-2.0
// A worker that does one thing out of the ordinary, told by the name under which it is started:
// the tests make links to it.
#include "behaviours.h"
#include "life.h"

#include <string>

int main(int count, char** arguments) {
    namespace misbehaving = trellant::testing::misbehaving;
    // A worker takes no arguments.
    if (count != 1) {
        return misbehaving::brokenStatus;
    }
    const std::string program = arguments[0];
    misbehaving::limitLife();
    misbehaving::setProgram(program);
    return misbehaving::behave(std::string_view(program).substr(program.rfind('/') + 1));
}
