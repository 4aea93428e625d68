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
///
/// Where memory runs out, `takeException` gives the `std::bad_alloc` that a change raised; `bytes` throws its
/// own. Nothing is lost by that: what could not be written is marked, and goes out when `bytes` is called
/// again and there is memory. On the incoming side it ends the connection, as any exception from
/// `Demuxer::bytesIs` does: drop both directions, and let the next one bring the copy up to date.
#pragma once

#include "Vorn/Connection.h"
#include "Vorn/Entity.h"
#include "Vorn/ValueType.h"

#include <exception>
#include <memory>

namespace Vorn::NboAttrLog {

struct OutState;

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

/// The outgoing side. It holds every entity that it carries, until it is destroyed or the entity is taken
/// off.
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
   /// Whether everything that the log carries has been written and drained, but for what the host holds back.
   bool idle();
   /// Takes an entity that was attached by hand off the log, with all below it, and withdraws it from the
   /// other end. False if it is not on the log by itself.
   bool rootDel( Entity & entity );

   /// The first exception that a change raised since the last call: a local write where this end is
   /// read-only, or that memory has run out. Null if there was none.
   std::exception_ptr takeException() noexcept { return std::exchange( exception_, nullptr ); }
   /// Keeps the exception that is being handled for the host, if it is the first.
   void exceptionIs() noexcept {
      if ( !exception_ ) exception_ = std::current_exception();
   }
   /// What is let happen against the flags; null for nothing.
   void permitsIs( std::unique_ptr< Permits > permits ) noexcept { permits_ = std::move( permits ); }
   Permits * permits() const noexcept { return permits_.get(); }

   /// Number of entities that the log carries.
   U32 adapters() const noexcept;
   /// The adapter of an entity on this log, or null.
   Adapter * adapter( Entity const & entity ) const noexcept;

   /// What the adapters and the incoming side share; the framework's own.
   OutState & state() const noexcept { return *state_; }

 private:
   void flow();
   void queueForgotten();
   bool sendWithdrawals();

   std::unique_ptr< OutState > const state_;
   std::exception_ptr exception_;
   std::unique_ptr< Permits > permits_;
};

/// Values as they are written to a log.
template< class T >
Ptr< Out > const & operator<<( Ptr< Out > const & out, T const & value ) {
   toLog( *out, value );
   return out;
}

} // namespace Vorn::NboAttrLog
