/// \file
/// Memory of objects and buckets: a size-class free list over malloc, and the counters of live objects per
/// type.
///
/// A block that is freed goes to the list of its class and serves the next allocation of that class, which is
/// what a decoder that builds and drops a few small objects per message wants; the large classes are for the
/// maps of a message with many TLVs or a PDU with many messages. Every block comes from malloc
/// by itself, so a block may go back to malloc at any time: the lists are bypassed while
/// `VFPtrInterface::threadSafePointers_` is set, because nothing locks them, and under the sanitizers, which
/// want to see every block.
#pragma once

#include "Vorn/Api.h"

#include <bit>
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
   /// Whether several threads call into this library. The program sets it before a second one does, on
   /// objects of its own too: reference counts, the counters of live objects and `Ldp::callDepth` then change
   /// atomically, and blocks come from malloc instead of the free lists, which nothing locks. Nothing here
   /// sets it.
   ///
   /// Threads may then share, without a lock: references (`Ptr`), strings, packets, and parsers and FEC
   /// elements that are finished, as long as all only read. Whatever is written or observed, and all that
   /// hangs below an entity, belongs to one thread at a time; so does a `LdpPduStream` and either end of an
   /// attribute log.
   static bool threadSafePointers_;
};

/// One class of the free list: blocks of one size, linked through their first word.
struct MemClass {
   void * free; ///< first free block, or null
   U32 freeNum; ///< blocks in the list
   U32 unused_;
};

inline constexpr std::size_t memClassBytes = 16;   ///< step between sizes of small blocks
inline constexpr std::size_t memSmallNum = 33;     ///< classes of small blocks: 0, 16, ... 512 bytes
inline constexpr std::size_t memClassNum = 38;     ///< all classes: behind those 1024, 2048, ... 16384 bytes
inline constexpr U32 memClassKeep = 1024;          ///< most free blocks that a class of small ones holds back
inline constexpr std::size_t memLargeKeep = 65536; ///< most bytes that a class of large ones holds back
VORN_API extern MemClass memClasses_[memClassNum];

/// The class of a block, `memClassNum` or more for one that has none.
constexpr std::size_t memClassOf( std::size_t size ) noexcept {
   std::size_t const small = ( size + memClassBytes - 1 ) / memClassBytes;
   return small < memSmallNum ? small : memSmallNum + std::size_t( std::bit_width( ( size - 1 ) >> 10 ) );
}
/// How large the blocks of a class are, in bytes.
constexpr std::size_t memBytesOf( std::size_t memClass ) noexcept {
   return memClass < memSmallNum ? memClass * memClassBytes
                                 : std::size_t( 1024 ) << ( memClass - memSmallNum );
}
static_assert( memClassOf( 512 ) == 32 && memClassOf( 513 ) == 33 && memClassOf( 1024 ) == 33 );
static_assert( memClassOf( 1025 ) == 34 && memClassOf( memBytesOf( 37 ) ) == 37 &&
               memClassOf( 16385 ) == 38 );
/// Most free blocks that a class holds back from malloc.
constexpr U32 memKeepOf( std::size_t memClass ) noexcept {
   return memClass < memSmallNum ? memClassKeep : U32( memLargeKeep / memBytesOf( memClass ) );
}

/// Memory for `size` bytes, aligned for any type. Throws std::bad_alloc when there is none. Freed by
/// `vornMemFree` with the same size.
inline void * vornMemAlloc( std::size_t size ) {
   std::size_t const index = memClassOf( size );
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
   if ( index < memClassNum ) size = memBytesOf( index );
   block = std::malloc( size ? size : 1 );
   if ( !block ) throw std::bad_alloc();
   return block;
}

/// Gives back a block of `size` bytes that `vornMemAlloc` gave out. Null is allowed.
inline void vornMemFree( void * block, std::size_t size ) noexcept {
#ifndef VORN_PLAIN_MALLOC
   std::size_t const index = memClassOf( size );
   if ( index < memClassNum && index && block && !VFPtrInterface::threadSafePointers_ ) [[likely]] {
      MemClass & memClass = memClasses_[index];
      if ( memClass.freeNum < memKeepOf( index ) ) [[likely]] {
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
   /// A counter for that type, or for memory that belongs to none.
   constexpr explicit AllocTrackTypeInfo( VornType const * type ) noexcept : type_( type ) {}

   /// The type whose objects are counted; null for memory that belongs to no type.
   VornType const * type() const noexcept { return type_; }
   /// Objects alive now.
   U64 objects() const noexcept { return objects_; }
   /// Bytes of the objects alive now.
   U64 bytes() const noexcept { return bytes_; }

   /// Counts an object of `size` bytes, or `count` of them, that was made or destroyed.
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
