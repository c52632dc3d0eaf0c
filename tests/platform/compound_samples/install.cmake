# Puts compound files of other programs and the npm package cfb into FOLDER, with the scripts from SOURCE
# beside it. Does nothing when they are there already.
set(package libspreadsheet-parseexcel-perl)
find_program(NPM npm)
if(NOT NPM)
    message(FATAL_ERROR "npm is missing, so there is no other program to compare with (Debian package npm)")
endif()
file(MAKE_DIRECTORY ${FOLDER}/excel)
file(COPY ${SOURCE}/package.json ${SOURCE}/cfb.js DESTINATION ${FOLDER})
if(NOT EXISTS ${FOLDER}/node_modules/cfb/package.json)
    execute_process(COMMAND ${NPM} install --no-audit --no-fund --no-package-lock
                    WORKING_DIRECTORY ${FOLDER} RESULT_VARIABLE failed OUTPUT_VARIABLE said ERROR_VARIABLE said)
    if(failed)
        message(FATAL_ERROR "npm cannot install cfb:\n${said}")
    endif()
endif()

# Workbooks that were saved by the spreadsheet program itself. Systems that leave documentation out have
# the package without them, so that it is fetched once more.
set(samples usr/share/doc/${package}/examples/sample/Excel)
file(GLOB workbooks ${FOLDER}/excel/*.xls)
if(NOT workbooks)
    set(root "")
    if(NOT EXISTS /${samples}/Test97.xls)
        set(root ${FOLDER}/package)
        file(MAKE_DIRECTORY ${root})
        execute_process(COMMAND apt-get download ${package} WORKING_DIRECTORY ${root}
                        OUTPUT_VARIABLE said ERROR_VARIABLE said)
        file(GLOB archive ${root}/${package}_*.deb)
        execute_process(COMMAND dpkg-deb -x ${archive} ${root} ERROR_VARIABLE more)
        string(APPEND said ${more})
    endif()
    file(GLOB workbooks ${root}/${samples}/*.xls)
    if(NOT workbooks)
        message(FATAL_ERROR "no sample files in the Debian package ${package}:\n${said}")
    endif()
    file(COPY ${workbooks} DESTINATION ${FOLDER}/excel)
endif()
