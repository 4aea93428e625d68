# What `cmake --install` gives beside ldptool: headers, both libraries, and two ways for others to find them: the CMake package
# Ldp (targets Ldp::shared and Ldp::static) and Ldp.pc. All of it can be moved to another prefix.

include( CMakePackageConfigHelpers )

install( DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} FILES_MATCHING PATTERN *.h )
install( TARGETS Ldp_shared Ldp_static EXPORT LdpTargets )

# The package has no dependencies, so the list of targets is the whole of it.
set( package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Ldp )
install( EXPORT LdpTargets FILE LdpConfig.cmake NAMESPACE Ldp:: DESTINATION ${package_dir} )
write_basic_package_version_file( LdpConfigVersion.cmake COMPATIBILITY SameMinorVersion )
install( FILES ${PROJECT_BINARY_DIR}/LdpConfigVersion.cmake DESTINATION ${package_dir} )

set( pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig )
cmake_path( RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} OUTPUT_VARIABLE prefix_from_pc )
configure_file( ${PROJECT_SOURCE_DIR}/cmake/Ldp.pc.in ${PROJECT_BINARY_DIR}/Ldp.pc @ONLY )
install( FILES ${PROJECT_BINARY_DIR}/Ldp.pc DESTINATION ${pkgconfig_dir} )
