# Packs SOURCE/NAME.json as FOLDER/NAME.ovdl, with all other files of SOURCE beside it but JSON.
#
# A mask is used only where it exists by its name alone, without a search beside the document. The names of masks
# are therefore made whole.
function(run)
    execute_process(COMMAND ${ARGN} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        message(FATAL_ERROR "${NAME} cannot be packed: ${ARGN} ended with ${result}")
    endif()
endfunction()

file(GLOB files ${SOURCE}/*)
list(FILTER files EXCLUDE REGEX "\\.json$")
file(COPY ${files} DESTINATION ${FOLDER})

file(READ ${SOURCE}/${NAME}.json text)
# Escaped for JSON, and then once more for the text that a regular expression puts in.
string(REPLACE "\\" "\\\\" place "${FOLDER}/")
string(REPLACE "\"" "\\\"" place "${place}")
string(REPLACE "\\" "\\\\" place "${place}")
string(REGEX REPLACE "\"maskFileName\"[ \t\r\n]*:[ \t\r\n]*\"([^\"])" "\"maskFileName\": \"${place}\\1" text "${text}")
file(WRITE ${FOLDER}/${NAME}.json "${text}")

run(${TOOL} convert ${FOLDER}/${NAME}.json ${FOLDER}/${NAME}.ovdl)
file(REMOVE ${FOLDER}/${NAME}.json)
if(SETTINGS)
    run(${SETTINGS_WRITER} ${FOLDER}/${NAME}.ovdl --json ${SETTINGS})
endif()
