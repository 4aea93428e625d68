# libLdp.so.0 and its static twin, made from the same objects. Neither links anything but the C++ runtime.

file( GLOB LDP_SOURCES CONFIGURE_DEPENDS
   ${PROJECT_SOURCE_DIR}/framework/*/*.cpp ${PROJECT_SOURCE_DIR}/decode/*.cpp ${PROJECT_SOURCE_DIR}/model/*.cpp )

add_library( LdpObjects OBJECT ${LDP_SOURCES} )
set_target_properties( LdpObjects PROPERTIES POSITION_INDEPENDENT_CODE ON )
target_include_directories( LdpObjects PRIVATE ${PROJECT_SOURCE_DIR}/include )
target_link_libraries( LdpObjects PRIVATE LdpCompile )
ldp_precompile( LdpObjects <Ldp/LdpMsgParser.h> <Ldp/LdpStatus.h> )
# Nobody replaces our functions one by one, so calls within the library may be inlined. A weak hook stays one.
target_compile_options( LdpObjects PRIVATE -fno-semantic-interposition )

set( objects $<FILTER:$<TARGET_OBJECTS:LdpObjects>,INCLUDE,\\.o$> ) # and no precompiled header

# A linker takes an archive's objects by the names that a program uses. The types that it does not name are in the process-wide table
# all the same, since whoever looks into that needs this, which names them all.
set( all_types ${PROJECT_BINARY_DIR}/LdpAllTypes.cpp )
add_custom_command( OUTPUT ${all_types}
   COMMAND ${PROJECT_SOURCE_DIR}/cmake/all_types.sh ${all_types} ${CMAKE_NM} ${objects}
   DEPENDS ${PROJECT_SOURCE_DIR}/cmake/all_types.sh LdpObjects ${objects} COMMAND_EXPAND_LISTS VERBATIM )
add_library( LdpAllTypes OBJECT ${all_types} )
set_target_properties( LdpAllTypes PROPERTIES POSITION_INDEPENDENT_CODE ON )
target_compile_options( LdpAllTypes PRIVATE -g0 ) # nothing of where it was built

foreach( kind SHARED STATIC )
   string( TOLOWER ${kind} target )
   add_library( Ldp_${target} ${kind} ${objects} $<TARGET_OBJECTS:LdpAllTypes> )
   add_library( Ldp::${target} ALIAS Ldp_${target} )
   target_include_directories( Ldp_${target} PUBLIC
      $<BUILD_INTERFACE:${PROJECT_SOURCE_DIR}/include> $<INSTALL_INTERFACE:${CMAKE_INSTALL_INCLUDEDIR}/libLdp> )
   target_compile_features( Ldp_${target} PUBLIC cxx_std_20 )
   set_target_properties( Ldp_${target} PROPERTIES
      LINKER_LANGUAGE CXX OUTPUT_NAME Ldp EXPORT_NAME ${target} SOVERSION 0 VERSION ${PROJECT_VERSION} )
endforeach()

# What a program links that has no wish of its own.
if( BUILD_SHARED_LIBS )
   add_library( Ldp::Ldp ALIAS Ldp_shared )
else()
   add_library( Ldp::Ldp ALIAS Ldp_static )
endif()

# What the library needs must come from what it links. (The runtime of a sanitizer or fuzzer comes with the program instead.)
if( NOT ( LDP_SANITIZE OR LDP_THREAD OR LDP_MEMORY OR LDP_FUZZ ) )
   target_link_options( Ldp_shared PRIVATE LINKER:--no-undefined )
endif()
