// Counts how often anybody in the process asks malloc, and measures the heap. It replaces malloc, so it is
// included by one source of a program.
#pragma once

#include "Vorn/Api.h"

#include <cstdlib>
#include <malloc.h>

static U64 mallocCalls = 0;
extern "C" void * __libc_malloc( std::size_t size );
extern "C" void * malloc( std::size_t size ) {
   ++mallocCalls;
   return __libc_malloc( size );
}

// Bytes of the heap that are given out, malloc's own headers included.
[[maybe_unused]] static double heapBytes() {
   auto const info = mallinfo2();
   return double( info.uordblks + info.hblkhd );
}
