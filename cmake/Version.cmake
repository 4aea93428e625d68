# ldp_version( VARIABLE ): the version as include/Ldp/Version.h has it, the one place where it is written.
function( ldp_version variable )
   file( STRINGS ${CMAKE_CURRENT_SOURCE_DIR}/include/Ldp/Version.h lines REGEX "^#define LDP_VERSION_[A-Z]+ [0-9]+$" )
   list( TRANSFORM lines REPLACE ".* " "" )
   list( JOIN lines . version )
   set( ${variable} ${version} PARENT_SCOPE )
endfunction()
