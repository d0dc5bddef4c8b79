find_package(Qt5 5.15 REQUIRED COMPONENTS Core LinguistTools)

# xrv_add_translations(TARGET NAME): an object library with translations/NAME_<language>.ts in their compiled form, under
# ":/translations", where the host looks first. The program, library or module that links it has them registered.
function(xrv_add_translations target name)
    file(GLOB sources CONFIGURE_DEPENDS "${CMAKE_CURRENT_SOURCE_DIR}/translations/${name}_*.ts")
    qt5_add_translation(compiled ${sources})
    set(entries "")
    foreach(file ${compiled})
        get_filename_component(alias "${file}" NAME)
        string(APPEND entries "        <file alias=\"${alias}\">${file}</file>\n")
    endforeach()
    set(collection "${CMAKE_CURRENT_BINARY_DIR}/${name}_translations.qrc")
    file(CONFIGURE OUTPUT "${collection}" @ONLY CONTENT
"<!DOCTYPE RCC>
<RCC version=\"1.0\">
    <qresource prefix=\"/translations\">
@entries@    </qresource>
</RCC>
")
    qt5_add_resources(code "${collection}")
    add_library(${target} OBJECT ${code})
    target_link_libraries(${target} PRIVATE Qt5::Core)
    set_target_properties(${target} PROPERTIES POSITION_INDEPENDENT_CODE ON)
endfunction()
