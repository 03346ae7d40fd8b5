// SPDX-License-Identifier: Apache-2.0
#include "presentation.h"

#include <trellant/omf1/open.h>

#include <utility>

namespace trellant {

OMFDocument openAnyOMF(const std::string& path) {
    BentoContainer container(path);
    if (!OlderObjects::areIn(container)) {
        return OMFDocument(std::move(container));
    }
    OlderObjects objects(container);
    Presentation presentation(objects);
    const PresentedTable table = presentation.table();
    OMFOlderModel model = presentation.takeModel();
    return {table.over(std::move(container)), std::move(model)};
}

}  // namespace trellant
