# Removes what the last "cmake --install" from this build put in place. Run in the build's folder.

file(GLOB manifests install_manifest*.txt)
if(NOT manifests)
    message(FATAL_ERROR "Nothing was installed from here: there is no install_manifest.txt.")
endif()
foreach(manifest ${manifests})
    file(STRINGS "${manifest}" names ENCODING UTF-8)
    foreach(name ${names})
        file(REMOVE "$ENV{DESTDIR}${name}")
    endforeach()
endforeach()
