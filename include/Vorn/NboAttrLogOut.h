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

#include "Vorn/Connection.h"
#include "Vorn/Entity.h"
#include "Vorn/HashMap2018.h"
#include "Vorn/ValueType.h"

#include <exception>
#include <map>
#include <memory>
#include <set>
#include <vector>

namespace Vorn::NboAttrLog {

class Demuxer;
class FlowIn;
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
class VORN_API Out : public Connection::Out {
   VORN_OBJECT( Out )

 public:
   using Adapter = Entity::VornNboAttrLogSa;

   /// What the parts of an orphan record begin with.
   enum PayloadSection : U8 { typeSection = 0, argumentSection = 2, entityIdSection = 3 };

   static constexpr U32 defaultCapacity = 64 * 1024;
   /// A log with room for `capacity` octets.
   explicit Out( U32 capacity = defaultCapacity );
   ~Out() override;

   /// Octets that are ready. What is dirty is written first, as far as there is room.
   std::size_t bytes();
   /// Whether everything that the log carries has been written and drained.
   bool idle();

   /// The first exception that a change raised since the last call: a local write where this end is
   /// read-only. Null if there was none.
   std::exception_ptr takeException() noexcept { return std::exchange( exception_, nullptr ); }
   /// What is let happen against the flags; null for nothing.
   void permitsIs( std::unique_ptr< Permits > permits ) noexcept { permits_ = std::move( permits ); }

   /// Number of entities that the log carries.
   U32 adapters() const noexcept { return adapters_; }
   /// The adapter of an entity on this log, or null.
   Adapter * adapter( Entity const & entity ) const noexcept;

 private:
   friend class Vorn::Entity;
   friend class Vorn::Entity::VornNboAttrLogSa;
   friend class Demuxer;
   friend class FlowIn;
   friend class In;
   friend class References;

   void flow();
   bool sendWithdrawals();

   /// The number of a type on this log, which it announces first; 0 if there is no room for that.
   U32 typeNumber( VornType const & type );
   U32 newEntityId();
   Ptr< Adapter > newAdapter( Entity & entity, Vorn_BitSet flags, unsigned level, Adapter * parent );
   void adapterDel( Adapter & adapter );
   void entityIdIs( Adapter & adapter, U32 id );
   Adapter * adapterById( U32 id ) const noexcept;

   bool active_ = false; // something flows out, or records come in: nothing flows out by itself
   bool closing_ = false;
   std::exception_ptr exception_;
   std::unique_ptr< Permits > permits_;

   U32 adapters_ = 0;
   Adapter * firstRoot_ = nullptr; // adapters without a parent; with all below them they are held
   HashMap2018< Out, U32, Adapter * > byId_;
   HashMap2018< Out, U64, U32 > typeNumbers_; // by the record's address
   U32 lastEntityId_ = 0;
   std::vector< U32 > withdrawn_;     // roots that have gone, and that the other end has still
   Adapter * firstPending_ = nullptr; // those with something to write, each knows its neighbours
   Adapter * lastPending_ = nullptr;
   std::unique_ptr< References > references_;
   FlowIn * flowIn_ = nullptr; // what is being applied, innermost first
   // The indices that have come in of the queues whose transactions are under way, by adapter and attribute.
   std::map< std::pair< Adapter const *, U32 >, std::set< U32 > > queuesSeen_;
};

/// Values as they are written to a log.
template< class T >
Ptr< Out > const & operator<<( Ptr< Out > const & out, T const & value ) {
   toLog( *out, value );
   return out;
}

} // namespace Vorn::NboAttrLog
