/// \file
/// The ring trace: compact binary records in a memory-mapped file that survives the process, whatever ends
/// it. Until `initialize` there is no file, and a record costs its caller one test.
///
/// Nothing here is called directly by traced code, which uses the statements of Twain/Trace.h.
///
/// A record takes no lock, allocates nothing, formats nothing and calls nothing. It is visible in the file
/// from the store that moves the block's `used` behind it, so a process that dies anywhere leaves whole
/// records.
#pragma once

#include "Skein/RingFormat.h"
#include "Vorn/String.h"

#include <cstring>
#if !defined( __x86_64__ )
#include <chrono>
#endif

namespace Skein {

/// Whether several threads may trace.
enum class MultiThreading : int {
   one = 0,      ///< only one thread traces; that is the caller's promise
   perThread = 1 ///< each thread writes into blocks of its own
};

/// Sizes of a ring. A null pointer in their place means these defaults.
struct SizeSpec {
   U32 ringKiB = 4096; ///< room for records; rounded down to whole blocks, at least two
};

/// Makes the ring file and begins to trace into it. A file that stands already stays: the call does nothing.
///
/// \param fileNameFormat path of the file. A `%d` in it is replaced by the instance; nothing else is special.
/// \param sizes sizes of the ring, or null for the defaults.
/// \param folder folder that the path is relative to; null: the working folder.
/// \param instance what `%d` stands for; 0: the process id.
/// \param sizeBits the file is never made larger than 2 to this power (16 to 32); the ring is cut to fit.
/// \param multiThreading whether several threads may trace.
/// \param keepPrevious whether a ring that is found under the same name is kept, as NAME.old; else it is
/// removed.
/// \param descriptionsKiB room for the descriptions of call sites.
/// \return 0 when the ring stands, else an `errno` number. A file that is found, under the name or as
/// NAME.old, and is no ring is never touched: EEXIST. A ring larger than the process may write
/// (RLIMIT_FSIZE): EFBIG.
VORN_API int initialize( char const * fileNameFormat, SizeSpec * sizes, char const * folder, int instance,
                         int sizeBits, MultiThreading multiThreading, bool keepPrevious,
                         unsigned int descriptionsKiB );

/// The clock of the records: the processor's cycle counter where there is one.
inline U64 clock() noexcept {
#if defined( __x86_64__ )
   return __builtin_ia32_rdtsc();
#else
   return U64( std::chrono::steady_clock::now().time_since_epoch().count() );
#endif
}

/// One thread's place in the ring. It has no block while the ring is off.
class VORN_API TraceFile {
 public:
   /// Whether there is a ring to write into.
   bool on() const noexcept { return block_ != nullptr; }

 private:
   friend class RingBuf;
   friend class BlockTimerMsg;
   friend class TraceHandle;
   friend struct Ring;
   /// Goes on in a fresh block.
   void nextBlock() noexcept;

   Block * block_ = nullptr;
   U32 openBlocks_ = 0; // BlockTimerMsgs that are open in this thread
   U32 writer_ = 0;
};

/// A record being written: `startMsg`, a `put` for each argument, `endMsg`.
class RingBuf {
 public:
   /// Begins a record of that message. The clock goes into it only if no block is open around it: reading it
   /// costs more than all the rest, and a record within a block is bounded by the times of its neighbours.
   void startMsg( TraceFile & file, int msgId ) noexcept {
      start( file, U16( msgId ), file.openBlocks_ == 0 );
   }

   /// Adds the octets of a number.
   template< class T >
   void put( T value ) noexcept {
      std::memcpy( at_, &value, sizeof value );
      at_ += sizeof value;
   }
   /// Adds as many octets as the reader knows to expect.
   void putRaw( void const * data, std::size_t size ) noexcept {
      std::memcpy( at_, data, size );
      at_ += size;
   }
   /// Adds a run of octets with its length, cut after `maxOctets`.
   void putOctets( void const * data, std::size_t size ) noexcept {
      bool const cut = size > maxOctets;
      U16 const length = U16( cut ? maxOctets : size );
      put( U16( length | ( cut ? cutFlag : 0 ) ) );
      if ( !length ) return;
      // g++ makes a slow string instruction of a memcpy of at most 256 octets.
      std::memmove( at_, data, length );
      at_ += length;
   }

   /// Ends the record: from here on it is in the file.
   void endMsg() noexcept {
      U32 const used = U32( at_ - reinterpret_cast< char * >( block_ ) );
      __atomic_store_n( &block_->used, used, __ATOMIC_RELEASE );
   }

 private:
   friend class BlockTimerMsg;
   void start( TraceFile & file, U16 word, bool timed ) noexcept {
      if ( file.block_->used > blockBytes - maxRecordBytes ) [[unlikely]]
         file.nextBlock();
      block_ = file.block_;
      at_ = reinterpret_cast< char * >( block_ ) + block_->used;
      if ( timed ) {
         put( U16( word | clockFlag ) );
         put( clock() );
      } else {
         put( word );
      }
   }

   Block * block_;
   char * at_;
};

/// Who traces where.
class VORN_API TraceHandle {
 public:
   /// The calling thread's place in the ring, or null while the ring is off.
   TraceFile * traceFile() noexcept {
      if ( single_.on() ) [[likely]]
         return &single_;
      return multiThreaded_ ? mtTraceFile() : nullptr;
   }
   /// The same in a ring into which each thread writes by itself; null also for a thread that finds every
   /// block in the hands of others.
   TraceFile * mtTraceFile() noexcept;

 private:
   friend struct Ring;
   TraceFile single_;
   bool multiThreaded_ = false;
};

/// The process's ring.
VORN_API extern TraceHandle defaultSkeinHandle;

/// A call site's message id, which another thread may be setting: 0 before the site is registered, below 0 if
/// it could not be.
inline int givenMsgId( int const & msgId ) noexcept { return __atomic_load_n( &msgId, __ATOMIC_RELAXED ); }

/// Keeps a message open over a scope: its destructor closes the message with the time.
class BlockTimerMsg {
 public:
   BlockTimerMsg() noexcept = default;
   BlockTimerMsg( BlockTimerMsg const & ) = delete;
   /// Takes over a message whose record has just been written. `msgId` is that of the call site.
   void open( TraceFile & file, int const * msgId ) noexcept {
      ++file.openBlocks_;
      msgId_ = msgId;
   }
   // The ring may have gone in between (in the child of a fork), and the id with it.
   ~BlockTimerMsg() {
      if ( !msgId_ ) return;
      TraceFile * const file = defaultSkeinHandle.traceFile();
      int const id = givenMsgId( *msgId_ );
      if ( !file || id <= 0 || !file->openBlocks_ ) [[unlikely]]
         return;
      RingBuf record;
      record.start( *file, U16( id | closeFlag ), true );
      record.endMsg();
      --file->openBlocks_;
   }

 private:
   int const * msgId_ = nullptr;
};

} // namespace Skein
