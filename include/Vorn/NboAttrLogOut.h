/// \file
/// `NboAttrLog::Out`: the outgoing side of an attribute log, and what belongs to the connection as a whole:
/// the entities that it carries and their ids.
///
///     auto const out = newObject< NboAttrLog::Out >();
///     entity->vornNboAttrLogSaIs( 0, 0, out );                 // from now on every change travels
///     while ( auto const n = out->bytes() ) out->drained( send( out->data(), n ) );
///
/// The host drains the buffer whenever it can; the log knows no descriptor and starts nothing by itself. A
/// change that finds no room marks its attribute or key dirty and goes out when there is room again, with the
/// value that it has then. docs/attribute-log.md describes the octets.
#pragma once

#include "Vorn/Entity.h"
#include "Vorn/HashMap2018.h"
#include "Vorn/ValueType.h"

#include <cstring>
#include <exception>
#include <memory>
#include <vector>

namespace Vorn::NboAttrLog {

class Demuxer;
class In;
class References;

/// What frames a record; see docs/attribute-log.md.
enum RecordKind : U8 {
   attributeRecord = 0,  ///< sets an attribute or a member, or deletes a member
   markerRecord = 1,     ///< begins or ends the resynchronisation of a collection
   typeRecord = 2,       ///< gives a number to a type's name
   introducingRecord = 3 ///< an attribute record whose value ends in the id of an entity
};

inline constexpr char streamMagic[4] = { 'V', 'N', 'A', 'L' };
inline constexpr U16 streamVersion = 1;
inline constexpr U32 streamHeaderBytes = 8;
/// Octets of a record in front of its value, the length field not counted: kind, entity, attribute, token.
inline constexpr U32 recordHeadBytes = 10;
/// The longest record, without its length field. A writer that would exceed it fails, a reader refuses it.
inline constexpr U32 maxRecordBytes = 64u << 20;
/// Introduces an entity that has no parent on the log; its negative withdraws it.
inline constexpr U32 orphanId = 0x88;
/// Several attribute records of one entity under one head.
inline constexpr U32 groupId = 0x90;
/// Set in the id of an entity that the other end of the connection numbered.
inline constexpr U32 numberedByPeer = 0x80000000;

/// What a host lets happen against the flags of an end that does not write: nothing, unless it says
/// otherwise.
class VORN_API Permits {
 public:
   virtual ~Permits();
   /// Whether a read-only end may write to an entity after all, from now on. Asked when somebody does.
   virtual bool writable( Entity & entity );
   /// Whether this attribute may be written by an end that is a read-only copy, as an answer for instance.
   virtual bool writeFromReadOnlyRemote( Entity & entity, U32 attributeId );
};

/// The outgoing side. An entity that was attached by hand lives for as long as anybody else holds it, and is
/// withdrawn from the log when it goes; its members are held.
class VORN_API Out : public PtrInterface {
   VORN_OBJECT( Out )

 public:
   using Adapter = Entity::VornNboAttrLogSa;

   /// Tokens around the value of a record.
   enum TransactToken : U8 { beginToken = 0, endToken = 2 };
   /// What the parts of an orphan record begin with.
   enum PayloadSection : U8 { typeSection = 0, argumentSection = 2, entityIdSection = 3 };

   static constexpr U32 defaultCapacity = 64 * 1024;
   static constexpr U32 minCapacity = 64;

   /// A log with room for `capacity` octets, at least `minCapacity`. A record that is longer than all of the
   /// room waits until the buffer is empty and then takes a block of its own, for as long as it is drained.
   explicit Out( U32 capacity = defaultCapacity );
   ~Out() override;

   /// Octets that are ready. What is dirty is written first, as far as there is room.
   std::size_t bytes();
   /// The octets that are ready, `bytes()` of them; good until anything else happens to the log or the model.
   U8 const * data();
   /// The host has taken the first `n` of the octets that were ready.
   void drained( std::size_t n );
   /// Whether everything that the log carries has been written and drained.
   bool idle();

