// SPDX-License-Identifier: Apache-2.0
#include "dictionary.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <span>
#include <string_view>
#include <vector>

namespace trellant::aaf {

namespace {

template <class Key>
struct Definition {
    Key key;
    AUID id;
    std::string_view name;
    std::string_view description;
};

constexpr std::array dataDefinitions{
    Definition<DataKind>{DataKind::sound, auid("01030202-0200-0000-060e-2b3404010101"),
                         "DataDef_Sound", "Sound data"},
    Definition<DataKind>{DataKind::timecode, auid("01030201-0100-0000-060e-2b3404010101"),
                         "DataDef_Timecode", "Timecode data"},
    Definition<DataKind>{DataKind::descriptiveMetadata,
                         auid("01030201-1000-0000-060e-2b3404010101"),
                         "DataDef_DescriptiveMetadata", "Descriptive metadata"},
};

constexpr std::array parameterDefinitions{
    Definition<ParameterKind>{ParameterKind::amplitude,
                              auid("e4962321-2267-11d3-8a4c-0050040ef7d2"), "Amplitude",
                              "Factor of the level"},
    Definition<ParameterKind>{ParameterKind::pan, auid("e4962322-2267-11d3-8a4c-0050040ef7d2"),
                              "Pan", "From 0, left, to 1, right"},
    Definition<ParameterKind>{ParameterKind::level, auid("e4962320-2267-11d3-8a4c-0050040ef7d2"),
                              "Level", "From 0, outgoing, to 1, incoming"},
};

constexpr std::array interpolationDefinitions{
    Definition<Interpolation>{Interpolation::linear, auid("5b6c85a4-0ede-11d3-80a9-006008143e6f"),
                              "LinearInterp", "Linear interpolation"},
    Definition<Interpolation>{Interpolation::constant, auid("5b6c85a5-0ede-11d3-80a9-006008143e6f"),
                              "ConstantInterp", "Constant interpolation"},
    Definition<Interpolation>{Interpolation::logarithmic,
                              auid("15829ec3-1f24-458a-960d-c65bb23c2aa1"), "LogInterp",
                              "Logarithmic interpolation"},
    Definition<Interpolation>{Interpolation::power, auid("c09153f7-bd18-4e5a-ad09-cbdd654fa001"),
                              "PowerInterp", "Power interpolation"},
};

constexpr std::array containerDefinitions{
    Definition<Container>{Container::aaf, auid("4313b571-d8ba-11d2-809b-006008143e6f"),
                          "ContainerDef_AAF", "AAF file"},
    Definition<Container>{Container::external, auid("4313b572-d8ba-11d2-809b-006008143e6f"),
                          "ContainerDef_External", "Not an AAF file"},
    Definition<Container>{Container::aafKLV, auid("4b464141-000d-4d4f-060e-2b34010101ff"),
                          "ContainerDef_AAFKLV", "AAF file of keys, lengths and values"},
};

struct OperationDefinition {
    Definition<Operation> definition;
    std::uint32_t inputs;
    ParameterKind parameter;
};

constexpr std::array operationDefinitions{
    OperationDefinition{{Operation::monoAudioGain, auid("9d2ea894-0968-11d3-8a38-0050040ef7d2"),
                         "Mono Audio Gain", "Changes the level of one channel"},
                        1,
                        ParameterKind::amplitude},
    OperationDefinition{{Operation::monoAudioPan, auid("9d2ea893-0968-11d3-8a38-0050040ef7d2"),
                         "Mono Audio Pan", "Places one channel between left and right"},
                        1,
                        ParameterKind::pan},
    OperationDefinition{{Operation::monoAudioDissolve, auid("0c3bea41-fc05-11d2-8a29-0050040ef7d2"),
                         "Mono Audio Dissolve", "Goes from one channel to another"},
                        2,
                        ParameterKind::level},
};

constexpr AUID effectCategory = auid("0d010102-0101-0100-060e-2b3404010101");

template <class Key>
constexpr const Definition<Key>& definitionOf(const Definition<Key>& row) {
    return row;
}
constexpr const Definition<Operation>& definitionOf(const OperationDefinition& row) {
    return row.definition;
}

/// Every definition stands at the place that its key says.
template <class Rows>
constexpr bool isInOrder(const Rows& rows) {
    for (std::size_t index = 0; index < rows.size(); ++index) {
        if (static_cast<std::size_t>(definitionOf(rows[index]).key) != index) {
            return false;
        }
    }
    return true;
}
static_assert(isInOrder(dataDefinitions));
static_assert(isInOrder(operationDefinitions));
static_assert(isInOrder(parameterDefinitions));
static_assert(isInOrder(interpolationDefinitions));
static_assert(isInOrder(containerDefinitions));

class DictionaryWriter {
  public:
    DictionaryWriter(compound::CompoundFile& file, Storage storage)
        : file_(file), object_(file, storage) {}

