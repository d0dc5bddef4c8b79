# Precompiled headers: reading the headers of Qt and of the standard library is most of the time of most compilations.
# Every source includes all it needs nevertheless: the Clang preset builds those of the product without.
# XRV_PRECOMPILE: ON, TESTS (of the tests alone) or OFF. With a compiler launcher of your own it is OFF unless you say so,
# because ccache misses such sources without the settings that ProjectOptions gives it.

set(precompiled_default OFF)
if(CMAKE_CXX_COMPILER_ID MATCHES "GNU|Clang" AND NOT XRV_OWN_LAUNCHER)
    set(precompiled_default ON)
endif()
set(XRV_PRECOMPILE ${precompiled_default} CACHE STRING "Precompiled headers: ON, TESTS or OFF")

set(precompiled_std_headers <algorithm> <array> <atomic> <chrono> <cmath> <condition_variable> <cstdint> <cstring>
    <deque> <functional> <limits> <list> <map> <memory> <mutex> <optional> <set> <string> <thread> <unordered_map>
    <utility> <vector>)
# What many sources include: with all of Qt Widgets the file is twice as large, and takes longer to load than it saves.
set(precompiled_gui_headers <QAction> <QApplication> <QColor> <QComboBox> <QDateTime> <QDialog> <QDir> <QFile> <QFileInfo>
    <QHash> <QIcon> <QImage> <QLabel> <QMainWindow> <QMenu> <QMessageBox> <QPainter> <QPointer> <QSettings> <QStringList>
    <QTimer> <QUrl> <QVector> <QWidget>)

# xrv_add_precompiled(NAME HEADER...): a target that others take the precompiled headers of. It links what they need, and
# has to be compiled with the same options.
function(xrv_add_precompiled name)
    set(nothing "${CMAKE_CURRENT_BINARY_DIR}/${name}.cpp")
    file(CONFIGURE OUTPUT "${nothing}" CONTENT "")
    add_library(${name} OBJECT "${nothing}")
    target_link_libraries(${name} PRIVATE project_options)
    target_precompile_headers(${name} PRIVATE ${ARGN})
endfunction()

# xrv_reuse_precompiled(NAME TARGET...): for those of the targets that are built here. Sources with options of their own
# are left out.
function(xrv_reuse_precompiled name)
    xrv_built_here(targets ${ARGN})
    foreach(target ${targets})
        target_precompile_headers(${target} REUSE_FROM ${name})
        if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
            target_compile_options(${target} PRIVATE -fpch-preprocess) # for ccache
        endif()
        get_target_property(sources ${target} SOURCES)
        get_target_property(folder ${target} SOURCE_DIR)
        foreach(source ${sources})
            if(source MATCHES "[$]<")
                continue()
            endif()
            get_filename_component(source "${source}" ABSOLUTE BASE_DIR "${folder}")
            get_source_file_property(options "${source}" TARGET_DIRECTORY ${target} COMPILE_OPTIONS)
            if(options)
                set_source_files_properties("${source}" TARGET_DIRECTORY ${target} PROPERTIES
                                            SKIP_PRECOMPILE_HEADERS ON)
            endif()
        endforeach()
    endforeach()
endfunction()

# What is built for the product; called when all targets are known.
function(xrv_precompile_product)
    if(NOT XRV_PRECOMPILE STREQUAL "ON")
        return()
    endif()
    find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets)
    xrv_add_precompiled(precompiled_std ${precompiled_std_headers})
    xrv_add_precompiled(precompiled_gui ${precompiled_std_headers} ${precompiled_gui_headers})
    target_link_libraries(precompiled_gui PRIVATE Qt5::Core Qt5::Gui Qt5::Widgets)
    xrv_reuse_precompiled(precompiled_std xrv60_objects xrv60_writer)
    xrv_reuse_precompiled(precompiled_gui QDGui qdviewer_parts xrvjp2klayer_layer xrvjp2klayer_pages
                          xrvjp2klayer_panels xrvjp2klayer_plugin)
endfunction()
