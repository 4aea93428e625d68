// The outgoing half of an adapter: changes of its entity become records.

#include "NboAttrLogAnchors.h"
#include "NboAttrLogState.h"

namespace Vorn {

using NboAttrLog::Out;
using NboAttrLog::Sent;
using Sa = Entity::VornNboAttrLogSa;

namespace {

void writeAttr( Out & out, void * object, VornAttr const & attr ) {
   GenericIf::Value value( attr.type );
   attr.ops->op( value.data(), object, attr, GenericIf::read, nullptr, nullptr );
   attr.type->methods->logOut( out, value.data() );
}

/// The arguments that an entity was constructed with.
void writeArguments( Out & out, Entity & entity ) {
   VornType const & type = *entity.fwkType();
   VornCtorArg const * const first = type.ctorArgs;
   using NboAttrLog::logOut;
   if ( first && first->name && !std::strcmp( first->name, "name" ) ) logOut( out, entity.name() );
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( attr->isCtorArg() ) writeAttr( out, static_cast< PtrInterface * >( &entity ), *attr );
   }
}

} // namespace

/// Writes a record about the entity. Where there is no room for it, a flag tells as well.
template< class Body >
Sent Sa::send( NboAttrLog::RecordKind kind, U32 attributeId, Body const & body ) {
   status_.bitsIs( noRoom, false );
   if ( out_->record( kind, entityId(), attributeId, body ) ) [[likely]]
      return Sent::yes;
   status_.bitsIs( noRoom, true );
   return Sent::noRoom;
}

/// The number of a type on the log, or 0 if there is no room to announce it.
U32 Sa::typeNumber( VornType const & type ) {
   U32 const number = out_->state().typeNumber( *out_, type );
   status_.bitsIs( noRoom, !number );
   return number;
}

// What a change becomes.

void Sa::handleNotification( U32 attributeId, void const * key ) {
   VornAttr const * const x = attribute( attributeId );
   if ( !x || !x->logged() ) return;
   constexpr U32 asked =
        suppressed | stopped | readOnly | alwaysFlowOut | handlingFlowOut | flowOutPresent | hasEntityId;
   try {
      // Most changes are of a scalar, and either have just come in, or nothing is in their way.
      if ( x->kind() == VornKind::mutableAttr ) [[likely]] {
         if ( auto * const flowIn = out_->state().flowIn ) {
            if ( flowIn->holds( *this, *x, nullptr ) && !status_.any( suppressed ) )
               return flowIn->reported();
         } else if ( ( status_.word() & asked ) == hasEntityId && out_->hasSufficientBuffer() &&
                     serializeScalar( *x ) == Sent::yes ) {
            return;
         }
      }
      onX( *x, key );
   } catch ( std::bad_alloc const & ) {
      if ( out_ && status_.any( hasEntityId ) ) markAgain( *x );
      throw;
   }
}

void Sa::onX( VornAttr const & x, void const * key ) {
   if ( x.keyed() ) {
      vornHandleXSerializeSing( x, key );
   } else {
      handleValueSerialization( x );
   }
}

void Sa::handleValueSerialization( VornAttr const & x ) {
   if ( !handleValueSerializationImpl( x ) ) return;
   // Before it is read, in case it is written again meanwhile.
   if ( flowOut_.any() ) flowOut_.vornIsDirtyIs( x.id(), false );
   switch ( serialize( x ) ) {
   case Sent::yes: break;
   case Sent::noRoom: dirtyIs( x ); break;
   case Sent::awaits:
      flowOut_.vornIsDirtyIs( x.id(), true );
      waits( Sent::awaits );
      break;
   }
}

/// The log, if an attribute without a key is to be written to it now. If it has to wait it is marked.
Out * Sa::handleValueSerializationImpl( VornAttr const & x ) {
   if ( status_.any( suppressed ) || handlingFlowInFor( x, nullptr ) ) return nullptr;
   if ( !status_.any( hasEntityId ) ) return nullptr; // all is sent when the entity has been introduced
   if ( status_.any( handlingFlowOut ) ) return out_;
   if ( status_.any( readOnly ) && !convertedToWritable() ) doThrowReadOnly( x );
   if ( !status_.any( stopped | alwaysFlowOut ) && out_->hasSufficientBuffer() &&
        !flowOut_.vornIsDirty( x.id() ) ) {
      return out_;
   }
   dirtyIs( x );
   return nullptr;
}

