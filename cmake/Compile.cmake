# How our own code is compiled: with which warnings, with sanitizers where asked for, with ccache where present. Warnings are
# errors in our own builds alone: the presets say so.

find_program( CCACHE ccache )
mark_as_advanced( CCACHE )
if( PROJECT_IS_TOP_LEVEL AND CCACHE AND NOT CMAKE_CXX_COMPILER_LAUNCHER )
   set( CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE} )
endif()

# Every target of ours links this privately; it is never handed on to those who use the library. What a binary says of its
# sources (an assertion, debug information) does not depend on where it was built.
add_library( LdpCompile INTERFACE )
target_compile_options( LdpCompile INTERFACE
   -Wall -Wextra -Wpedantic -Wconversion -ffile-prefix-map=${PROJECT_SOURCE_DIR}/= )

if( LDP_SANITIZE )
   add_compile_options( -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer )
   add_link_options( -fsanitize=address,undefined )
   if( CMAKE_CXX_COMPILER_ID MATCHES Clang )
      add_compile_options( -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/sanitizer_ignore.txt )
   endif()
endif()
if( LDP_THREAD )
   add_compile_options( -fsanitize=thread )
   add_link_options( -fsanitize=thread )
endif()
if( LDP_MEMORY )
   # All that runs must be compiled this way, the standard library too: of libc++ nearly all is in its headers.
   add_compile_options( -fsanitize=memory -fsanitize-memory-track-origins -fno-omit-frame-pointer
      -fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/cmake/memory_ignore.txt -stdlib=libc++ -D_LIBCPP_DISABLE_EXTERN_TEMPLATE )
   add_link_options( -fsanitize=memory -stdlib=libc++ )
endif()
# Coverage feedback in the library itself; only the targets take the fuzzer's main. Where executions count and no sanitizer
# watches, the decoders alone give it, and by block alone: it takes half of the time otherwise.
if( LDP_FUZZ AND LDP_SANITIZE )
   add_compile_options( -fsanitize=fuzzer-no-link )
elseif( LDP_FUZZ AND NOT LDP_MEMORY )
   file( GLOB decoders CONFIGURE_DEPENDS ${PROJECT_SOURCE_DIR}/decode/*.cpp )
   set_source_files_properties( ${decoders} PROPERTIES COMPILE_OPTIONS -fsanitize-coverage=inline-8bit-counters,pc-table )
endif()

# ldp_precompile( TARGET headers... ): the target's sources find these headers compiled, which halves their time. For clang: g++
# forgets the headers' own pragmas about warnings that way. Not in each build of ours, so that no source leans on it.
function( ldp_precompile target )
   if( LDP_PRECOMPILE )
      target_precompile_headers( ${target} PRIVATE ${ARGN} )
   endif()
endfunction()
