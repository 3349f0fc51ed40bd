# Build settings common to all targets.

add_library(velm_build_flags INTERFACE)
target_compile_features(velm_build_flags INTERFACE cxx_std_20)

# The prefix that clang-cl requires for clang's own options.
set(VELM_CLANG_CL "")
if(MSVC AND CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    set(VELM_CLANG_CL /clang:)
endif()

if(MSVC)
    target_compile_options(velm_build_flags INTERFACE /W4 /permissive- /utf-8 /EHsc)
    # C4251: exported classes have standard containers as private members; both sides share one runtime.
    target_compile_options(velm_build_flags INTERFACE /wd4251)
    # C4996, for std::fopen and _vsnprintf: only Microsoft's runtime has the "secure" variants.
    target_compile_definitions(velm_build_flags INTERFACE _CRT_SECURE_NO_WARNINGS)
    if(VELM_WARNINGS_AS_ERRORS)
        target_compile_options(velm_build_flags INTERFACE /WX)
    endif()
else()
    target_compile_options(velm_build_flags INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Wshadow)
    if(VELM_WARNINGS_AS_ERRORS)
        target_compile_options(velm_build_flags INTERFACE -Werror)
    endif()
endif()

if(UNIX AND CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # A library with "unique" symbols, from templates or inline variables, cannot be unloaded.
    target_compile_options(velm_build_flags INTERFACE -fno-gnu-unique)
    # As on Windows, a library's calls to its own functions cannot be interposed, so they can be inlined.
    target_compile_options(velm_build_flags INTERFACE -fno-semantic-interposition)
endif()

if(MINGW)
    # Link the runtime statically, so that the libraries import only each other and Windows.
    target_link_options(velm_build_flags INTERFACE -static -Wl,--dynamicbase,--nxcompat,--high-entropy-va)
    # For the tests' fake devices, whose interfaces are declared "nothrow".
    target_compile_options(velm_build_flags INTERFACE $<$<CXX_COMPILER_ID:Clang>:-Wno-microsoft-exception-spec>)
endif()

if(VELM_SANITIZE)
    add_compile_options(-fsanitize=${VELM_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=undefined -O1
        -g1) # line numbers for the reports; more would only cost time
    add_link_options(-fsanitize=${VELM_SANITIZE})
endif()

# velm_quick_to_compile(<target>): little optimisation, and one unit in a unity build, for programs that are
# compiled more often than run, such as tests. For clang with sanitizers, no optimisation at all halves the time.
# Fuzzing does not need their coverage.
function(velm_quick_to_compile target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD_BATCH_SIZE 0 LINK_DEPENDS_NO_SHARED ON)
    if(VELM_SANITIZE MATCHES fuzzer-no-link)
        target_compile_options(${target} PRIVATE -fno-sanitize=fuzzer-no-link)
    endif()
    if(NOT MSVC)
        target_compile_options(${target} PRIVATE $<IF:$<CXX_COMPILER_ID:Clang>,-O0,-O1> -g1)
    endif()
endfunction()

# velm_version_resource(<target> <description>): adds a version resource to a Windows library or program.
function(velm_version_resource target description)
    if(NOT WIN32)
        return()
    endif()
    get_target_property(type ${target} TYPE)
    if(type STREQUAL "EXECUTABLE")
        set(VELM_RC_FILE_TYPE VFT_APP)
        set(VELM_RC_FILE_NAME ${target}.exe)
        set(VELM_RC_DEBUG_FILE_NAME ${target}.exe)
    else()
        set(VELM_RC_FILE_TYPE VFT_DLL)
        set(VELM_RC_FILE_NAME ${target}.dll)
        set(VELM_RC_DEBUG_FILE_NAME ${target}${CMAKE_DEBUG_POSTFIX}.dll)
    endif()
    set(VELM_RC_NAME ${target})
    set(VELM_RC_DESCRIPTION ${description})
    configure_file(${PROJECT_SOURCE_DIR}/cmake/version.rc.in ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc @ONLY)
    target_sources(${target} PRIVATE ${CMAKE_CURRENT_BINARY_DIR}/${target}.rc)
    set_source_files_properties(${CMAKE_CURRENT_BINARY_DIR}/${target}.rc PROPERTIES
        COMPILE_DEFINITIONS $<$<CONFIG:Debug>:VELM_DEBUG>)
endfunction()

# velm_unloadable(<target>): makes a library free its C++ runtime's memory when it is unloaded.
function(velm_unloadable target)
    if(MINGW)
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/platform/mingw/EmergencyPool.cpp)
    endif()
endfunction()

# velm_silent(<target>): keeps a library from printing, and from linking the parts of the runtime that would.
function(velm_silent target)
    if(MINGW)
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/platform/mingw/Terminate.cpp)
        target_include_directories(${target} BEFORE PRIVATE ${PROJECT_SOURCE_DIR}/platform/mingw/include)
    endif()
endfunction()

# velm_without_thread_library(<target>): lets a library throw without allocating, and work without thread notifications.
function(velm_without_thread_library target)
    if(MINGW)
        target_sources(${target} PRIVATE ${PROJECT_SOURCE_DIR}/platform/mingw/ThrowState.cpp)
    endif()
endfunction()

# velm_library(<target> <description>): applies the settings common to the shared libraries.
function(velm_library target description)
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        VERSION ${PROJECT_VERSION}
        SOVERSION ${PROJECT_VERSION_MAJOR})
    if(WIN32)
        set_target_properties(${target} PROPERTIES PREFIX "")
    else()
        set(map ${PROJECT_SOURCE_DIR}/cmake/exports.map)
        target_link_options(${target} PRIVATE -Wl,--version-script=${map})
        set_target_properties(${target} PROPERTIES LINK_DEPENDS ${map})
    endif()
    target_link_libraries(${target} PRIVATE velm_build_flags velm_windows_on_demand velm_platform)
    velm_unloadable(${target})
    velm_silent(${target})
    velm_without_thread_library(${target})
    velm_version_resource(${target} "${description}")
endfunction()
