# What the Debian package says of itself. Variables: PACKAGES, VERSION.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(GLOB package ${PACKAGES}/*.deb)
run(${DPKG_DEB} -f ${package} Package Version Section Recommends Maintainer)
expect_equal("control fields" "${run_output}" "Package: trellant
Version: ${VERSION}
Section: sound
Recommends: libutf8proc-dev
Maintainer: Trellant
")
# The converter of audio files is all that is linked with the machine's libraries.
run(${DPKG_DEB} -f ${package} Depends)
string(REGEX REPLACE " \\([^)]*\\)|[\n ]" "" depends "${run_output}")
expect_equal("libraries" "${depends}" "libc6,libgcc-s1,libsndfile1,libstdc++6")
