# Installs BUILD into the folder PREFIX and has the viewer there describe a sample, for which it has to find both
# libraries and the plug-in. HEADERS, divided by commas, are to be there too.

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(output "${output}" PARENT_SCOPE)
endfunction()

file(REMOVE_RECURSE "${PREFIX}")
run(${CMAKE_COMMAND} --install "${BUILD}" --config "${CONFIG}" --prefix "${PREFIX}")
string(REPLACE "," ";" headers "${HEADERS}")
foreach(header ${headers})
    if(NOT EXISTS "${PREFIX}/include/${header}")
        message(FATAL_ERROR "${header} was not installed.")
    endif()
endforeach()

set(sample "${PREFIX}/sample.jp2")
run("${SAMPLE_MAKER}" "${sample}")
# With nothing but what was installed: a plug-in of the build would otherwise do for one that is missing.
unset(ENV{QDVIEWER_PLUGIN_PATH})
run("${PREFIX}/bin/qdviewer" --settings "${PREFIX}/settings.ini" --describe "${sample}")
if(NOT output MATCHES "XRVJP2kLayer")
    message(FATAL_ERROR "The installed viewer says: ${output}")
endif()
