/// \file
/// Memory of objects and buckets: a size-class free list over malloc, and the counters of live objects per
/// type.
///
/// A block that is freed goes to the list of its class and serves the next allocation of that class, which is
/// what a decoder that builds and drops a few small objects per message wants. Every block comes from malloc
/// by itself, so a block may go back to malloc at any time: the lists are bypassed while
/// `VFPtrInterface::threadSafePointers_` is set, and under the address sanitizer, which wants to see every
/// block.
#pragma once

#include "Vorn/Api.h"

#include <cstdlib>
#include <new>

#if defined( __SANITIZE_ADDRESS__ )
#define VORN_PLAIN_MALLOC 1
#elif defined( __has_feature )
#if __has_feature( address_sanitizer ) || __has_feature( thread_sanitizer ) ||                               \
     __has_feature( memory_sanitizer )
#define VORN_PLAIN_MALLOC 1
#endif
#endif
#if defined( __SANITIZE_THREAD__ )
#define VORN_PLAIN_MALLOC 1
#endif

namespace Vorn {

struct VornType;

/// Home of the process-wide switch of reference counting.
struct VORN_API VFPtrInterface {
   /// Whether reference counts are changed by locked atomic operations. Set by the program before a second
   /// thread touches an object of this library; nothing here sets it.
   static bool threadSafePointers_;
};

/// One class of the free list: blocks of one size, linked through their first word.
struct MemClass {
   void * free; ///< first free block, or null
   U32 freeNum; ///< blocks in the list
   U32 unused_;
};

inline constexpr std::size_t memClassBytes = 16; ///< step between block sizes
inline constexpr std::size_t memClassNum = 33;   ///< blocks of 0, 16, ... 512 bytes
inline constexpr U32 memClassKeep = 1024;        ///< most free blocks that a class holds back from malloc
VORN_API extern MemClass memClasses_[memClassNum];

/// Memory for `size` bytes, aligned for any type. Throws std::bad_alloc when there is none. Freed by
/// `vornMemFree` with the same size.
inline void * vornMemAlloc( std::size_t size ) {
   std::size_t const index = ( size + memClassBytes - 1 ) / memClassBytes;
   void * block = nullptr;
#ifndef VORN_PLAIN_MALLOC
   if ( index < memClassNum && !VFPtrInterface::threadSafePointers_ ) [[likely]] {
      MemClass & memClass = memClasses_[index];
      if ( memClass.free ) [[likely]] {
         block = memClass.free;
         memClass.free = *static_cast< void ** >( block );
         --memClass.freeNum;
         return block;
      }
   }
#endif
   if ( index < memClassNum ) size = index * memClassBytes;
   block = std::malloc( size ? size : 1 );
   if ( !block ) throw std::bad_alloc();
   return block;
}

/// Gives back a block of `size` bytes that `vornMemAlloc` gave out. Null is allowed.
inline void vornMemFree( void * block, std::size_t size ) noexcept {
#ifndef VORN_PLAIN_MALLOC
   std::size_t const index = ( size + memClassBytes - 1 ) / memClassBytes;
   if ( index < memClassNum && index && block && !VFPtrInterface::threadSafePointers_ ) [[likely]] {
      MemClass & memClass = memClasses_[index];
      if ( memClass.freeNum < memClassKeep ) [[likely]] {
         *static_cast< void ** >( block ) = memClass.free;
         memClass.free = block;
         ++memClass.freeNum;
         return;
      }
   }
#endif
   static_cast< void >( size );
   std::free( block );
}

/// Counts the live objects of one type and their bytes. Every counted type has one,
/// `vornAllocTrackTypeInfo_`; a hash map feeds the same counter form for its buckets.
class VORN_API AllocTrackTypeInfo {
 public:
   constexpr explicit AllocTrackTypeInfo( VornType const * type ) noexcept : type_( type ) {}

   /// The type whose objects are counted; null for memory that belongs to no type.
   VornType const * type() const noexcept { return type_; }
   /// Objects alive now.
   U64 objects() const noexcept { return objects_; }
   /// Bytes of the objects alive now.
   U64 bytes() const noexcept { return bytes_; }

   void trackAllocation( std::size_t size ) noexcept { trackArrayAllocation( 1, size ); }
   void trackDeallocation( std::size_t size ) noexcept { trackArrayDeallocation( 1, size ); }
   void trackArrayAllocation( U64 count, std::size_t size ) noexcept { add( count, count * size ); }
   void trackArrayDeallocation( U64 count, std::size_t size ) noexcept { add( 0 - count, 0 - count * size ); }

 private:
   void add( U64 objects, U64 bytes ) noexcept {
      if ( VFPtrInterface::threadSafePointers_ ) [[unlikely]] {
         __atomic_fetch_add( &objects_, objects, __ATOMIC_RELAXED );
         __atomic_fetch_add( &bytes_, bytes, __ATOMIC_RELAXED );
         return;
      }
      objects_ += objects;
      bytes_ += bytes;
   }

   VornType const * type_;
   U64 objects_ = 0;
   U64 bytes_ = 0;
};

} // namespace Vorn
