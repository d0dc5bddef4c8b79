# The two platform libraries: those of this repository, or installations with the same interface.
# Afterwards the targets xrv60 and QDGui exist either way.

# use_installed_library(NAME ROOT): by the package file that the installation has, else by its folders.
function(use_installed_library name root)
    # Not kept: with another root it is another one.
    unset(${name}_DIR CACHE)
    find_package(${name} CONFIG QUIET GLOBAL PATHS "${root}" NO_DEFAULT_PATH)
    if(${name}_FOUND)
        add_library(${name} ALIAS ${name}::${name})
    else()
        use_plain_library(${name} "${root}")
    endif()
endfunction()

# use_plain_library(NAME ROOT): headers in include, the library in lib, on Windows the import library there and the
# library itself in bin.
function(use_plain_library name root)
    find_library(library NAMES ${name} PATHS "${root}/lib" "${root}" NO_DEFAULT_PATH NO_CACHE REQUIRED)
    add_library(${name} SHARED IMPORTED GLOBAL)
    if(WIN32)
        find_file(loaded NAMES ${name}.dll PATHS "${root}/bin" "${root}/lib" "${root}" NO_DEFAULT_PATH NO_CACHE REQUIRED)
        set_target_properties(${name} PROPERTIES IMPORTED_IMPLIB "${library}" IMPORTED_LOCATION "${loaded}")
    else()
        set_target_properties(${name} PROPERTIES IMPORTED_LOCATION "${library}")
    endif()
    target_include_directories(${name} INTERFACE "${root}/include")
    if(name STREQUAL QDGui)
        target_link_libraries(QDGui INTERFACE Qt5::Core Qt5::Gui Qt5::Widgets Qt5::Xml)
    endif()
endfunction()

if(XRV_SDK_ROOT)
    use_installed_library(xrv60 "${XRV_SDK_ROOT}")
else()
    add_subdirectory(sdk)
endif()

if(QDGUI_ROOT)
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Xml)
    use_installed_library(QDGui "${QDGUI_ROOT}")
else()
    add_subdirectory(host)
endif()
