// SPDX-License-Identifier: Apache-2.0
#include "confinement_layers.h"
#include "filesystem_rules.h"
#include "syscall_filter.h"

#include <array>
#include <cerrno>
#include <sys/prctl.h>
#include <sys/resource.h>

namespace trellant {

namespace {

/// No program started from here gains rights by its file, and the two layers of the kernel may be
/// entered without rights.
int forbidNewPrivileges(const ConfinedNeeds& /*needs*/) noexcept {
    return ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 ? 0 : errno;
}

/// The limit alone does not hold where the kernel hands dumps to a program; a process that is not
/// dumpable gives none there either, and other processes of the user cannot look into it.
int forbidCoreDumps(const ConfinedNeeds& /*needs*/) noexcept {
    constexpr rlimit none{.rlim_cur = 0, .rlim_max = 0};
    if (::setrlimit(RLIMIT_CORE, &none) != 0) {
        return errno;
    }
    return ::prctl(PR_SET_DUMPABLE, 0, 0, 0, 0) == 0 ? 0 : errno;
}

int restrictFilesTo(const ConfinedNeeds& needs) noexcept {
    return restrictFiles(needs);
}

/// The filter comes last: it takes away the calls by which the others are entered, but those of
/// Landlock where files are to be narrowed down later. These give nothing back.
constexpr std::array<ConfinementLayer, 4> layers{{
    {.name = "no_new_privs", .enter = forbidNewPrivileges},
    {.name = "forbidden core dumps", .enter = forbidCoreDumps},
    {.name = "Landlock", .enter = restrictFilesTo, .narrows = true},
    {.name = "seccomp", .enter = restrictCalls},
}};

}  // namespace

std::span<const ConfinementLayer> confinementLayers() noexcept {
    return layers;
}

}  // namespace trellant
