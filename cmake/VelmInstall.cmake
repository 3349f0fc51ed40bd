# What `cmake --install` installs, including the package for find_package(VelmUtil CONFIG). Debug and release builds can
# share a prefix: the names of Debug libraries end in "d".
include(GNUInstallDirs)
include(CMakePackageConfigHelpers)

set(package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/VelmUtil)
install(TARGETS VelmCore VelmUtil EXPORT VelmUtilTargets)
set_target_properties(VelmCore VelmUtil PROPERTIES INSTALL_RPATH $ORIGIN)
if(TARGET velm_posix)
    install(TARGETS velm_posix)
    # The Windows interfaces, which the public headers include under their Windows names.
    install(DIRECTORY platform/posix/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VelmUtil/posix)
    target_include_directories(VelmUtil INTERFACE
        $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/VelmUtil/posix>)
endif()

if(MSVC)
    install(FILES $<TARGET_PDB_FILE:VelmCore> $<TARGET_PDB_FILE:VelmUtil> DESTINATION ${CMAKE_INSTALL_BINDIR}
        OPTIONAL) # absent from a build without debug information
endif()

# picojson is installed too, because the library and its callers must be built with the same version.
file(REAL_PATH ${picojson_HEADER_DIR}/picojson.h picojson_header)
install(FILES ${picojson_header} DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/VelmUtil/third-party)
target_include_directories(VelmUtil INTERFACE
    $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/VelmUtil/third-party>)

install(DIRECTORY include/velm core/include/velm DESTINATION ${CMAKE_INSTALL_INCLUDEDIR})
install(EXPORT VelmUtilTargets NAMESPACE VelmUtil:: DESTINATION ${package_dir})
configure_package_config_file(cmake/VelmUtilConfig.cmake.in VelmUtilConfig.cmake INSTALL_DESTINATION ${package_dir})
write_basic_package_version_file(VelmUtilConfigVersion.cmake COMPATIBILITY SameMajorVersion)
install(FILES ${PROJECT_BINARY_DIR}/VelmUtilConfig.cmake ${PROJECT_BINARY_DIR}/VelmUtilConfigVersion.cmake
    DESTINATION ${package_dir})

# The guides and the files they link to, in the folders that their relative links expect.
install(FILES README.md SECURITY.md CHANGELOG.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
install(DIRECTORY docs/ DESTINATION ${CMAKE_INSTALL_DOCDIR}/docs
    PATTERN Doxyfile EXCLUDE PATTERN site.css EXCLUDE)
install(DIRECTORY examples DESTINATION ${CMAKE_INSTALL_DOCDIR} PATTERN CMakeLists.txt EXCLUDE)

if(TARGET velmdiag)
    install(TARGETS velmdiag CONFIGURATIONS Release RelWithDebInfo MinSizeRel)
    if(TARGET velmdiag_pages)
        set(pages ${PROJECT_BINARY_DIR}/tools/velmdiag)
        install(FILES ${pages}/velmdiag.1 DESTINATION ${CMAKE_INSTALL_MANDIR}/man1)
        install(FILES ${pages}/velmdiag.bash DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions
            RENAME velmdiag)
    endif()
    set_target_properties(velmdiag PROPERTIES INSTALL_RPATH $ORIGIN/../${CMAKE_INSTALL_LIBDIR})
endif()
