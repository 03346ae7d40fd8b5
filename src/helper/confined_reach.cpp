// SPDX-License-Identifier: Apache-2.0
#include "confined_reach.h"

#include <trellant/confine/confinement.h>

#include <string>
#include <vector>

namespace trellant {

void confineTo(const OMFReader::Reach& reach) {
    const Sandbox sandbox = sandboxFromEnvironment();
    if (reach.files) {
        confineFurther(
            sandbox, {.writableDirectory = reach.writableDirectory, .readablePaths = reach.files});
        return;
    }
    // A folder in the place of the file is to be called so, not to be refused.
    std::vector<std::string> listed{reach.source};
    if (reach.searchedFolder) {
        listed.push_back(*reach.searchedFolder);
    }
    confine(sandbox, {.writableDirectory = reach.writableDirectory,
                      .awaitsStreams = true,
                      .listedFolders = listed,
                      .narrowsLater = true});
}

}  // namespace trellant
