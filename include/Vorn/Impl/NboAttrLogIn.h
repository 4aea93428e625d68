/// \file
/// The incoming side of an attribute log: `In`, which reads the values of one record, and `Demuxer`, which
/// takes the octets of the connection and applies them to the model.
///
///     auto const out = newObject< NboAttrLog::Out >();
///     auto const demuxer = newObject< NboAttrLog::Demuxer >( out, StreamAdapter::readOnly );
///     demuxer->rootIs( myCopy );     // an entity that is there already, from a connection before
///     while ( auto const n = receive( buffer ) ) demuxer->bytesIs( buffer, n );
///
/// A stream that lies raises AttrLogRecordException: the records before it are applied, it and what follows
/// are not. After this or any other exception the host drops both directions of the connection; the next one
/// brings the copy up to date.
#pragma once

#include "Vorn/Impl/StreamAdapter.h"

#include <array>

namespace Vorn::NboAttrLog {

class Demuxer;
class Offers;
class Roots;

/// The value of one record. Every reader throws AttrLogRecordException where the record ends too early.
class VORN_API In final : public PtrInterface {
   VORN_OBJECT( In )

 public:
   In( U8 const * octets, std::size_t bytes, Demuxer & demuxer ) noexcept
        : at_( octets ), end_( octets + bytes ), demuxer_( &demuxer ) {}

   bool nextbool();
   U8 nextU8() { return *take( 1 ); }
   U16 nextU16() {
      U16 value;
      std::memcpy( &value, take( sizeof value ), sizeof value );
      return __builtin_bswap16( value );
   }
   U32 nextU32() {
      U32 value;
      std::memcpy( &value, take( sizeof value ), sizeof value );
      return __builtin_bswap32( value );
   }
   U64 nextU64() {
      U64 value;
      std::memcpy( &value, take( sizeof value ), sizeof value );
      return __builtin_bswap64( value );
   }
   double nextSeconds();
   String nextString();
   /// An attribute's id; of a deletion its negative, as 32 bits.
   U32 nextAttributeId() { return nextU32(); }
   /// The number of an entity as this end counts: `numberedByPeer` is turned round.
   U32 nextEntityId() {
      U32 const id = nextU32();
      if ( id == numberedByPeer ) throwNumber();
      return id ? id ^ numberedByPeer : 0;
   }
   /// The entity of that number; null for 0 and for one that is no longer on the log.
   Ptr< Entity > nextEntity();
   /// The type of a number that a type record gave.
   VornType const & nextType();

   std::size_t left() const noexcept { return std::size_t( end_ - at_ ); }
   /// Passes over that many octets and returns them.
   U8 const * take( std::size_t bytes ) {
      if ( left() < bytes ) throwShort();
      return std::exchange( at_, at_ + bytes );
   }
   /// Where it reads, to read from there again.
   U8 const * place() const noexcept { return at_; }
   void placeIs( U8 const * place ) noexcept { at_ = place; }
   /// The octets that it reads from now on.
   void octetsIs( U8 const * octets, std::size_t bytes ) noexcept {
      at_ = octets;
      end_ = octets + bytes;
   }
   /// Whether behind what is read others follow: the entries of a group.
   void entriesAre( bool entries ) noexcept { entries_ = entries; }
   /// Throws unless all octets have been read, or others may follow. Called before anything is changed.
   void endIs() const;
   Demuxer & demuxer() const noexcept { return *demuxer_; }

 private:
   [[noreturn]] static void throwShort();
   [[noreturn]] static void throwNumber();

   U8 const * at_;
   U8 const * end_;
   Demuxer * demuxer_;
   bool entries_ = false;
};

/// Values of constructor arguments, as they came in, and the pointers through which reflection takes them.
class VORN_API Arguments {
 public:
   static constexpr std::size_t maxNum = 8;

   /// Reads the arguments of a table.
   Arguments( In & in, VornCtorArg const * table );
   ~Arguments();
   Arguments( Arguments const & ) = delete;
   Arguments & operator=( Arguments const & ) = delete;

