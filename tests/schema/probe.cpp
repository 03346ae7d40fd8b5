// SPDX-License-Identifier: Apache-2.0
#include "probe.h"

#include <iostream>
#include <string_view>

int main(int count, char** arguments) {
    const std::string_view wish = count == 2 ? arguments[1] : "";
    if (wish == "tables") {
        trellant::test::printTables(std::cout);
    } else if (wish == "samples") {
        trellant::test::printSamples(std::cout);
    } else if (wish == "decode") {
        trellant::test::decodeLines(std::cin, std::cout);
    } else {
        std::cerr << "usage: schema_probe tables|samples|decode\n";
        return 2;
    }
    return std::cout.flush() ? 0 : 1;
}