    void write() {
        writeSet(Property::dictionaryDataDefinitions, Class::dataDefinition, dataDefinitions);
        writeSet(Property::dictionaryContainerDefinitions, Class::containerDefinition,
                 containerDefinitions);
        writeSet(Property::dictionaryInterpolationDefinitions, Class::interpolationDefinition,
                 interpolationDefinitions);
        writeSet(Property::dictionaryParameterDefinitions, Class::parameterDefinition,
                 parameterDefinitions);
        writeSet(Property::dictionaryOperationDefinitions, Class::operationDefinition,
                 operationDefinitions);
        object_.finish();
    }

  private:
    template <class Rows>
    void writeSet(Property property, Class objectClass, const Rows& rows) {
        std::vector<AUID> names;
        std::transform(rows.begin(), rows.end(), std::back_inserter(names),
                       [](const auto& row) { return definitionOf(row).id; });
        ObjectList list =
            object_.strongSet(property, Property::definitionObjectIdentification, names);
        for (const auto& row : rows) {
            ObjectWriter object(file_, list.add(objectClass));
            object.auid(Property::definitionObjectIdentification, definitionOf(row).id);
            object.text(Property::definitionObjectName, definitionOf(row).name);
            object.text(Property::definitionObjectDescription, definitionOf(row).description);
            writeRest(object, row);
            object.finish();
        }
    }

    template <class Key>
    static void writeRest(ObjectWriter&, const Definition<Key>&) {}

    static void writeRest(ObjectWriter& object, const Definition<ParameterKind>&) {
        object.weakReference(Property::parameterDefinitionType, Target::typeDefinitions,
                             rowOf(Type::rational).id);
    }

    static void writeRest(ObjectWriter& object, const OperationDefinition& row) {
        object.weakReference(Property::operationDefinitionDataDefinition, Target::dataDefinitions,
                             idOf(DataKind::sound));
        object.boolean(Property::operationDefinitionIsTimeWarp, false);
        object.auid(Property::operationDefinitionOperationCategory, effectCategory);
        object.u32(Property::operationDefinitionNumberInputs, row.inputs);
        object.weakSet(Property::operationDefinitionParametersDefined, Target::parameterDefinitions,
                       std::array{idOf(row.parameter)});
    }

    compound::CompoundFile& file_;
    ObjectWriter object_;
};

}  // namespace

const AUID& idOf(DataKind kind) noexcept {
    return dataDefinitions[static_cast<std::size_t>(kind)].id;
}

const AUID& idOf(Operation operation) noexcept {
    return operationDefinitions[static_cast<std::size_t>(operation)].definition.id;
}

const AUID& idOf(ParameterKind kind) noexcept {
    return parameterDefinitions[static_cast<std::size_t>(kind)].id;
}

const AUID& idOf(Interpolation interpolation) noexcept {
    return interpolationDefinitions[static_cast<std::size_t>(interpolation)].id;
}

const AUID& idOf(Container container) noexcept {
    return containerDefinitions[static_cast<std::size_t>(container)].id;
}

void writeDictionary(compound::CompoundFile& file, Storage storage) {
    DictionaryWriter(file, storage).write();
}

}  // namespace trellant::aaf
