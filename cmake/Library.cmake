# libLdp.so.0 and its static twin, made from the same objects. Neither links anything but the C++ runtime.

file( GLOB LDP_SOURCES CONFIGURE_DEPENDS framework/*/*.cpp decode/*.cpp model/*.cpp )

add_library( LdpObjects OBJECT ${LDP_SOURCES} )
set_target_properties( LdpObjects PROPERTIES POSITION_INDEPENDENT_CODE ON )
target_include_directories( LdpObjects PUBLIC $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> )
target_link_libraries( LdpObjects PRIVATE LdpCompile )

foreach( kind SHARED STATIC )
   string( TOLOWER ${kind} target )
   add_library( Ldp_${target} ${kind} $<TARGET_OBJECTS:LdpObjects> )
   add_library( Ldp::${target} ALIAS Ldp_${target} )
   target_include_directories( Ldp_${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}> )
   target_compile_features( Ldp_${target} PUBLIC cxx_std_20 )
   set_target_properties( Ldp_${target} PROPERTIES
      OUTPUT_NAME Ldp EXPORT_NAME ${target} SOVERSION 0 VERSION ${PROJECT_VERSION} )
endforeach()
