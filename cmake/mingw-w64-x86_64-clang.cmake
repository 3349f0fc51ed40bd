# The same cross build with clang and its linker lld, over the headers and the runtime of MinGW-w64's g++.
include(${CMAKE_CURRENT_LIST_DIR}/mingw-w64-x86_64.cmake)

# Debian's clang does not find the folder of g++, whose name ends in the thread model.
execute_process(COMMAND ${CMAKE_CXX_COMPILER} -print-libgcc-file-name OUTPUT_VARIABLE gcc COMMAND_ERROR_IS_FATAL ANY)
get_filename_component(gcc ${gcc} DIRECTORY)
set(headers ${gcc}/include/c++)

set(CMAKE_CXX_COMPILER clang++)
set(CMAKE_CXX_COMPILER_TARGET x86_64-w64-windows-gnu)
# That runtime's thread-local variables, such as those of std::call_once, are emulated.
set(CMAKE_CXX_FLAGS_INIT "--sysroot=/usr/x86_64-w64-mingw32 -femulated-tls")
string(APPEND CMAKE_CXX_FLAGS_INIT " -isystem ${headers} -isystem ${headers}/x86_64-w64-mingw32")
# std::type_info::operator== is inline in that runtime's header and also defined in its library, which lld rejects as a
# duplicate. The build with g++ still reports symbols that we define twice.
foreach(kind EXE SHARED MODULE)
    set(CMAKE_${kind}_LINKER_FLAGS_INIT "-fuse-ld=lld -Wl,--allow-multiple-definition -pthread -B${gcc} -L${gcc}")
endforeach()