void Sa::vornHandleXSerializeSing( VornAttr const & x, void const * key ) {
   if ( status_.any( suppressed ) || handlingFlowInFor( x, key ) ) return;
   if ( !status_.any( hasEntityId ) ) return; // all is sent when the entity has been introduced
   if ( status_.any( readOnly ) && !convertedToWritable() ) {
      if ( status_.any( stopped ) ) return;
      doThrowReadOnly( x );
   }
   if ( status_.any( stopped ) ) {
      // It waits: a member that the transaction under way goes on to name keeps what happened meanwhile.
      keyDirtyIs( x, key );
      return;
   }
   if ( !out_->hasSufficientBuffer() || !prepareImmediateTransmission( x ) ) {
      keyDirtyIs( x, key );
      return;
   }
   if ( flowOut_.any() ) flowOut_.vornIsXDirtyDel( x.id(), key );
   switch ( serializeKey( x, key ) ) {
   case Sent::yes:
      if ( status_.any( flowOutPresent ) ) reschedule();
      break;
   case Sent::noRoom: keyDirtyIs( x, key ); break;
   case Sent::awaits:
      keyMark( x, key );
      waits( Sent::awaits );
      break;
   }
}

/// Whether a change of a collection may go out before what waits already. In a queue none overtakes another.
bool Sa::prepareImmediateTransmission( VornAttr const & x ) const {
   if ( status_.any( alwaysFlowOut ) ) return false;
   if ( !flowOut_.any() ) return true;
   return flowOut_.vornHasSynced( x.id() ) &&
          !( x.kind() == VornKind::queue && flowOut_.vornIsXDirty( x.id() ) );
}

/// Whether a read-only adapter may write after all.
bool Sa::convertedToWritable() {
   if ( auto * const permits = out_->permits(); permits && permits->writable( entity() ) ) {
      status_.bitsIs( readOnly, false );
   }
   return !status_.any( readOnly );
}

void Sa::doThrowReadOnly( VornAttr const & x ) const {
   throw RangeException( "attribute " + String( x.name ) + " of " + valueToStrep( entity().fullName() ) +
                         " was written where the attribute log is read-only" );
}

// Introduction.

bool Sa::doSerializeOrphan() {
   status_.bitsIs( orphanPending, true );
   reschedule();
   if ( !maySend() ) return false;
   U32 const id = out_->state().lastEntityId + 1;
   {
      NboAttrLog::FlagAnchor const anchor( status_, orphanRecord );
      U32 const type = typeNumber( this->type() );
      if ( !type ) return false;
      Sent const sent = introduce( *this, id, [&] {
         return send( NboAttrLog::introducingRecord, NboAttrLog::orphanId, [&] {
            out_->putU8( Out::typeSection );
            out_->putU32( type );
            out_->putU8( Out::argumentSection );
            writeArguments( *out_, entity() );
            out_->putU8( Out::entityIdSection );
            out_->putU32( id );
         } );
      } );
      if ( sent != Sent::yes ) return false;
   }
   status_.bitsIs( orphanPending, false );
   doThis();
   return true;
}

/// Gives an entity its number, and takes it back unless the record that says so is written. The place is
/// taken first, so that no number that the other end has is ever forgotten.
template< class Write >
Sent Sa::introduce( VornNboAttrLogSa & adapter, U32 id, Write const & write ) {
   auto & state = out_->state();
   VORN_ASSERT( id < NboAttrLog::numberedByPeer ); // a connection that lives so long must be made anew
   Sent sent = Sent::noRoom;
   state.numbers.adapterIs( id, adapter );
   try {
      sent = write();
   } catch ( ... ) {
      state.numbers.del( id );
      throw;
   }
   if ( sent != Sent::yes ) {
      state.numbers.del( id );
      return sent;
   }
   state.lastEntityId = id;
   adapter.entityIdIs( id, false );
   state.references.targetIs( adapter.entity() );
   return sent;
}

/// Marks all logged attributes from there on.
void Sa::markFrom( VornAttr const * attr ) {
   for ( ; attr->name; ++attr ) {
      if ( !attr->logged() ) continue;
      if ( attr->keyed() ) {
         resyncMark( *attr );
      } else {
         flowOut_.vornIsDirtyIs( attr->id(), true );
      }
   }
   waits( Sent::noRoom );
}

/// Sends all that the entity has, to a reader that may have an older copy of it.
void Sa::doThis() {
   if ( status_.any( suppressed ) ) {
      reschedule();
      return;
   }
   VornAttr const * attr = type().attributes;
   if ( !status_.any( alwaysFlowOut | stopped ) && !flowOut_.any() && !out_->state().flowIn ) {
      // Nothing is in the way of the scalars in front, which are all that most entities have.
      Sent sent = Sent::yes;
      try {
         for ( ; attr->name; ++attr ) {
            if ( !attr->logged() ) continue;
            if ( attr->kind() != VornKind::mutableAttr ) break;
            if ( ( sent = serializeScalar( *attr ) ) != Sent::yes ) break;
         }
      } catch ( ... ) {
         markFrom( attr );
         throw;
      }
      if ( !attr->name ) {
         status_.bitsIs( awaits | wakes, false );
         reschedule();
         return;
      }
      if ( sent != Sent::yes ) {
         markFrom( attr );
         flowOut_.attrIdIs( attr->id() );
         pendingFirst();
         return;
      }
   }
   markFrom( attr );
   if ( status_.any( alwaysFlowOut | stopped ) || !flowOut_.any() ) return;
   // What does not find room goes before others that wait, so that few entities stand half sent.
   if ( handleAttrFlowOut( 0 ) && out_ ) pendingFirst();
}

