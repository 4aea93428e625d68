// Counts how often anybody in the process asks malloc. It replaces malloc, so it is included by one source of
// a program.
#pragma once

#include "Vorn/Api.h"

#include <cstdlib>

static U64 mallocCalls = 0;
extern "C" void * __libc_malloc( std::size_t size );
extern "C" void * malloc( std::size_t size ) {
   ++mallocCalls;
   return __libc_malloc( size );
}
