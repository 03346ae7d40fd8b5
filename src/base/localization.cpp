// SPDX-License-Identifier: Apache-2.0
#include <trellant/base/executable_location.h>
#include <trellant/base/localization.h>

#include <libintl.h>
#include <mutex>
#include <string_view>
#include <unistd.h>

namespace trellant {

namespace {

constexpr const char* domain = "trellant";

struct Catalogues {
    std::mutex mutex;
    bool placed = false;
};

Catalogues& catalogues() {
    static Catalogues instance;
    return instance;
}

void lookIn(const std::string& directory) {
    ::bindtextdomain(domain, directory.c_str());
    ::bind_textdomain_codeset(domain, "UTF-8");
}

std::string defaultDirectory() {
    if (const std::optional<std::string> program = executableDirectory()) {
        std::string beside = *program + "/../share/locale";
        if (::access((beside + "/en/LC_MESSAGES/trellant.mo").c_str(), R_OK) == 0) {
            return beside;
        }
    }
    return TRELLANT_LOCALE_DIRECTORY;
}

void placeOnce() {
    Catalogues& shared = catalogues();
    const std::lock_guard lock(shared.mutex);
    if (!shared.placed) {
        lookIn(defaultDirectory());
        shared.placed = true;
    }
}

}  // namespace

void setCatalogueDirectory(const std::string& directory) {
    Catalogues& shared = catalogues();
    const std::lock_guard lock(shared.mutex);
    lookIn(directory);
    shared.placed = true;
}

const char* localizedText(const char* key, const char* english) {
    placeOnce();
    const char* const text = ::dgettext(domain, key);
    // Without a translation the key itself comes back.
    return std::string_view(text) == key ? english : text;
}

}  // namespace trellant
