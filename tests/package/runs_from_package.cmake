# SPDX-License-Identifier: Apache-2.0
# Unpacks all packages of one kind into an empty folder, asks the worker, builds a host against the
# libraries and puts it beside the worker. Variables: PACKAGES, KIND (deb or tar.gz), FOLDER, EXAMPLES,
# PYTHON, VERSION.
include(${CMAKE_CURRENT_LIST_DIR}/steps.cmake)
file(REMOVE_RECURSE ${FOLDER})
file(MAKE_DIRECTORY ${FOLDER}/unpacked)
file(GLOB packages ${PACKAGES}/*.${KIND})
if(KIND STREQUAL deb)
    foreach(package IN LISTS packages)
        run(${DPKG_DEB} -x ${package} ${FOLDER}/unpacked)
    endforeach()
    set(prefix ${FOLDER}/unpacked/usr)
    set(pages share/man/man1/trellant-omf.1.gz share/man/man1/trellant.1.gz)
else()
    run(${CMAKE_COMMAND} -E chdir ${FOLDER}/unpacked ${CMAKE_COMMAND} -E tar xzf ${packages})
    file(GLOB prefix ${FOLDER}/unpacked/*)
    set(pages share/man/man1/trellant-omf.1 share/man/man1/trellant.1 share/doc/trellant/LICENSE)
endif()

file(WRITE ${FOLDER}/request.json "{\"protocolVersion\": 1, \"operation\": \"inspect\",
    \"aafPath\": \"${prefix}/share/doc/trellant/examples/archive.omf\", \"workDirectory\": \"/nowhere\",
    \"recoverProToolsTrueFades\": false, \"removeProToolsSampleAccurateEditFragments\": false}")
execute_process(COMMAND ${prefix}/bin/trellant-omf INPUT_FILE ${FOLDER}/request.json
    OUTPUT_VARIABLE answer ERROR_VARIABLE errors RESULT_VARIABLE status)
expect_equal("status of the unpacked worker" "${status}" 0)
string(JSON name GET "${answer}" timeline compositionName)
expect_equal("composition that the unpacked worker read" "${name}" "Café")

foreach(file IN LISTS pages ITEMS
        lib/cmake/trellant/trellantConfig.cmake lib/pkgconfig/trellant.pc
        lib/pkgconfig/trellant-export.pc include/trellant/exporter/exporter.h
        include/trellant/version.h include/trellant/client/worker_client.h
        share/locale/de/LC_MESSAGES/trellant.mo share/locale/en/LC_MESSAGES/trellant.mo
        share/bash-completion/completions/trellant share/zsh/vendor-completions/_trellant
        share/fish/vendor_completions.d/trellant.fish libexec/trellant/trellant-wav
        lib/python3/dist-packages/trellant/py.typed share/doc/trellant/docs/python.md
        share/doc/trellant/docs/embedding.md share/doc/trellant/docs/exports.md share/doc/trellant/SECURITY.md
        share/doc/trellant/CHANGELOG.md share/doc/trellant/CONTRIBUTING.md share/doc/trellant/copyright
        share/doc/trellant/sbom.spdx.json
        share/trellant/schema/request.schema.json share/trellant/schema/progress.schema.json
        share/trellant/schema/result.schema.json share/trellant/schema/timeline.schema.json
        share/trellant/schema/command/info.schema.json share/trellant/schema/command/failure.schema.json
        share/trellant/schema/profile.schema.json share/trellant/schema/command/check.schema.json
        share/trellant/schema/command/export.schema.json
        share/trellant/schema/command/export-losses.schema.json
        share/trellant/schema/command/scan.schema.json
        share/trellant/slurm/submit share/trellant/slurm/scan.sbatch share/trellant/slurm/merge.sbatch
        share/trellant/parallel/scan include/trellant/bag/bag.h)
    if(NOT EXISTS ${prefix}/${file})
        message(FATAL_ERROR "the packages lack ${file}")
    endif()
endforeach()

# The command finds its worker and its converter in the package alone.
run(${prefix}/bin/trellant info ${EXAMPLES}/archive.omf --json)
string(JSON name GET "${run_output}" composition)
expect_equal("composition that the unpacked command shows" "${name}" "Café")
run(${prefix}/bin/trellant extract ${EXAMPLES}/archive.omf --to ${FOLDER}/taken --wav)
if(NOT EXISTS "${FOLDER}/taken/Reel 7 transfer.wav")
    message(FATAL_ERROR "the unpacked command wrote no WAVE")
endif()
run(${prefix}/bin/trellant extract ${EXAMPLES}/archive.omf --bag ${FOLDER}/bag)
if(NOT EXISTS ${FOLDER}/bag/metadata/premis.xml)
    message(FATAL_ERROR "the unpacked command wrote no bag")
endif()
run(${prefix}/bin/trellant scan ${EXAMPLES} -o ${FOLDER}/rows.ndjson)
run(${prefix}/bin/trellant catalogue build ${FOLDER}/archive.sqlite ${FOLDER}/rows.ndjson)
run(${prefix}/bin/trellant export ${EXAMPLES}/archive.omf --to ${FOLDER}/session --format aaf)
if(NOT EXISTS ${FOLDER}/session/archive.aaf)
    message(FATAL_ERROR "the unpacked command wrote no session")
endif()

# What engines of clusters start can be started.
foreach(script slurm/submit slurm/scan.sbatch slurm/merge.sbatch parallel/scan)
    run(sh -n ${prefix}/share/trellant/${script})
    run(test -x ${prefix}/share/trellant/${script})
endforeach()

# And so does the Python package, with nothing in the environment but its own place.
run(${CMAKE_COMMAND} -E env --unset=TRELLANT_WORKER PATH=/nowhere
    PYTHONPATH=${prefix}/lib/python3/dist-packages ${PYTHON} -B -c
    "import sys, trellant, importlib.metadata as installed
print(trellant.find_worker(), installed.version('trellant'))
print(trellant.Client().inspect(sys.argv[1]).timeline.composition_name)" ${EXAMPLES}/archive.omf)
expect_equal("what the unpacked Python package read" "${run_output}"
    "${prefix}/bin/trellant-omf ${VERSION}\nCafé\n")

set(project ${CMAKE_CURRENT_LIST_DIR}/host)
build_outside(${project} ${FOLDER}/host ${prefix})
run(${CMAKE_COMMAND} --install ${FOLDER}/host --prefix ${prefix})
expect_output(${project}/expected.txt
    ${prefix}/bin/follow_worker ${EXAMPLES}/session.omf ${FOLDER}/audio)
