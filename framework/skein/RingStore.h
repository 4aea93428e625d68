/// \file
/// The process's ring file as its writers share it: the mapping, which block belongs to whom, the
/// descriptions.
#pragma once

#include "Skein/Ring.h"
#include "Vorn/VornType.h"

#include <mutex>
#include <string>
#include <vector>

namespace Skein {

/// All is done under `mutex`, which whoever calls holds. Nobody comes here for a record that fits its block.
struct Ring {
   static Ring & ring() noexcept;

   /// Whether the file stands.
   bool on() const noexcept { return header_; }
   /// Makes and maps the file. Returns 0 or an errno number.
   int create( std::string const & path, U64 ringBytes, U64 descriptionsBytes );
   /// Lets the statements write.
   void enable( MultiThreading multiThreading ) noexcept;
   /// Goes back to the state without a file, without touching the file.
   void forget() noexcept;

   /// Gives the thread a fresh block in place of its own; none if every block is another thread's.
   void begin( TraceFile & file ) noexcept;
   /// Takes the thread's block from it.
   void releaseBlock( TraceFile & file ) noexcept;

   /// Room for a description of that size, or null. `descriptionAdded` makes it count.
   char * addDescription( std::size_t bytes ) noexcept;
   void descriptionAdded( std::size_t bytes ) noexcept;

   std::mutex mutex;
   std::vector< int * > msgIds;                        ///< ids that were given out, by message id less 1
   std::vector< Vorn::VornType const * > enumerations; ///< those that are described, by number

 private:
   void measureClock() noexcept;

   char * map_ = nullptr;
   U64 mapBytes_ = 0;
   FileHeader * header_ = nullptr; // null exactly while there is no file
   U64 descriptionsRoom_ = 0;
   U64 lastSequence_ = 0;
   U32 lastWriter_ = 0;
   U64 startTicks_ = 0;
   U64 startNanoseconds_ = 0;
   std::vector< bool > blockTaken_; // blocks that some thread is writing into
};

} // namespace Skein
