# Puts the test files of the npm package occt-import-js into FOLDER. Does nothing when they are there. Without a
# network nothing is there afterwards, and the tests that need the files say so.
set(package occt-import-js@0.0.23)
if(EXISTS ${FOLDER}/package/test/testfiles)
    return()
endif()
find_program(NPM npm)
if(NOT NPM)
    message(STATUS "npm is missing, so there are no STEP files of other programs (Debian package npm)")
    return()
endif()
file(MAKE_DIRECTORY ${FOLDER})
execute_process(COMMAND ${NPM} pack --silent ${package} WORKING_DIRECTORY ${FOLDER}
                OUTPUT_VARIABLE archive ERROR_VARIABLE said RESULT_VARIABLE failed OUTPUT_STRIP_TRAILING_WHITESPACE)
if(failed)
    message(STATUS "npm cannot fetch ${package}:\n${said}")
    return()
endif()
# All at once, so that nobody meets half of them.
file(ARCHIVE_EXTRACT INPUT ${FOLDER}/${archive} DESTINATION ${FOLDER}/unpacked)
file(RENAME ${FOLDER}/unpacked/package ${FOLDER}/package)
