# What an installation carries: three libraries, the tool, the public headers, a CMake package and a
# pkg-config file.
include(CMakePackageConfigHelpers)

install(TARGETS raylume_dl raylume_platform ovdlreader
        EXPORT raylume-dl-targets
        LIBRARY DESTINATION ${CMAKE_INSTALL_LIBDIR})
install(TARGETS raylume-dl RUNTIME DESTINATION ${CMAKE_INSTALL_BINDIR})
install(EXPORT raylume-dl-targets NAMESPACE raylume:: FILE raylume-dl-targets.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/raylume-dl)

configure_package_config_file(cmake/raylume-dl-config.cmake.in raylume-dl-config.cmake
                              INSTALL_DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/raylume-dl)
write_basic_package_version_file(raylume-dl-config-version.cmake COMPATIBILITY SameMinorVersion)
install(FILES ${PROJECT_BINARY_DIR}/raylume-dl-config.cmake
              ${PROJECT_BINARY_DIR}/raylume-dl-config-version.cmake
        DESTINATION ${CMAKE_INSTALL_LIBDIR}/cmake/raylume-dl)

# Relative to the file itself, so that it holds for whatever prefix the installation goes to.
file(RELATIVE_PATH RAYLUME_PREFIX_FROM_PKGCONFIG "/${CMAKE_INSTALL_LIBDIR}/pkgconfig" "/")
configure_file(cmake/raylume-dl.pc.in raylume-dl.pc @ONLY)
install(FILES ${PROJECT_BINARY_DIR}/raylume-dl.pc DESTINATION ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})
