# cmake --install: the viewer with its plug-in and the tools, and both platform libraries with their headers. The folder
# installed to may be XRV_SDK_ROOT and QDGUI_ROOT of another build. Components: sdk, host, plugin, viewer, tools.

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

install_room(sdk lib . xrv60)
install_room(host lib . QDGui)
install_room(plugin lib/qdviewer/plugins ../.. XRVJP2kLayer)
install_room(viewer bin ../lib qdviewer)
install_room(tools bin ../lib xrvcompress xrvinfo)
if(NOT XRV_SDK_ROOT)
    install(DIRECTORY sdk/include/ DESTINATION include COMPONENT sdk)
endif()
if(NOT QDGUI_ROOT)
    install(DIRECTORY host/include/ DESTINATION include COMPONENT host)
endif()
