# velm_header_only(<target> <header>): an imported target for a header-only library installed on the system.
#
# A cross compiler must not search /usr/include, which would hide its own C library. So the one file or folder needed is
# symlinked into the build tree, and only that is searched.
function(velm_header_only target header)
    get_filename_component(top ${header} DIRECTORY)
    if(NOT top)
        set(top ${header})
    endif()
    find_path(${target}_INCLUDE_DIR ${header} REQUIRED NO_CMAKE_FIND_ROOT_PATH PATHS /usr/include
        PATH_SUFFIXES ${target})
    set(folder ${PROJECT_BINARY_DIR}/header-only/${target})
    file(MAKE_DIRECTORY ${folder})
    file(CREATE_LINK ${${target}_INCLUDE_DIR}/${top} ${folder}/${top} SYMBOLIC COPY_ON_ERROR)
    add_library(${target} INTERFACE IMPORTED GLOBAL)
    target_include_directories(${target} SYSTEM INTERFACE ${folder})
endfunction()
