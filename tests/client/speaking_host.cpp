// SPDX-License-Identifier: Apache-2.0
// Shows each text that a person can get to see. Arguments: "locale" to take the language from the
// environment as hosts do, or "plain"; then the folder of the catalogues, if it is to be told.
#include <trellant/base/localization.h>
#include <trellant/client/errors.h>
#include <trellant/model/stem_role.h>

#include <clocale>
#include <cstdio>
#include <string_view>

int main(int count, char** arguments) {
    if (count < 2) {
        return 1;
    }
    if (std::string_view(arguments[1]) == "locale" && std::setlocale(LC_ALL, "") == nullptr) {
        return 2;
    }
    if (count > 2) {
        trellant::setCatalogueDirectory(arguments[2]);
    }
    for (const trellant::AAFStemRole role : trellant::allStemRoles) {
        std::printf("%s\n", trellant::anzeigename(role).data());
    }
    using Error = trellant::AAFWorkerClientError;
    for (const Error& error : {Error::launchFailed("no room"), Error::nonZeroExit(2, "line"),
                               Error::invalidResponse("cut"), Error::helperMissing()}) {
        std::printf("%s | %s\n", error.errorDescription().c_str(), error.technicalDetail().c_str());
    }
    return 0;
}
