# The two platform libraries: those of this repository, or installations with the same interface.
# Afterwards the targets xrv60 and QDGui exist either way.

function(use_installed_library name root)
    add_library(${name} SHARED IMPORTED GLOBAL)
    # Not kept: with another root it is another one.
    find_library(${name}_LOCATION NAMES ${name} PATHS "${root}/lib" "${root}" NO_DEFAULT_PATH NO_CACHE REQUIRED)
    set_target_properties(${name} PROPERTIES IMPORTED_LOCATION "${${name}_LOCATION}" IMPORTED_IMPLIB "${${name}_LOCATION}")
    target_include_directories(${name} INTERFACE "${root}/include")
endfunction()

if(XRV_SDK_ROOT)
    use_installed_library(xrv60 "${XRV_SDK_ROOT}")
else()
    add_subdirectory(sdk)
endif()

if(QDGUI_ROOT)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Xml)
    use_installed_library(QDGui "${QDGUI_ROOT}")
    target_link_libraries(QDGui INTERFACE Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Xml)
else()
    add_subdirectory(host)
endif()