   void const * const * pointers() const noexcept { return pointers_; }
   /// Whether the entity was constructed with these; its mutable arguments do not count.
   bool areThoseOf( Entity & entity ) const;

 private:
   VornCtorArg const * table_;
   std::size_t num_ = 0;
   void const * pointers_[maxNum] = {};
   alignas( GenericIf::Value ) std::byte values_[maxNum][sizeof( GenericIf::Value )];
};

/// Throws unless an entity that comes in is of the type that its attribute holds.
VORN_API void ensureCorrectType( VornType const & type, VornType const & expected );

/// Applies the octets of one connection to the model.
class VORN_API Demuxer : public PtrInterface {
   VORN_OBJECT( Demuxer )

 public:
   /// `out` is the other direction of the same connection; what this end changes by itself goes out there.
   /// `flags` are those of every entity that comes in, most often `StreamAdapter::readOnly`.
   explicit Demuxer( Ptr< Out > const & out, Vorn_BitSet flags = StreamAdapter::readOnly );
   ~Demuxer() override;

   /// Takes the octets that follow, in pieces of any size, and applies the records that are whole. Throws
   /// AttrLogRecordException for a stream that lies, and from then on. What it calls must not call it.
   void bytesIs( void const * octets, std::size_t bytes );
   /// Offers an entity as the copy of one that the other end is going to introduce, if type and constructor
   /// arguments agree.
   void rootIs( Ptr< Entity > const & entity );
   /// The entities that the other end has introduced by themselves, in their order; they are kept alive until
   /// it withdraws them. Good until the next octets.
   std::vector< Ptr< Entity > > const & roots() const;
   /// Records applied.
   U64 records() const noexcept { return records_; }
   Ptr< Out > const & out() const noexcept { return out_; }

   /// Makes the flow-out of an entity of that type: what it cannot write at once. An adapter has its own.
   static std::unique_ptr< FlowOut > createFlowOut( VornType const & type, U32 = 0x7fffffff );

   // What the adapters ask.

   /// The type of a number that a type record gave.
   VornType const & type( U32 number ) const;
   /// Whether an entity that is not on the log may have been there: this end has deleted it, and the record
   /// was on its way. Where this end does not write, that cannot be.
   bool gone( U32 entityId ) const;
   /// The highest number that came in.
   U32 lastEntityId() const noexcept { return lastEntityId_; }
   /// Checks the number of an entity that is introduced: the other end counts them in its order.
   void newEntityIdIs( U32 entityId );
   /// Ties an entity that came in to its number.
   void doEntityIdIs( Entity & entity, U32 entityId, Out::Adapter * parent );
   /// A string of these octets: one that came in lately, if it is equal, since most are names of a few
   /// things.
   String string( U8 const * octets, std::size_t bytes );

 private:
   std::size_t recordsIs( U8 const * octets, std::size_t bytes );
   std::size_t wanted( U8 const * octets, std::size_t bytes ) const;
   void headerIs();
   void recordIs( U8 const * octets, std::size_t bytes );
   void otherRecordIs( U8 kind, U32 entity, U32 attribute );
   void orphanIs();
   void typeIs( U32 number );
   void checkEphemeralEntityDeletion( Out::Adapter & adapter );

   Ptr< Out > const out_;
   Vorn_BitSet flags_;
   Ptr< In > in_;           // made with the first octets
   std::vector< U8 > part_; // of a record that is not whole yet
   std::vector< VornType const * > types_;
   std::unique_ptr< Offers > const offers_;
   std::unique_ptr< Roots > const roots_;
   /// The strings that came in lately, each where its hash says, and none that is long.
   static constexpr std::size_t stringNum = 64;
   static constexpr std::size_t longestString = 64;
   std::array< String, stringNum > strings_;
   U32 lastEntityId_ = numberedByPeer;
   U64 records_ = 0;
   bool headerSeen_ = false;
   bool failed_ = false;
};

} // namespace Vorn::NboAttrLog
