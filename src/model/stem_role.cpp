// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/localization.h>
#include <trellant/base/precondition.h>
#include <trellant/model/stem_role.h>

namespace trellant {

std::string_view anzeigenameKey(AAFStemRole role) noexcept {
    switch (role) {
        case AAFStemRole::music:
            return "aaf.stem.music";
        case AAFStemRole::sounds:
            return "aaf.stem.sounds";
        case AAFStemRole::voice:
            return "aaf.stem.voice";
        case AAFStemRole::other:
        case AAFStemRole::unclassified:
            return "aaf.stem.other";
    }
    preconditionFailure("enumeration value outside its cases");
}

std::string_view anzeigename(AAFStemRole role) {
    switch (role) {
        case AAFStemRole::music:
            return localizedText(anzeigenameKey(role).data(), "Music");
        case AAFStemRole::sounds:
            return localizedText(anzeigenameKey(role).data(), "Sounds");
        case AAFStemRole::voice:
            return localizedText(anzeigenameKey(role).data(), "Voice");
        case AAFStemRole::other:
        case AAFStemRole::unclassified:
            return localizedText(anzeigenameKey(role).data(), "Other");
    }
    preconditionFailure("enumeration value outside its cases");
}

}  // namespace trellant
