// SPDX-License-Identifier: Apache-2.0
#include "dump_path.h"

#include "dump_object.h"
#include "dump_values.h"
#include "terminal/shown_text.h"

#include <trellant/base/keyed_hash.h>

#include <algorithm>
#include <charconv>

namespace trellant::cli {

namespace {

constexpr std::size_t mostNamed = 12;
/// Of an effect's slots: the argument that is an input.
constexpr std::int32_t inputArgument = -1;

struct Step {
    std::string_view label;
    std::optional<std::uint32_t> number;
};

/// "label[number]" or "label"; absent for anything else.
std::optional<Step> parsed(std::string_view text) {
    const std::size_t bracket = text.rfind('[');
    if (bracket == std::string_view::npos) {
        return text.empty() ? std::nullopt : std::optional(Step{text, std::nullopt});
    }
    std::string_view digits = text.substr(bracket + 1);
    if (digits.empty() || digits.back() != ']') {
        return std::nullopt;
    }
    digits.remove_suffix(1);
    std::uint32_t number = 0;
    const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    if (digits.empty() || error != std::errc() || end != digits.data() + digits.size()) {
        return std::nullopt;
    }
    return Step{text.substr(0, bracket), number};
}

std::string listed(const std::vector<std::uint32_t>& objects) {
    std::string text;
    for (std::size_t i = 0; i < std::min(objects.size(), mostNamed); ++i) {
        text += (i == 0 ? "" : ", ") + std::to_string(objects[i]);
    }
    if (objects.size() > mostNamed) {
        text += " and " + std::to_string(objects.size() - mostNamed) + " more";
    }
    return text.empty() ? "none" : text;
}

class Resolver {
  public:
    explicit Resolver(const DumpContents& contents) : contents_(contents) {}

    PathResolution resolve(std::string_view path) {
        while (!resolution_.fault) {
            const std::size_t end = std::min(path.find('/'), path.size());
            take(path.substr(0, end));
            if (end == path.size()) {
                break;
            }
            path.remove_prefix(end + 1);
        }
        return std::move(resolution_);
    }

  private:
    void take(std::string_view text) {
        const auto step = parsed(text);
        if (!step) {
            fail("\"" + shownText(text) +
                 "\" is no step of a path, such as CMOB[12] or component[2]");
            return;
        }
        text_ = shownText(text);
        if (!isFirst() && step->label == "slot") {
            takeSlot(*step);
        } else if (!isFirst() && (step->label == "component" || step->label == "input")) {
            takeIndexed(*step);
        } else if (!isFirst() && step->label == "FinalRendering") {
            takeOnly("OMFI:EFFE:FinalRendering");
        } else if (!isFirst() && (step->label == "FadeIn" || step->label == "FadeOut")) {
            add(current(), "OMFI:SCLP:" + std::string(step->label) + "Length");
        } else {
            takeObject(*step);
        }
    }

    /// CLASS[object], whether the object before refers to it or not.
    void takeObject(const Step& step) {
        if (!step.number) {
            fail("the step " + text_ + " names no object");
            return;
        }
        if (!contents_.has(*step.number)) {
            const auto objects = contents_.objects();
            fail("there is no object " + std::to_string(*step.number) +
                 (objects.empty()
                      ? std::string()
                      : "; the objects are numbered from " + std::to_string(objects.front()) +
                            " to " + std::to_string(objects.back())));
            return;
        }
        const std::string actual = contents_.classOf(*step.number);
        if (!step.label.empty() && step.label != "????" && !isNamed(actual, step.label)) {
            fail("object " + std::to_string(*step.number) + " is " + classText(actual) + ", not " +
                 shownText(step.label));
            return;
        }
        add(*step.number, isFirst() ? std::string() : leadingTo(*step.number));
    }

    /// Whether losses name an object of that class so: a mob of OMF 1.x by what it is, a class that
    /// is not known with a word behind it.
    [[nodiscard]] bool isNamed(const std::string& actual, std::string_view label) const {
        if (contents_.model() != ObjectModel::omf1) {
            return label == actual;
        }
        const bool isMob = label == "CMOB" || label == "MMOB" || label == "SMOB";
        return isMob ? actual == "MOBJ" : label.substr(0, label.find(" (")) == actual;
    }
    [[nodiscard]] const char* nameOf(const char* property, const char* older) const {
        return contents_.model() == ObjectModel::omf1 ? older : property;
    }

