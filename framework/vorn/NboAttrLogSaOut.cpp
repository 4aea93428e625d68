// The outgoing half of an adapter: changes of its entity become records.

#include "NboAttrLogAnchors.h"
#include "NboAttrLogReferences.h"

#include <algorithm>

namespace Vorn {

using NboAttrLog::Out;
using Sa = Entity::VornNboAttrLogSa;

namespace {

/// Attributes that one record sets, without a key and without an entity.
bool isScalar( VornAttr const & attr ) noexcept {
   return attr.kind() == VornKind::mutableAttr && attr.logged();
}

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

/// Writes a record about the entity. False if there is no room for it, which a flag tells as well.
template< class Body >
bool Sa::send( NboAttrLog::RecordKind kind, U32 attributeId, Body const & body ) {
   status_.bitsIs( noRoom, false );
   bool const sent = out_->record( kind, entityId(), attributeId, body );
   status_.bitsIs( noRoom, !sent );
   return sent;
}

/// The number of a type on the log, or 0 if there is no room to announce it.
U32 Sa::typeNumber( VornType const & type ) {
   U32 const number = out_->typeNumber( type );
   status_.bitsIs( noRoom, !number );
   return number;
}

VornAttr const * Sa::attribute( U32 id ) const noexcept {
   // A type's own attributes follow those of `Entity` in one run, so the place is nearly always known.
   U32 const place = 5 + id - Entity::vornChildFirstId;
   if ( place < type_.attributeNum && type_.attributes[place].id() == id ) return &type_.attributes[place];
   return type_.attribute( id );
}

// What a change becomes.

void Sa::onAttribute( U32 attributeId, void const * key ) {
   VornAttr const * const x = attribute( attributeId );
   if ( x && x->logged() ) onX( *x, key );
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
   bool const sent = serialize( x );
   if ( !sent ) {
      flowOutIs().vornIsDirtyIs( x.id(), true );
   } else if ( flowOut_ ) {
      flowOut_->vornIsDirtyIs( x.id(), false );
   }
}

/// The log, if an attribute without a key is to be written to it now. If it has to wait it is marked.
Out * Sa::handleValueSerializationImpl( VornAttr const & x ) {
   if ( status_.any( suppressed ) || handlingFlowInFor( x, nullptr ) ) return nullptr;
   if ( !status_.any( hasEntityId ) ) return nullptr; // all is sent when the entity has been introduced
   if ( status_.any( handlingFlowOut ) ) return out_;
   if ( status_.any( readOnly ) && !convertedToWritable() ) doThrowReadOnly( x );
   if ( !status_.any( stopped | alwaysFlowOut ) && out_->hasSufficientBuffer() &&
        !( flowOut_ && flowOut_->vornIsDirty( x.id() ) ) )
      return out_;
   flowOutIs().vornIsDirtyIs( x.id(), true );
   return nullptr;
}

void Sa::vornHandleXSerializeSing( VornAttr const & x, void const * key ) {
   if ( status_.any( suppressed ) || handlingFlowInFor( x, key ) ) return;
   if ( !status_.any( hasEntityId ) ) return; // all is sent when the entity has been introduced
   if ( status_.any( stopped ) ) {
      // It waits: a member that the transaction under way goes on to name keeps what happened meanwhile.
      if ( !status_.any( readOnly ) ) keyDirtyIs( x, key );
      return;
   }
   if ( status_.any( readOnly ) && !convertedToWritable() ) doThrowReadOnly( x );
   bool const room = out_->hasSufficientBuffer();
   if ( flowOut_ ) {
      if ( !room || !prepareImmediateTransmission( x ) ) {
         keyDirtyIs( x, key );
         return;
      }
      if ( flowOut_->hasDirtyCollKeys() )
         flowOut_->vornIsXDirtyDel( x.id(), GenericIf::Value( x.keyType, key ) );
   } else if ( !room || status_.any( alwaysFlowOut ) ) {
      flowOutIs().attrIdIs( x.id() );
      keyDirtyIs( x, key );
      return;
   }
   if ( !serializeKey( x, key ) ) keyDirtyIs( x, key );
}

/// Whether a change of a collection may go out before what waits already.
bool Sa::prepareImmediateTransmission( VornAttr const & x ) const {
   return !status_.any( alwaysFlowOut ) && flowOut_->vornHasSynced( x.id() );
}

/// Whether a read-only adapter may write after all.
bool Sa::convertedToWritable() {
   if ( out_->permits_ && out_->permits_->writable( *entity_ ) ) status_.bitsIs( readOnly, false );
   return !status_.any( readOnly );
}

void Sa::doThrowReadOnly( VornAttr const & x ) const {
   throw RangeException( "attribute " + String( x.name ) + " of " + valueToStrep( entity_->fullName() ) +
                         " was written where the attribute log is read-only" );
}

// Introduction.

bool Sa::doSerializeOrphan() {
   bool introduced = false;
   if ( maySend() ) {
      NboAttrLog::FlagAnchor const anchor( status_, orphanRecord );
      U32 const type = typeNumber( type_ );
      U32 const id = out_->lastEntityId_ + 1;
      introduced = type && send( NboAttrLog::introducingRecord, NboAttrLog::orphanId, [&] {
                      out_->putU8( Out::typeSection );
                      out_->putU32( type );
                      out_->putU8( Out::argumentSection );
                      writeArguments( *out_, *entity_ );
                      out_->putU8( Out::entityIdSection );
                      out_->putU32( id );
                   } );
   }
   orphanPending_ = !introduced;
   reschedule();
   if ( !introduced ) return false;
   out_->entityIdIs( *this, out_->newEntityId() );
   doThis();
   return true;
}

/// Sends all that the entity has, to a reader that may have an older copy of it.
void Sa::doThis() {
   if ( status_.any( suppressed ) ) return;
   if ( flowOut_ ) freeResyncState( *flowOut_ ); // a walk under way begins anew
   bool const room = !status_.any( alwaysFlowOut | stopped );
   bool const grouped = room && !flowOut_ && serializeGroup();
   for ( VornAttr const * attr = type_.attributes; attr->name; ++attr ) {
      if ( !attr->logged() || ( grouped && isScalar( *attr ) ) ) continue;
      if ( attr->keyed() ) {
         flowOutIs().vornHasSyncedIs( attr->id(), false );
      } else if ( !room || flowOut_ || !serialize( *attr ) ) {
         flowOutIs().vornIsDirtyIs( attr->id(), true );
      }
   }
   if ( !flowOut_ || !room ) return;
   // What does not find room goes before others that wait, so that few entities stand half sent.
   if ( handleAttrFlowOut( 0 ) ) pendingFirst();
}

// Records.

/// Writes an attribute without a key.
bool Sa::serialize( VornAttr const & x ) {
   if ( isScalar( x ) ) {
      return send( NboAttrLog::attributeRecord, x.id(), [&] { writeAttr( *out_, object(), x ); } );
   }
   Ptr< PtrInterface > target;
   x.ops->op( &target, object(), x, GenericIf::read, nullptr, nullptr );
   if ( x.kind() == VornKind::reference ) return handlePtrSerialization( x, nullptr, &target );
   return target ? serializeMember( x, static_cast< Entity & >( *target ) ) : serializeDeletion( x, nullptr );
}

/// Writes all scalar attributes in one record, where there is plenty of room for it.
bool Sa::serializeGroup() {
   if ( std::count_if( type_.attributes, type_.attributes + type_.attributeNum, isScalar ) < 2 ) return false;
   return out_->recordAtOnce( NboAttrLog::attributeRecord, entityId(), NboAttrLog::groupId, [&] {
      std::size_t const start = out_->partBegin();
      for ( VornAttr const * attr = type_.attributes; attr->name; ++attr ) {
         if ( !isScalar( *attr ) ) continue;
         out_->putU32( attr->id() );
         writeAttr( *out_, object(), *attr );
      }
      out_->partEnd( start );
   } );
}

/// Writes what a collection has at a key: the member, or that there is none.
bool Sa::serializeKey( VornAttr const & x, void const * key ) {
   if ( x.kind() == VornKind::entityColl || x.kind() == VornKind::referenceColl ) {
      Ptr< PtrInterface > member;
      x.ops->op( &member, object(), x, GenericIf::read, key, nullptr );
      if ( x.kind() == VornKind::referenceColl ) return handlePtrSerialization( x, key, &member );
      if ( member ) return serializeMember( x, static_cast< Entity & >( *member ) );
      return serializeDeletion( x, key );
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

bool Sa::serializeDeletion( VornAttr const & x, void const * key ) {
   return send( NboAttrLog::attributeRecord, 0 - x.id(), [&] {
      if ( key ) x.keyType->methods->logOut( *out_, key );
   } );
}

/// Writes where a reference leads: to an entity that the other end knows, or nowhere. It is written again
/// when the other end comes to know the entity, or no longer does.
bool Sa::handlePtrSerialization( VornAttr const & x, void const * key, void const * reference ) {
   auto const & target = *static_cast< Ptr< PtrInterface > const * >( reference );
   Entity * const entity = dynamic_cast< Entity * >( target.ptr() );
   auto const * const adapter = entity ? out_->adapter( *entity ) : nullptr;
   U32 const id = adapter ? adapter->entityId() : 0;
   bool const sent =
        key && !id ? serializeDeletion( x, key ) : send( NboAttrLog::attributeRecord, x.id(), [&] {
           if ( key ) x.keyType->methods->logOut( *out_, key );
           out_->putU32( id );
        } );
   if ( sent && ( entity || out_->references_ ) ) {
      if ( !out_->references_ ) out_->references_ = std::make_unique< NboAttrLog::References >();
      out_->references_->referenceIs( *this, x, key, entity );
   }
   return sent;
}

/// Introduces a child or a member, whose own attributes follow; if the other end knows it, says that it is
/// still there.
bool Sa::serializeMember( VornAttr const & x, Entity & member ) {
   auto const adapter = childNboAttrLogAdapterIs( member );
   U32 const type = typeNumber( *member.fwkType() );
   if ( !type ) return false;
   U32 const known = adapter->entityId();
   U32 const id = known ? known : out_->lastEntityId_ + 1;
   bool const sent = send( NboAttrLog::introducingRecord, x.id(), [&] {
      writeArguments( *out_, member );
      out_->putU32( type );
      out_->putU32( id );
   } );
   if ( !sent || known ) return sent;
   out_->entityIdIs( *adapter, out_->newEntityId() );
   adapter->doThis();
   return true;
}

bool Sa::sendTransactionMarker( VornAttr const & x, AttrTransactionType type ) {
   return send( NboAttrLog::markerRecord, x.id(), [&] {
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
