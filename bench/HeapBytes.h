// How much of the heap the process holds.
#pragma once

#include <malloc.h>

/// Bytes, malloc's own headers included.
inline double heapBytes() {
   struct mallinfo2 const info = mallinfo2();
   return double( info.uordblks + info.hblkhd );
}
