# SPDX-License-Identifier: Apache-2.0
# What the Debian packages say of themselves. Variables: PACKAGES, VERSION.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)

# expect_control(PACKAGE EXPECTED): its fields but those that differ by machine. The version of a
# library that the machine has is no field of ours.
function(expect_control package expected)
    file(GLOB file ${PACKAGES}/${package}_*.deb)
    run(${DPKG_DEB} -f ${file} Package Version Section Priority Depends Recommends Suggests Breaks
        Replaces Maintainer)
    string(REGEX REPLACE "(libc6|libgcc-s1|libsndfile1|libsoxr0|libstdc\\+\\+6) \\([^)]*\\)" "\\1" fields
        "${run_output}")
    expect_equal("control fields of ${package}" "${fields}" "${expected}")
endfunction()

# The converter of audio files is all that is linked with the machine's libraries.
expect_control(trellant "Package: trellant
Version: ${VERSION}-1
Section: sound
Priority: optional
Depends: libc6, libgcc-s1, libsndfile1, libsoxr0, libstdc++6
Suggests: libtrellant-doc
Maintainer: Trellant <maintainers@trellant.invalid>
")
expect_control(libtrellant-dev "Package: libtrellant-dev
Version: ${VERSION}-1
Section: libdevel
Priority: optional
Depends: trellant (= ${VERSION}-1), libutf8proc-dev, nettle-dev
Recommends: libminizip-dev, libpugixml-dev, libsqlite3-dev, zlib1g-dev
Suggests: libtrellant-doc
Breaks: trellant (<< 0.2.0)
Replaces: trellant (<< 0.2.0)
Maintainer: Trellant <maintainers@trellant.invalid>
")
expect_control(libtrellant-doc "Package: libtrellant-doc
Version: ${VERSION}-1
Section: doc
Priority: optional
Breaks: trellant (<< 0.2.0)
Replaces: trellant (<< 0.2.0)
Maintainer: Trellant <maintainers@trellant.invalid>
")
expect_control(python3-trellant "Package: python3-trellant
Version: ${VERSION}-1
Section: python
Priority: optional
Depends: python3 (>= 3.9), trellant (>= ${VERSION}-1)
Suggests: libtrellant-doc
Maintainer: Trellant <maintainers@trellant.invalid>
")

# Documents and what an interpreter reads serve every machine, and each package has a description of its own.
foreach(package libtrellant-doc python3-trellant)
    file(GLOB file ${PACKAGES}/${package}_*.deb)
    run(${DPKG_DEB} -f ${file} Architecture)
    expect_equal("architecture of ${package}" "${run_output}" "all\n")
endforeach()
set(descriptions "")
foreach(package trellant libtrellant-dev libtrellant-doc python3-trellant)
    file(GLOB file ${PACKAGES}/${package}_*.deb)
    run(${DPKG_DEB} -f ${file} Description)
    string(REGEX REPLACE "\n.*" "\n" first "${run_output}")
    string(APPEND descriptions "${first}")
endforeach()
expect_equal("first lines of the descriptions" "${descriptions}"
"looks into OMF files and writes sessions for today's tools
libraries that read OMF files, for C++ hosts
documents and examples of Trellant
reads OMF files from Python
")