    void takeSlot(const Step& step) {
        const char* const name = nameOf("OMFI:MOBJ:Slots", "OMFI:TRKG:Tracks");
        const auto slots = references(name);
        if (step.number && std::find(slots.begin(), slots.end(), *step.number) != slots.end()) {
            add(*step.number, name);
        } else {
            failWithin("slots", slots);
        }
    }

    void takeIndexed(const Step& step) {
        const bool isComponent = step.label == "component";
        const char* const list = nameOf("OMFI:SEQU:Components", "OMFI:SEQU:Sequence");
        const auto objects = isComponent ? references(list) : inputs();
        if (step.number && *step.number < objects.size()) {
            add(objects[*step.number], isComponent ? list : "OMFI:EFFE:EffectSlots");
        } else {
            failWithin(isComponent ? "components" : "inputs", objects);
        }
    }

    void takeOnly(const char* property) {
        const auto objects = references(property);
        if (objects.empty()) {
            failWithin("final renderings", objects);
        } else {
            add(objects.front(), property);
        }
    }

    /// The values of those effect slots that are inputs, as the mapping counts them.
    [[nodiscard]] std::vector<std::uint32_t> inputs() const {
        std::vector<std::uint32_t> result;
        // A list may name one slot a million times.
        KeyedMap<std::uint32_t, std::optional<std::uint32_t>> bySlot;
        for (const std::uint32_t slot : references("OMFI:EFFE:EffectSlots")) {
            const auto [known, isNew] = bySlot.try_emplace(slot);
            if (isNew) {
                known->second = inputOf(slot);
            }
            if (known->second) {
                result.push_back(*known->second);
            }
        }
        return result;
    }

    [[nodiscard]] std::optional<std::uint32_t> inputOf(std::uint32_t slot) const {
        const auto argument = contents_.value(slot, "OMFI:ESLT:ArgID", 4);
        const auto value = referencesFrom(slot, "OMFI:ESLT:ArgValue");
        if (!argument || argument->head.size() != 4 || value.empty() ||
            i32(argument->head, 0, contents_.valueOrder()) != inputArgument) {
            return std::nullopt;
        }
        return value.front();
    }

    /// The property of the object before that refers to `object`.
    [[nodiscard]] std::string leadingTo(std::uint32_t object) const {
        for (const std::uint32_t property : contents_.propertiesOf(current())) {
            const auto targets = referencesOf(contents_, current(), property);
            if (std::find(targets.begin(), targets.end(), object) != targets.end()) {
                return propertyLabel(contents_, property);
            }
        }
        return {};
    }

    [[nodiscard]] std::vector<std::uint32_t> references(const char* property) const {
        return referencesFrom(current(), property);
    }
    [[nodiscard]] std::vector<std::uint32_t> referencesFrom(std::uint32_t object,
                                                            const char* property) const {
        const auto id = contents_.propertyID(property);
        return id ? referencesOf(contents_, object, *id) : std::vector<std::uint32_t>();
    }

    [[nodiscard]] bool isFirst() const { return resolution_.steps.empty(); }
    [[nodiscard]] std::uint32_t current() const { return resolution_.steps.back().object; }
    [[nodiscard]] static std::string classText(const std::string& label) {
        return label.empty() ? "of no class" : "a " + shownText(label);
    }

    void add(std::uint32_t object, std::string by) {
        resolution_.steps.push_back({text_, object, std::move(by)});
    }
    void fail(std::string fault) { resolution_.fault = std::move(fault); }
    void failWithin(const std::string& kind, const std::vector<std::uint32_t>& objects) {
        fail("there is no " + text_ + " in object " + std::to_string(current()) + " (" +
             shownText(contents_.classOf(current())) + "); its " + kind + ": " + listed(objects));
    }

    const DumpContents& contents_;
    PathResolution resolution_;
    std::string text_;
};

}  // namespace

PathResolution resolvePath(const DumpContents& contents, std::string_view path) {
    return Resolver(contents).resolve(path);
}

}  // namespace trellant::cli
