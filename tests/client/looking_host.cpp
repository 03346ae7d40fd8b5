// SPDX-License-Identifier: Apache-2.0
// Tells where this host would take the worker from whose name it is given.
#include <trellant/client/worker_client.h>

#include <cstdio>

int main(int count, char** arguments) {
    if (count != 2) {
        return 1;
    }
    const auto found = trellant::bundledHelper(arguments[1]);
    // Through an empty client too: what it looks for by itself is the same.
    if (trellant::AAFWorkerClient{}.helperURLProvider(arguments[1]) != found) {
        return 2;
    }
    std::printf("%s\n", found ? found->c_str() : "nothing");
    return 0;
}
