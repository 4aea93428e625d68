# What `cmake --install` gives beside ldptool: headers, both libraries, and two ways for others to find them: the CMake package
# Ldp (targets Ldp::shared, Ldp::static, and Ldp::Ldp, which is one of them) and Ldp.pc. All of it can be moved to another
# prefix. The headers lie in a folder of ours, which both ways name: folders called Interface or L3 are not for the system's.

include( CMakePackageConfigHelpers )

install( DIRECTORY ${PROJECT_SOURCE_DIR}/include/ DESTINATION ${CMAKE_INSTALL_INCLUDEDIR}/libLdp FILES_MATCHING PATTERN *.h )
install( TARGETS Ldp_shared Ldp_static EXPORT LdpTargets )

set( package_dir ${CMAKE_INSTALL_LIBDIR}/cmake/Ldp )
install( EXPORT LdpTargets NAMESPACE Ldp:: DESTINATION ${package_dir} )
install( FILES ${PROJECT_SOURCE_DIR}/cmake/LdpConfig.cmake DESTINATION ${package_dir} )
write_basic_package_version_file( LdpConfigVersion.cmake COMPATIBILITY SameMinorVersion )
install( FILES ${PROJECT_BINARY_DIR}/LdpConfigVersion.cmake DESTINATION ${package_dir} )

set( pkgconfig_dir ${CMAKE_INSTALL_LIBDIR}/pkgconfig )
cmake_path( RELATIVE_PATH CMAKE_INSTALL_PREFIX BASE_DIRECTORY ${CMAKE_INSTALL_PREFIX}/${pkgconfig_dir} OUTPUT_VARIABLE prefix_from_pc )
configure_file( ${PROJECT_SOURCE_DIR}/cmake/Ldp.pc.in ${PROJECT_BINARY_DIR}/Ldp.pc @ONLY )
install( FILES ${PROJECT_BINARY_DIR}/Ldp.pc DESTINATION ${pkgconfig_dir} )

# gdb loads what lies here under the library's own path.
install( FILES ${PROJECT_SOURCE_DIR}/tools/gdb/libLdp-gdb.py
   DESTINATION ${CMAKE_INSTALL_DATADIR}/gdb/auto-load/${CMAKE_INSTALL_FULL_LIBDIR} RENAME libLdp.so.${PROJECT_VERSION}-gdb.py )
