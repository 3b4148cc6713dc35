# SPDX-License-Identifier: MIT
# Makes the Debian package of a build and looks for errors in it.
set(folder ${BUILD}/packaging/deb)
file(REMOVE_RECURSE ${folder})
execute_process(COMMAND ${CPACK} --config ${BUILD}/CPackConfig.cmake -B ${folder} WORKING_DIRECTORY ${BUILD}
    OUTPUT_VARIABLE output ERROR_VARIABLE output RESULT_VARIABLE status)
if(status)
    message(FATAL_ERROR "${output}")
endif()
file(GLOB package ${folder}/*.deb)
execute_process(COMMAND ${LINTIAN} --allow-root --fail-on error --tag-display-limit 0 ${package}
    COMMAND_ECHO STDOUT RESULT_VARIABLE status)
if(status)
    message(FATAL_ERROR "lintian has found errors in ${package}")
endif()
