// SPDX-License-Identifier: Apache-2.0
// Tells where this host would take the worker from whose name it is given; for a name and a file,
// how a call for the file ends of a client of that name, or of one that names none when it is
// empty.
#include <trellant/client/worker_client.h>

#include <cstdio>
#include <string>

namespace {

std::string endOf(const std::string& name, const std::string& file) {
    trellant::AAFWorkerClient client;
    if (!name.empty()) {
        client.helperName = name;
    }
    try {
        return client.inspect(file, "/work").get().compositionName.value_or("no name");
    } catch (const trellant::AAFWorkerClientError& error) {
        const auto* const missing =
            std::get_if<trellant::AAFWorkerClientError::HelperMissing>(&error.fault());
        std::string text = missing != nullptr ? missing->helperName : error.technicalDetail();
        if (missing != nullptr) {
            for (const std::filesystem::path& place : missing->searched) {
                text += " " + place.native();
            }
        }
        return text;
    }
}

}  // namespace

int main(int count, char** arguments) {
    if (count == 3) {
        std::printf("%s\n", endOf(arguments[1], arguments[2]).c_str());
        return 0;
    }
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
