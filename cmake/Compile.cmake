# How our own code is compiled: warnings are errors, sanitizers where asked for, ccache where present.

find_program( CCACHE ccache )
mark_as_advanced( CCACHE )
if( CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER )
   set( CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE} )
endif()

# Every target of ours links this privately; it is never handed on to those who use the library.
add_library( LdpCompile INTERFACE )
target_compile_options( LdpCompile INTERFACE -Wall -Wextra -Wpedantic -Wconversion -Werror )

if( LDP_SANITIZE )
   add_compile_options( -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer )
   add_link_options( -fsanitize=address,undefined )
endif()
if( LDP_THREAD )
   add_compile_options( -fsanitize=thread )
   add_link_options( -fsanitize=thread )
endif()
if( LDP_FUZZ )
   # Coverage feedback in the library itself; only the targets take the fuzzer's main.
   add_compile_options( -fsanitize=fuzzer-no-link )
endif()
