# velm_header_only(<target> <header> [<folder>]): an imported target for a header-only library installed on the system.
#
# A cross compiler must not search /usr/include, which would hide its own C library. So the header, or the top
# folder of its path, is copied into the build tree, and only the copy is searched. With <folder>, sources include
# <folder>/<header>, whether the system has it there (Debian) or without the folder (vcpkg).
function(velm_header_only target header)
    find_path(${target}_HEADER_DIR ${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include
        PATH_SUFFIXES ${target} ${ARGN})
    set_property(DIRECTORY APPEND PROPERTY CMAKE_CONFIGURE_DEPENDS ${${target}_HEADER_DIR}/${header})
    string(REGEX MATCH "^[^/]+" top ${header})
    set(folder ${PROJECT_BINARY_DIR}/header-only/${target})
    file(COPY ${${target}_HEADER_DIR}/${top} DESTINATION ${folder}/${ARGN})
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE ${folder})
endfunction()
