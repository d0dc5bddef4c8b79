# Found by find_package(QDGui): the target QDGui::QDGui and the modules of Qt that its headers include. Network is what
# the library itself needs: linkers want to find it.
include(CMakeFindDependencyMacro)
find_dependency(Qt5 5.15 COMPONENTS Core Gui Network Widgets Xml)
include("${CMAKE_CURRENT_LIST_DIR}/QDGuiTargets.cmake")
