// SPDX-License-Identifier: Apache-2.0
// The texts that a host shows to a person: looked up by key in message catalogues (domain
// "trellant"), English when there is none for the host's locale.
#pragma once

#include <string>

namespace [[gnu::visibility("default")]] trellant {

/// Where the catalogues lie: a folder that holds LANGUAGE/LC_MESSAGES/trellant.mo. Without this
/// call they are looked for in "../share/locale" seen from the folder of the host's executable,
/// then where this library was installed. Call it before the first text is asked for.
///
/// The language is that of the process: the host calls setlocale(LC_ALL, "") at its start, or
/// every text is English.
void setCatalogueDirectory(const std::string& directory);

/// The text under `key`, or `english` when no catalogue has it. UTF-8; lives as long as the
/// process. Safe from several threads.
[[nodiscard]] const char* localizedText(const char* key, const char* english);

}  // namespace trellant
