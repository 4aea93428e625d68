/// \file
/// `Connection::Out`: the outgoing octets of a connection, a bounded buffer that the host drains. What is
/// written to it are records, each whole or not at all; docs/attribute-log.md describes their octets. It
/// knows no descriptor and starts nothing by itself.
#pragma once

#include "Vorn/Ptr.h"
#include "Vorn/String.h"

#include <cstring>
#include <vector>

namespace Vorn {

/// Home of what a connection has in each direction.
class Connection {
 public:
   class Out;
};

/// The end of an attribute log that writes: records gather here until the host takes their octets.
class VORN_API Connection::Out : public PtrInterface {
 public:
   /// Tokens around the value of a record.
   enum TransactToken : U8 { beginToken = 0, endToken = 2 };

   /// Octets of a record in front of its value, the length field not counted: kind, entity, attribute, token.
   static constexpr U32 recordHeadBytes = 10;
   /// The longest record, without its length field. A writer that would exceed it fails, a reader refuses it.
   static constexpr U32 maxRecordBytes = 64u << 20;
   /// Octets of the smallest buffer.
   static constexpr U32 minCapacity = 64;

   /// The octets that are ready; good until anything else happens to the log or the model.
   U8 const * data() const noexcept { return head_; }
   /// The host has taken the first `n` of the octets that were ready.
   void drained( std::size_t n );
   /// Whether the last record that was tried would fit now.
   bool hasSufficientBuffer() const noexcept { return !blocked_; }
   /// Why nothing is written any more; empty while all is well. The one reason is a record longer than
   /// `maxRecordBytes`.
   String const & failure() const noexcept { return failure_; }

   // What values are written with, within a record only.
   /// Writes an integer in network byte order; within a record only.
   void putU8( U8 value ) { put( &value, 1 ); }
   void putU16( U16 value ) {
      value = __builtin_bswap16( value );
      put( &value, sizeof value );
   }
   void putU32( U32 value ) {
      value = __builtin_bswap32( value );
      put( &value, sizeof value );
   }
   void putU64( U64 value ) {
      value = __builtin_bswap64( value );
      put( &value, sizeof value );
   }
   /// Writes octets as they stand; within a record only.
   void put( void const * octets, std::size_t bytes ) {
      if ( std::size_t( limit_ - at_ ) >= bytes ) [[likely]] {
         std::memcpy( at_, octets, bytes );
         at_ += bytes;
      } else {
         missing_ += bytes;
      }
   }

   /// Writes a record whose value `body` writes. False if there is no room; then, and where `body` throws,
   /// nothing is written.
   template< class Body >
   bool record( U8 kind, U32 entityId, U32 attributeId, Body const & body ) {
      if ( blocked_ ) return false;
      for ( ;; ) {
         begin( kind, entityId, attributeId );
         try {
            body();
         } catch ( ... ) {
            at_ = std::exchange( record_, nullptr );
            throw;
         }
         if ( end() ) return true;
         if ( !roomIs() ) return false;
      }
   }

 protected:
   /// A buffer of `capacity` octets, at least `minCapacity`. A record that is longer than all of it waits
   /// until it is empty and then takes a block of its own, for as long as that is drained.
   explicit Out( U32 capacity );

   /// Octets that are ready.
   std::size_t used() const noexcept { return std::size_t( at_ - head_ ); }

 private:
   /// Begins a record with its head. The length, in front, is set by `end`.
   void begin( U8 kind, U32 entityId, U32 attributeId ) {
      VORN_ASSERT( !record_ );
      record_ = at_;
      missing_ = 0;
      constexpr std::size_t headBytes = sizeof( U32 ) + recordHeadBytes;
      if ( std::size_t( limit_ - at_ ) < headBytes ) [[unlikely]] {
         missing_ = headBytes;
         return;
      }
      entityId = __builtin_bswap32( entityId );
      attributeId = __builtin_bswap32( attributeId );
      at_[4] = kind;
      std::memcpy( at_ + 5, &entityId, sizeof entityId );
      std::memcpy( at_ + 9, &attributeId, sizeof attributeId );
      at_[13] = beginToken;
      at_ += headBytes;
   }
   bool end() {
      putU8( endToken );
      U8 * const start = std::exchange( record_, nullptr );
      std::size_t const size = std::size_t( at_ - start ) + missing_;
      if ( missing_ ) [[unlikely]] {
         at_ = start;
         need_ = size;
         return false;
      }
      U32 const length = __builtin_bswap32( U32( size - sizeof( U32 ) ) );
      std::memcpy( start, &length, sizeof length );
      // A long record takes a block of its own, and nothing may follow it there.
      if ( !large_.empty() ) blocked_ = true;
      return true;
   }
   bool roomIs();

   std::vector< U8 > buffer_;
   std::vector< U8 > large_; // a record longer than the buffer
   U8 * head_;               // first octet that is not drained, in `buffer_` or `large_`
   U8 * at_;                 // where the next octet goes
   U8 * limit_;
   U8 * record_ = nullptr;   // where the record under way begins
   std::size_t missing_ = 0; // octets of that record which did not fit
   std::size_t need_ = 0;    // room that a record did not find
   bool blocked_ = false;    // a record waits for that room, and everything else behind it
   String failure_;
};

} // namespace Vorn
