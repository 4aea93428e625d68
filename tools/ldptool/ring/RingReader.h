#pragma once

// Reads a ring trace file (docs/ring-trace.md). Not an octet of it is trusted: what cannot be read is left
// out and counted, and a file that is no ring at all is refused with a clear text.

#include "Skein/RingFormat.h"

#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace LdpTool {

// Why a file is no ring trace.
class RingError : public std::runtime_error {
 public:
   using std::runtime_error::runtime_error;
};

// A call site, as it describes itself in the file. All texts are printable, whatever the file says.
struct RingSite {
   std::string file; // stem of the source file
   std::string function;
   U32 line = 0;
   U32 level = 0;
   bool block = false;     // opens a block, which a later record closes
   std::string_view items; // what its messages are made of
};

// One record, in words.
struct RingRecord {
   enum Kind { message, open, close };

   RingSite const * site = nullptr;
   Kind kind = message;
   bool timed = false;  // whether it has a time of its own
   U64 nanoseconds = 0; // since 1970-01-01 UTC; of an untimed record, that of the last timed one
   U64 took = 0;        // of a close whose open is there too: nanoseconds in between, at most
   bool exact = false;  // they are exact: the open was timed
   U32 writer = 0;      // thread that wrote it, from 1
   U32 depth = 0;       // blocks open around it, as far as the ring reaches back
   std::string text;    // of a close, that of its open, or the function's name
};

class RingReader {
 public:
   // The whole file. Throws RingError.
   explicit RingReader( std::string octets );
   // The same, of octets that outlive the reader: a file that is mapped.
   struct Mapped {
      std::string_view octets;
   };
   explicit RingReader( Mapped mapped );

   U32 processId() const { return header_.processId; }
   // Whether more than one thread wrote.
   bool threaded() const { return threaded_; }

   // Hands over all records, the oldest first; those of one block stay together.
   void forEach( std::function< void( RingRecord const & ) > const & visit );
   // The same one by one: the next record, or false when there are no more.
   bool next( RingRecord & record );

   // Blocks, or the description region, that could not be read to their end. Complete behind the last record.
   U32 damaged() const { return damaged_; }

 private:
   struct BlockAt {
      Skein::Block head;
      std::string_view records;
   };
   using Enumeration = std::map< U32, std::string >;
   // A block that is open. Its text is read once more when it closes: a file of a few megabytes can have a
   // million blocks open, each with a long text.
   struct Open {
      RingSite const * site;
      std::string_view arguments;
      U64 nanoseconds;
      bool timed;
   };
   // What is known of a thread while its records go by.
   struct Writer {
      std::vector< Open > open;
      U64 nanoseconds = 0;
   };

   void readAll();
   void readHeader();
   void readDescriptions();
   void readBlocks();
   bool readRecord( BlockAt const & block, Writer & writer, RingRecord & record );
   bool readItems( std::string_view & items, std::string_view & octets, std::string * text,
                   unsigned nesting ) const;
   bool readChoice( std::string_view & items, std::string_view & octets, std::string * text,
                    unsigned nesting ) const;
   U64 toNanoseconds( U64 ticks, Skein::Block const & head ) const;

   std::string held_; // unless the file is mapped
   std::string_view octets_;
   Skein::FileHeader header_{};
   std::map< U16, RingSite > sites_;
   std::map< U16, Enumeration > enumerations_;
   std::vector< BlockAt > blocks_; // the oldest first
   bool threaded_ = false;
   U32 damaged_ = 0;
   // Where `next` is.
   std::map< U32, Writer > writers_;
   std::size_t block_ = 0;
   bool inBlock_ = false;
   std::string_view rest_; // of its records
};

} // namespace LdpTool
