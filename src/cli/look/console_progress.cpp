// SPDX-License-Identifier: Apache-2.0
#include "console_progress.h"

namespace trellant::cli {

void ConsoleProgress::show(double fraction, const std::string& label) {
    console_.bar(fraction, label);
}

void ConsoleProgress::say(Remark kind, const std::string& text) {
    if (kind == Remark::problem) {
        console_.error(text);
    } else {
        console_.note(text);
    }
}

}  // namespace trellant::cli
