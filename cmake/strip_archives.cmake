# SPDX-License-Identifier: Apache-2.0
# Takes debug symbols and the compiler's intermediate code out of installed archives: both are of use
# only to the very compiler that made them, and ten times the size of the rest.
# Variables: OBJCOPY, ARCHIVES.
foreach(archive IN LISTS ARCHIVES)
    execute_process(
        COMMAND ${OBJCOPY} --enable-deterministic-archives --strip-debug --wildcard
            --remove-section=.gnu.lto_* --remove-section=.gnu.debuglto_*
            --strip-symbol=__gnu_lto_v1 --strip-symbol=__gnu_lto_slim ${archive}
        COMMAND_ERROR_IS_FATAL ANY)
endforeach()
