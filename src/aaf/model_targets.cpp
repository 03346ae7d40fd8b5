// SPDX-License-Identifier: Apache-2.0
#include "model.h"

#include <array>

namespace trellant::aaf {

namespace {

/// Of definitions in the MetaDictionary, and of those in the Dictionary.
constexpr std::uint16_t metaKey = 0x0005;
constexpr std::uint16_t definitionKey = 0x1B01;

constexpr PathStep metaDictionary{rootMetaDictionary.pid, rootMetaDictionary.id};
constexpr PathStep header{rootHeader.pid, rootHeader.id};
constexpr PathStep dictionary{0x3B04, auid("06010104-0202-0000-060e-2b3401010102")};

constexpr std::array classes{metaDictionary,
                             PathStep{0x0003, auid("06010107-0700-0000-060e-2b3401010102")}};
constexpr std::array types{metaDictionary,
                           PathStep{0x0004, auid("06010107-0800-0000-060e-2b3401010102")}};
constexpr std::array data{header, dictionary,
                          PathStep{0x2605, auid("06010104-0505-0000-060e-2b3401010102")}};
constexpr std::array operations{header, dictionary,
                                PathStep{0x2603, auid("06010104-0503-0000-060e-2b3401010102")}};
constexpr std::array parameters{header, dictionary,
                                PathStep{0x2604, auid("06010104-0504-0000-060e-2b3401010102")}};
constexpr std::array interpolations{header, dictionary,
                                    PathStep{0x2609, auid("06010104-0509-0000-060e-2b3401010102")}};
constexpr std::array containers{header, dictionary,
                                PathStep{0x2608, auid("06010104-0508-0000-060e-2b3401010102")}};

constexpr std::array rows{
    TargetRow{Target::classDefinitions, classes, metaKey},
    TargetRow{Target::typeDefinitions, types, metaKey},
    TargetRow{Target::dataDefinitions, data, definitionKey},
    TargetRow{Target::operationDefinitions, operations, definitionKey},
    TargetRow{Target::parameterDefinitions, parameters, definitionKey},
    TargetRow{Target::interpolationDefinitions, interpolations, definitionKey},
    TargetRow{Target::containerDefinitions, containers, definitionKey},
};

}  // namespace

std::span<const TargetRow> targetRows() noexcept {
    return rows;
}

}  // namespace trellant::aaf