   /// Why nothing is written any more; empty while all is well. The one reason is a record longer than
   /// `maxRecordBytes`.
   String const & failure() const noexcept { return failure_; }
   /// The first exception that a change raised since the last call: a local write where this end is
   /// read-only. Null if there was none.
   std::exception_ptr takeException() noexcept { return std::exchange( exception_, nullptr ); }
   /// What is let happen against the flags; null for nothing.
   void permitsIs( std::unique_ptr< Permits > permits ) noexcept { permits_ = std::move( permits ); }

   /// Whether the last record that was tried would fit now.
   bool hasSufficientBuffer() const noexcept { return !blocked_; }
   /// Number of entities that the log carries.
   U32 adapters() const noexcept { return adapters_.members(); }
   /// The adapter of an entity on this log, or null.
   Adapter * adapter( Entity const & entity ) const noexcept;

   // What values are written with, within a record only.
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
   void put( void const * octets, std::size_t bytes ) {
      if ( std::size_t( limit_ - at_ ) >= bytes ) [[likely]] {
         std::memcpy( at_, octets, bytes );
         at_ += bytes;
      } else {
         missing_ += bytes;
      }
   }

 private:
   friend class Vorn::Entity;
   friend class Vorn::Entity::VornNboAttrLogSa;
   friend class Demuxer;
   friend class In;
   friend class References;

   /// Writes a record whose value `body` writes. False if there is no room; then nothing is written.
   template< class Body >
   bool record( RecordKind kind, U32 entityId, U32 attributeId, Body const & body ) {
      if ( blocked_ ) return false;
      for ( ;; ) {
         begin( kind, entityId, attributeId );
         body();
         if ( end() ) return true;
         if ( !roomIs() ) return false;
      }
   }
   /// The same, but without waiting: if there is no room at once, others may have it.
   template< class Body >
   bool recordAtOnce( RecordKind kind, U32 entityId, U32 attributeId, Body const & body ) {
      if ( blocked_ ) return false;
      begin( kind, entityId, attributeId );
      body();
      return end();
   }
   void begin( RecordKind kind, U32 entityId, U32 attributeId );
   bool end();
   /// Bounds of a group's records, as two 16-bit offsets in front of them.
   std::size_t partBegin();
   void partEnd( std::size_t start );
   bool roomIs();
   std::size_t used() const noexcept { return std::size_t( at_ - head_ ); }
   void flow();
   bool sendWithdrawals();

   /// The number of a type on this log, which it announces first; 0 if there is no room for that.
   U32 typeNumber( VornType const & type );
   U32 newEntityId();
   Ptr< Adapter > newAdapter( Entity & entity, Vorn_BitSet flags, unsigned level, Adapter * parent );
   void adapterDel( Adapter & adapter );
   void entityIdIs( Adapter & adapter, U32 id );
   Adapter * adapterById( U32 id ) const noexcept;

   std::vector< U8 > buffer_;
   std::vector< U8 > large_; // a record longer than the buffer
   U8 * head_;               // first octet that is not drained, in `buffer_` or `large_`
   U8 * at_;                 // where the next octet goes
   U8 * limit_;
   U8 * record_ = nullptr;   // where the record under way begins
   std::size_t missing_ = 0; // octets of that record which did not fit
   std::size_t need_ = 0;    // room that a record did not find
   bool blocked_ = false;    // a record waits for that room, and everything else behind it
   bool active_ = false;     // something flows out, or records come in: nothing flows out by itself
   bool closing_ = false;
   String failure_;
   std::exception_ptr exception_;
   std::unique_ptr< Permits > permits_;

   HashMap2018< Out, U64, Ptr< Adapter > > adapters_; // by the entity's address
   HashMap2018< Out, U32, Adapter * > byId_;
   HashMap2018< Out, U64, U32 > typeNumbers_; // by the record's address
   U32 lastEntityId_ = 0;
   std::vector< U32 > withdrawn_;     // roots that have gone, and that the other end has still
   Adapter * firstPending_ = nullptr; // those with something to write, each knows its neighbours
   Adapter * lastPending_ = nullptr;
   std::unique_ptr< References > references_;
};

/// Values as they are written to a log.
template< class T >
Ptr< Out > const & operator<<( Ptr< Out > const & out, T const & value ) {
   GenericIfValueMethods< T >::logOutOf( *out, &value );
   return out;
}

} // namespace Vorn::NboAttrLog
