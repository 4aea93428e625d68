# The package has no dependencies, so the targets are the whole of it. Ldp::Ldp is the shared library or the static one, as
# the project that asks builds its own.
include( ${CMAKE_CURRENT_LIST_DIR}/LdpTargets.cmake )
if( NOT TARGET Ldp::Ldp )
   add_library( Ldp::Ldp INTERFACE IMPORTED )
   if( BUILD_SHARED_LIBS )
      target_link_libraries( Ldp::Ldp INTERFACE Ldp::shared )
   else()
      target_link_libraries( Ldp::Ldp INTERFACE Ldp::static )
   endif()
endif()
