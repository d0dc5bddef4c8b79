# Installs BUILD into the folder PREFIX, moves it from there and has the viewer describe a sample, for which it has to
# find both libraries and the plug-in. With CONSUMER, a folder of sources: builds and runs those on the two libraries.

function(run)
    execute_process(COMMAND ${ARGN} OUTPUT_VARIABLE output COMMAND_ERROR_IS_FATAL ANY)
    set(output "${output}" PARENT_SCOPE)
endfunction()

# expect(TEXT COMMAND...): the command writes that.
function(expect text)
    run(${ARGN})
    if(NOT output MATCHES "${text}")
        message(FATAL_ERROR "${ARGN} says: ${output}")
    endif()
endfunction()

set(moved "${PREFIX}_moved")
file(REMOVE_RECURSE "${PREFIX}" "${moved}")
foreach(time once twice)
    run(${CMAKE_COMMAND} --install "${BUILD}" --config "${CONFIG}" --prefix "${PREFIX}")
endforeach()
file(RENAME "${PREFIX}" "${moved}")

set(sample "${moved}/sample.jp2")
run("${SAMPLE_MAKER}" "${sample}" 640x480)
# With nothing but what was installed: a plug-in of the build would otherwise do for one that is missing.
unset(ENV{QDVIEWER_PLUGIN_PATH})
expect("XRVJP2kLayer" "${moved}/bin/qdviewer" --settings "${moved}/settings.ini" --describe "${sample}")

# What a desktop starts is what was installed, with the icon that was.
file(GLOB entries "${moved}/share/applications/*.desktop" "${moved}/share/thumbnailers/*.thumbnailer")
foreach(entry ${entries})
    file(STRINGS "${entry}" lines REGEX "^(Exec|Icon)=")
    foreach(line ${lines})
        string(REGEX MATCH "^([A-Za-z]+)=([^ ]+)" name "${line}")
        if(NOT EXISTS "${moved}/bin/${CMAKE_MATCH_2}" AND
           NOT EXISTS "${moved}/share/icons/hicolor/scalable/apps/${CMAKE_MATCH_2}.svg")
            message(FATAL_ERROR "${entry}: ${line}")
        endif()
    endforeach()
endforeach()

if(CONSUMER)
    set(plain "${moved}/plain")
    file(COPY "${moved}/include" DESTINATION "${plain}")
    file(COPY "${moved}/lib" DESTINATION "${plain}" PATTERN cmake EXCLUDE)
    set(build "${moved}/consumer")
    run(${CMAKE_COMMAND} -S "${CONSUMER}" -B "${build}" -G "${GENERATOR}" "-DCMAKE_CXX_COMPILER=${COMPILER}"
        "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DCMAKE_PREFIX_PATH=${moved}" "-DINSTALLATION=${moved}" "-DPLAIN=${plain}"
        "-DPLATFORM_LIBRARIES=${PLATFORM_LIBRARIES}")
    run(${CMAKE_COMMAND} --build "${build}")
    foreach(way "" _root)
        expect("640 x 480 cells" "${build}/usexrv60${way}" "${sample}")
        expect("0 layers" "${build}/useQDGui${way}")
    endforeach()
endif()