// Records.

Sent Sa::serializeScalar( VornAttr const & x ) {
   return send( NboAttrLog::attributeRecord, x.id(),
                [&] { x.ops->op( out_, object(), x, GenericIf::toLog, nullptr, nullptr ); } );
}

/// Writes an attribute without a key.
Sent Sa::serialize( VornAttr const & x ) {
   if ( x.kind() == VornKind::mutableAttr ) return serializeScalar( x );
   bool const isReference = x.kind() == VornKind::reference;
   Ptr< PtrInterface > target;
   x.ops->op( &target, object(), x, isReference ? GenericIf::carried : GenericIf::read, nullptr, nullptr );
   if ( isReference ) return handlePtrSerialization( x, nullptr, dynamic_cast< Entity * >( target.ptr() ) );
   return target ? serializeMember( x, static_cast< Entity & >( *target ) ) : serializeDeletion( x, nullptr );
}

/// Writes what a collection has at a key: the member, or that there is none.
Sent Sa::serializeKey( VornAttr const & x, void const * key ) {
   if ( x.kind() == VornKind::entityColl || x.kind() == VornKind::referenceColl ) {
      Ptr< PtrInterface > member;
      x.ops->op( &member, object(), x, GenericIf::read, key, nullptr );
      auto * const entity = dynamic_cast< Entity * >( member.ptr() );
      if ( x.kind() == VornKind::referenceColl ) return handlePtrSerialization( x, key, entity );
      return entity ? serializeMember( x, *entity ) : serializeDeletion( x, key );
   }
   bool present = false;
   x.ops->op( &present, object(), x, GenericIf::has, key, nullptr );
   if ( !present ) return serializeDeletion( x, key );
   return send( NboAttrLog::attributeRecord, x.id(), [&] {
      x.keyType->methods->logOut( *out_, key );
      if ( x.isSet() ) return;
      GenericIf::Value value( x.type );
      x.ops->op( value.data(), object(), x, GenericIf::read, key, nullptr );
      x.type->methods->logOut( *out_, value.data() );
   } );
}

Sent Sa::serializeDeletion( VornAttr const & x, void const * key ) {
   return send( NboAttrLog::attributeRecord, 0 - x.id(), [&] {
      if ( key ) x.keyType->methods->logOut( *out_, key );
   } );
}

/// Writes where a reference leads: to an entity that the other end knows, or nowhere. It is written again
/// when the other end comes to know the entity, or no longer does.
Sent Sa::handlePtrSerialization( VornAttr const & x, void const * key, Entity * target ) {
   auto & state = out_->state();
   auto const * const adapter = target ? out_->adapter( *target ) : nullptr;
   U32 const id = adapter ? adapter->entityId() : 0;
   state.references.referenceIs( *this, x, key, target );
   // While more is to come, the entity may be among it; the copy keeps what it has from before.
   if ( target && !id && !state.settling ) return Sent::awaits;
   if ( key && !id ) return serializeDeletion( x, key );
   return send( NboAttrLog::attributeRecord, x.id(), [&] {
      if ( key ) x.keyType->methods->logOut( *out_, key );
      out_->putU32( id );
   } );
}

/// Introduces a child or a member, whose own attributes follow; if the other end knows it, says that it is
/// still there.
Sent Sa::serializeMember( VornAttr const & x, Entity & member ) {
   auto const adapter = childNboAttrLogAdapterIs( member );
   U32 const type = typeNumber( *member.fwkType() );
   if ( !type ) return Sent::noRoom;
   U32 const known = adapter->entityId();
   U32 const id = known ? known : out_->state().lastEntityId + 1;
   auto const write = [&] {
      return send( NboAttrLog::introducingRecord, x.id(), [&] {
         writeArguments( *out_, member );
         out_->putU32( type );
         out_->putU32( id );
      } );
   };
   if ( known ) return write();
   Sent const sent = introduce( *adapter, id, write );
   if ( sent == Sent::yes ) adapter->doThis();
   return sent;
}

bool Sa::sendTransactionMarker( VornAttr const & x, AttrTransactionType type ) {
   return Sent::yes == send( NboAttrLog::markerRecord, x.id(), [&] {
             out_->putU8( type );
             out_->putU32( 0 );
             if ( x.kind() != VornKind::queue || type != transactionBegin ) return;
             U32 indices[2];
             x.ops->op( indices, object(), x, GenericIf::indices, nullptr, nullptr );
             out_->putU32( indices[0] );
             out_->putU32( indices[1] );
          } );
}

} // namespace Vorn
