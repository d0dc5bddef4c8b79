# cmake --install: the viewer with its plug-in and the tools, and both platform libraries with their headers and package
# files, so that other projects find them with find_package(xrv60) and find_package(QDGui). The folder installed to may
# be moved, and may be XRV_SDK_ROOT and QDGUI_ROOT of another build. Components: sdk, host, plugin, viewer, tools.

include(CMakePackageConfigHelpers)

# install_room(COMPONENT FOLDER RPATH TARGET...): puts the targets that are built here into FOLDER, where they find their
# libraries at RPATH, counted from their own folder, or where another installation has them.
function(install_room component folder rpath)
    xrv_built_here(targets ${ARGN})
    foreach(target ${targets})
        set_target_properties(${target} PROPERTIES INSTALL_RPATH "$ORIGIN/${rpath}" INSTALL_RPATH_USE_LINK_PATH ON)
        install(TARGETS ${target} COMPONENT ${component} RUNTIME DESTINATION bin LIBRARY DESTINATION ${folder}
                ARCHIVE DESTINATION lib)
    endforeach()
endfunction()

# install_library(COMPONENT LIBRARY): a platform library, if it is built here, with its room's headers and its package
# files. Others link to LIBRARY::LIBRARY. What it stands on itself is found by LIBRARYConfig.cmake of the room, if any.
function(install_library room library)
    xrv_built_here(target ${library})
    if(NOT target)
        return()
    endif()
    set_target_properties(${library} PROPERTIES VERSION ${PROJECT_VERSION} SOVERSION ${PROJECT_VERSION_MAJOR}
                          INSTALL_RPATH "$ORIGIN" INSTALL_RPATH_USE_LINK_PATH ON)
    target_include_directories(${library} INTERFACE $<INSTALL_INTERFACE:include>)
    target_compile_features(${library} INTERFACE cxx_std_17)
    install(TARGETS ${library} EXPORT ${library} COMPONENT ${room} RUNTIME DESTINATION bin LIBRARY DESTINATION lib
            ARCHIVE DESTINATION lib)
    install(DIRECTORY ${room}/include/ DESTINATION include COMPONENT ${room})

    set(folder lib/cmake/${library})
    set(targets_file ${library}Config.cmake)
    set(config_file "${PROJECT_SOURCE_DIR}/${room}/${library}Config.cmake")
    if(EXISTS "${config_file}")
        install(FILES "${config_file}" DESTINATION ${folder} COMPONENT ${room})
        set(targets_file ${library}Targets.cmake)
    endif()
    install(EXPORT ${library} NAMESPACE ${library}:: FILE ${targets_file} DESTINATION ${folder} COMPONENT ${room})
    set(version_file "${PROJECT_BINARY_DIR}/${library}ConfigVersion.cmake")
    write_basic_package_version_file("${version_file}" COMPATIBILITY SameMajorVersion)
    install(FILES "${version_file}" DESTINATION ${folder} COMPONENT ${room})
endfunction()

install_library(sdk xrv60)
install(FILES docs/third-party.md DESTINATION share/doc/XRVJP2kLayer COMPONENT sdk) # with a notice to be passed on
install_library(host QDGui)
install_room(plugin lib/qdviewer/plugins ../.. XRVJP2kLayer)
install_room(viewer bin ../lib qdviewer)
install_room(tools bin ../lib xrvcompress xrvinfo)

# Linux desktops find the viewer by these.
if(UNIX AND NOT APPLE)
    install(FILES viewer/desktop/qdviewer.desktop DESTINATION share/applications COMPONENT viewer)
    install(FILES viewer/desktop/qdviewer.xml DESTINATION share/mime/packages COMPONENT viewer)
    install(FILES viewer/desktop/qdviewer.thumbnailer DESTINATION share/thumbnailers COMPONENT viewer)
    install(FILES viewer/desktop/qdviewer.bash DESTINATION share/bash-completion/completions RENAME qdviewer
            COMPONENT viewer)
    install(FILES resources/svg/logo.svg DESTINATION share/icons/hicolor/scalable/apps RENAME qdviewer.svg
            COMPONENT viewer)
    add_custom_target(uninstall COMMAND ${CMAKE_COMMAND} -P "${PROJECT_SOURCE_DIR}/cmake/Uninstall.cmake"
                      WORKING_DIRECTORY "${PROJECT_BINARY_DIR}" VERBATIM)
endif()
