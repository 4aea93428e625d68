// The outgoing half of an adapter: changes of its entity become records.

#include "NboAttrLogReferences.h"
#include "Vorn/ReflectOps.h"
#include "Vorn/StreamAdapter.h"

#include <algorithm>

namespace Vorn {

VORN_OBJECT_RECORD( Vorn, Entity::VornNboAttrLogSa, nullptr )

using NboAttrLog::Out;
using SaOut = Entity::VornNboAttrLogSa;

namespace {

/// Sets a flag for as long as it stands.
class FlagAnchor {
 public:
   FlagAnchor( Vorn_BitSet & flags, U32 flag ) noexcept : flags_( flags ), old_( flags ), flag_( flag ) {
      flags_.bitsIs( flag, true );
   }
   ~FlagAnchor() { flags_.bitsIs( flag_, old_.any( flag_ ) ); }
   FlagAnchor( FlagAnchor const & ) = delete;
   FlagAnchor & operator=( FlagAnchor const & ) = delete;

 private:
   Vorn_BitSet & flags_;
   Vorn_BitSet old_;
   U32 flag_;
};

/// Attributes that one record sets, without a key and without an entity.
bool isScalar( VornAttr const & attr ) noexcept {
   return attr.logged() && !attr.keyed() && attr.kind() != VornKind::child &&
          attr.kind() != VornKind::reference;
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

Ptr< StreamAdapter > Entity::vornNboAttrLogSa( Ptr< Out > const & out ) const {
   return Ptr< StreamAdapter >( out ? out->adapter( *this ) : nullptr );
}

Ptr< StreamAdapter > Entity::vornNboAttrLogSaIs( Vorn_BitSet flags, unsigned level, Ptr< Out > const & out ) {
   if ( !out ) return nullptr;
   if ( auto * const present = out->adapter( *this ) ) {
      present->flagsIs( flags );
      return Ptr< StreamAdapter >( present );
   }
   if ( Ptr< Entity > const owner = parent(); owner && out->adapter( *owner ) ) {
      // A child of what is on the log comes through its parent.
      VornType const & type = *owner->fwkType();
      if ( type.childAttrLogIs ) type.childAttrLogIs( &type, parentAttrName().charPtr(), *owner, out );
      if ( out->adapter( *this ) ) return vornNboAttrLogSaIs( flags, level, out );
   }
   auto const adapter = out->newAdapter( *this, flags, level, nullptr );
   if ( !flags.any( StreamAdapter::suppressed ) ) adapter->doSerializeOrphan();
   return adapter;
}

Ptr< StreamAdapter > NboAttrLog::childAttrLogIs( VornType const * type, char const * attrName,
                                                 Entity & parent, Ptr< Out > const & out ) {
   auto * const parentAdapter = out ? out->adapter( parent ) : nullptr;
   Ptr< StreamAdapter > last;
   for ( VornAttr const * attr = type->attributes; parentAdapter && attr->name; ++attr ) {
      if ( !attr->logged() || !attr->instantiating() || std::strcmp( attr->name, attrName ) ) continue;
      void * const object = static_cast< PtrInterface * >( &parent );
      Ptr< PtrInterface > child;
      if ( attr->keyed() ) {
         for ( GenericIf::Iterator it( object, *attr ); it; it.advance() ) {
            it.object( &child );
            last = parentAdapter->childIs( static_cast< Entity & >( *child ) );
         }
      } else {
         attr->ops->op( &child, object, *attr, GenericIf::read, nullptr, nullptr );
         if ( child ) last = parentAdapter->childIs( static_cast< Entity & >( *child ) );
      }
   }
   return last;
}

Ptr< SaOut > SaOut::childIs( Entity & child ) {
   if ( auto * const present = out_->adapter( child ) ) {
      if ( present->parent_ == this ) return Ptr< SaOut >( present );
      present->close(); // it was on the log by itself, and now comes as part of this entity
   }
   Vorn_BitSet const inherited( flags_.word() & Vorn_BitSet::inheritedFlagsMask() );
   return out_->newAdapter( child, inherited, level_ + 1, this );
}

SaOut::VornNboAttrLogSa( Entity & entity, Out & out, Vorn_BitSet flags, unsigned level,
                         VornNboAttrLogSa * parent )
     : StreamAdapter( Vorn_BitSet( flags.word() & Vorn_BitSet::notificationBitMask() ), level ),
       entity_( &entity ), type_( *entity.fwkType() ), out_( &out ), observer_( *this ), parent_( parent ) {
   if ( !parent_ ) return;
   nextChild_ = parent_->firstChild_;
   if ( nextChild_ ) nextChild_->prevChild_ = this;
   parent_->firstChild_ = this;
}

SaOut::~VornNboAttrLogSa() { observer_.adapterDel(); }

void SaOut::hasNotificationActiveIs( bool active ) { observer_.hasNotificationActiveIs( active ); }

void SaOut::flagsIs( Vorn_BitSet flags ) {
   U32 const old = flags_.word();
   bool const wasSuppressed = flags_.any( suppressed );
   flags_ = Vorn_BitSet( ( ( flags.word() ^ old ) & Vorn_BitSet::notificationBitMask() ) ^ old );
   for ( auto * child = firstChild_; child; child = child->nextChild_ ) {
      child->flagsIs( flags );
   }
   if ( !wasSuppressed || flags_.any( suppressed ) ) return;
   // What changed in the meantime is not known.
   if ( entityId() ) {
      doThis();
   } else if ( !parent_ ) {
      doSerializeOrphan();
   }
}

/// Takes the entity off the log, with all below it.
void SaOut::close() {
   if ( !out_ ) return;
   Ptr< VornNboAttrLogSa > const hold( this );
   observer_.adapterDel();
   while ( firstChild_ ) {
      firstChild_->close();
   }
   leaveParent();
   pendingIs( false );
   flowOut_.reset();
   std::exchange( out_, nullptr )->adapterDel( *this );
}

void SaOut::leaveParent() {
   if ( !parent_ ) return;
   ( prevChild_ ? prevChild_->nextChild_ : parent_->firstChild_ ) = nextChild_;
   if ( nextChild_ ) nextChild_->prevChild_ = prevChild_;
   parent_ = nextChild_ = prevChild_ = nullptr;
}

void SaOut::pendingIs( bool pending ) {
   if ( pending == pending_ ) return;
   pending_ = pending;
   if ( pending ) {
      nextPending_ = nullptr;
      prevPending_ = out_->lastPending_;
      ( prevPending_ ? prevPending_->nextPending_ : out_->firstPending_ ) = this;
      out_->lastPending_ = this;
      return;
   }
   ( prevPending_ ? prevPending_->nextPending_ : out_->firstPending_ ) = nextPending_;
   ( nextPending_ ? nextPending_->prevPending_ : out_->lastPending_ ) = prevPending_;
   nextPending_ = prevPending_ = nullptr;
}

/// Puts the adapter in front of the others that wait.
void SaOut::pendingFirst() {
   pendingIs( false );
   pending_ = true;
   nextPending_ = out_->firstPending_;
   ( nextPending_ ? nextPending_->prevPending_ : out_->lastPending_ ) = this;
   out_->firstPending_ = this;
}

/// Whether the member was named in the transaction that is running; until then it does not send.
void SaOut::confirmedIs( bool confirmed ) {
   flags_.bitsIs( unconfirmed, !confirmed );
   pendingIs( confirmed && flowOut_ );
}

SaOut::FlowOut & SaOut::flowOutIs() {
   if ( !flowOut_ ) {
      flowOut_ = std::make_unique< FlowOut >( type_ );
      flags_.bitsIs( flowOutPresent, true );
   }
   if ( !flags_.any( stopped ) ) pendingIs( true );
   return *flowOut_;
}

VornAttr const * SaOut::attribute( U32 id ) const noexcept {
   // A type's own attributes follow those of `Entity` in one run, so the place is nearly always known.
   U32 const place = 5 + id - Entity::vornChildFirstId;
   if ( place < type_.attributeNum && type_.attributes[place].id() == id ) return &type_.attributes[place];
   return type_.attribute( id );
}

void SaOut::onAttribute( U32 attributeId, void const * key ) {
   VornAttr const * const attr = attribute( attributeId );
   if ( !attr || !attr->logged() || flags_.any( suppressed ) ) return;
   if ( flowIn_ && handlingFlowInFor( *attr, key ) ) return;
   if ( !flags_.any( hasEntityId ) ) return; // all is sent when the entity has been introduced
   if ( flags_.any( readOnly ) ) doThrowReadOnly( *attr );
   if ( attr->keyed() ) {
      keyChanged( *attr, key );
   } else if ( ( flowOut_ && flowOut_->vornIsDirty( attributeId ) ) ||
               flags_.any( stopped | alwaysFlowOut ) || !serialize( *attr ) ) {
      flowOutIs().vornIsDirtyIs( attributeId, true );
   }
}

void SaOut::doThrowReadOnly( VornAttr const & attr ) const {
   throw RangeException( "attribute " + String( attr.name ) + " of " + valueToStrep( entity_->fullName() ) +
                         " was written where the attribute log is read-only" );
}

void SaOut::onNotificationException( std::exception_ptr exception ) {
   if ( out_ && !out_->exception_ ) out_->exception_ = std::move( exception );
}

void SaOut::onFwkActivity() {
   // A member that was taken out of its collection is no longer ours to tell of; the collection's adapter
   // tells that it has gone.
   if ( parent_ && entity_->parent().ptr() != &parent_->entity() ) close();
}

/// Whether a change of a collection may go out before what waits already.
bool SaOut::prepareImmediateTransmission( VornAttr const & attr ) const {
   return !flags_.any( stopped | alwaysFlowOut ) && ( !flowOut_ || flowOut_->vornHasSynced( attr.id() ) );
}

void SaOut::keyChanged( VornAttr const & attr, void const * key ) {
   if ( !prepareImmediateTransmission( attr ) || !serializeSing( attr, key ) ) {
      keyDirtyIs( attr, key );
   } else if ( flowOut_ && flowOut_->hasDirtyCollKeys() ) {
      flowOut_->dirtyKeys( attr.id() ).erase( GenericIf::Value( attr.keyType, key ) );
   }
}

void SaOut::keyDirtyIs( VornAttr const & attr, void const * key ) {
   U32 const id = attr.id();
   auto & flowOut = flowOutIs();
   // A walk that is still to come sends every key.
   if ( !flowOut.vornHasSynced( id ) && !flowOut.walking( id ) ) return;
   auto & keys = flowOut.dirtyKeys( id );
   keys.insert( GenericIf::Value( attr.keyType, key ) );
   // Keys that come and go while the other end does not listen would grow without end: then all members are
   // sent anew, which says what has gone as well.
   U32 members = 0;
   attr.ops->op( &members, object(), attr, GenericIf::members, nullptr, nullptr );
   if ( keys.size() <= members + FlowOut::spareDirtyKeys ) return;
   keys.clear();
   if ( flowOut.walking( id ) ) {
      flowOut.bookmarkDeq();
      flowOut.walkedAllIs( false );
   }
   flowOut.vornHasSyncedIs( id, false );
}

/// Sends all that the entity has, to a reader that may have an older copy of it.
void SaOut::doThis() {
   bool const room = !flags_.any( alwaysFlowOut | stopped );
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

U32 SaOut::handleAttrFlowOut( U32 attributeId ) {
   FlagAnchor const anchor( flags_, handlingFlowOut );
   auto & flowOut = *flowOut_;
   if ( flowOut.walking() ) attributeId = flowOut.attrId();
   for ( VornAttr const * attr = type_.attributes; attr->name; ++attr ) {
      U32 const id = attr->id();
      if ( !attr->logged() || id < attributeId ) continue;
      flowOut.attrIdIs( id );
      if ( attr->keyed() ) {
         if ( !serializeColl( *attr ) ) return id;
      } else if ( flowOut.vornIsDirty( id ) ) {
         if ( !serialize( *attr ) ) return id;
         flowOut.vornIsDirtyIs( id, false );
      }
   }
   flowOut.attrIdIs( 0 );
   if ( !flowOut.hasDirtyAttributes() && !flowOut.hasDirtyCollKeys() ) {
      flowOut_.reset();
      flags_.bitsIs( flowOutPresent, false );
      pendingIs( false );
   }
   return 0;
}

std::vector< U32 > SaOut::attrIdsReqSync() const {
   std::vector< U32 > ids;
   for ( VornAttr const * attr = type_.attributes; attr->name; ++attr ) {
      if ( attr->logged() && attr->keyed() ) ids.push_back( attr->id() );
   }
   ids.push_back( 0 );
   return ids;
}

bool SaOut::doSerializeOrphan() {
   U32 const type = out_->typeNumber( type_ );
   U32 const id = out_->lastEntityId_ + 1;
   FlagAnchor const anchor( flags_, orphanRecord );
   orphanPending_ = !type || !out_->record( NboAttrLog::introducingRecord, 0, NboAttrLog::orphanId, [&] {
      out_->putU8( Out::typeSection );
      out_->putU32( type );
      out_->putU8( Out::argumentSection );
      writeArguments( *out_, *entity_ );
      out_->putU8( Out::entityIdSection );
      out_->putU32( id );
   } );
   pendingIs( orphanPending_ );
   if ( orphanPending_ ) return false;
   out_->entityIdIs( *this, out_->newEntityId() );
   doThis();
   return true;
}

/// Writes an attribute without a key.
bool SaOut::serialize( VornAttr const & attr ) {
   if ( isScalar( attr ) ) {
      return out_->record( NboAttrLog::attributeRecord, entityId(), attr.id(),
                           [&] { writeAttr( *out_, object(), attr ); } );
   }
   Ptr< PtrInterface > target;
   attr.ops->op( &target, object(), attr, GenericIf::read, nullptr, nullptr );
   if ( attr.kind() == VornKind::reference ) return serializeReference( attr, nullptr, &target );
   return target ? serializeMember( attr, static_cast< Entity & >( *target ) )
                 : serializeDeletion( attr, nullptr );
}

/// Writes all scalar attributes in one record, where there is plenty of room for it.
bool SaOut::serializeGroup() {
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
bool SaOut::serializeSing( VornAttr const & attr, void const * key ) {
   if ( attr.kind() == VornKind::entityColl || attr.kind() == VornKind::referenceColl ) {
      Ptr< PtrInterface > member;
      attr.ops->op( &member, object(), attr, GenericIf::read, key, nullptr );
      if ( attr.kind() == VornKind::referenceColl ) return serializeReference( attr, key, &member );
      if ( member ) return serializeMember( attr, static_cast< Entity & >( *member ) );
      return serializeDeletion( attr, key );
   }
   bool present = false;
   attr.ops->op( &present, object(), attr, GenericIf::has, key, nullptr );
   if ( !present ) return serializeDeletion( attr, key );
   return out_->record( NboAttrLog::attributeRecord, entityId(), attr.id(), [&] {
      attr.keyType->methods->logOut( *out_, key );
      if ( attr.isSet() ) return;
      GenericIf::Value value( attr.type );
      attr.ops->op( value.data(), object(), attr, GenericIf::read, key, nullptr );
      attr.type->methods->logOut( *out_, value.data() );
   } );
}

bool SaOut::serializeDeletion( VornAttr const & attr, void const * key ) {
   return out_->record( NboAttrLog::attributeRecord, entityId(), 0 - attr.id(), [&] {
      if ( key ) attr.keyType->methods->logOut( *out_, key );
   } );
}

/// Writes where a reference leads: to an entity that the other end knows, or nowhere. It is written again
/// when the other end comes to know the entity, or no longer does.
bool SaOut::serializeReference( VornAttr const & attr, void const * key, void const * reference ) {
   auto const & target = *static_cast< Ptr< PtrInterface > const * >( reference );
   Entity * const entity = dynamic_cast< Entity * >( target.ptr() );
   auto const * const adapter = entity ? out_->adapter( *entity ) : nullptr;
   U32 const id = adapter ? adapter->entityId() : 0;
   bool const sent = key && !id ? serializeDeletion( attr, key )
                                : out_->record( NboAttrLog::attributeRecord, entityId(), attr.id(), [&] {
                                     if ( key ) attr.keyType->methods->logOut( *out_, key );
                                     out_->putU32( id );
                                  } );
   if ( sent && ( entity || out_->references_ ) ) {
      if ( !out_->references_ ) out_->references_ = std::make_unique< NboAttrLog::References >();
      out_->references_->referenceIs( *this, attr, key, entity );
   }
   return sent;
}

/// Introduces a child or a member; if the other end knows it, says that it is still there.
bool SaOut::serializeMember( VornAttr const & attr, Entity & member ) {
   U32 const type = out_->typeNumber( *member.fwkType() );
   if ( !type ) return false;
   auto const * const present = out_->adapter( member );
   U32 const known = present && present->parent_ == this ? present->entityId() : 0;
   U32 const id = known ? known : out_->lastEntityId_ + 1;
   bool const sent = out_->record( NboAttrLog::introducingRecord, entityId(), attr.id(), [&] {
      writeArguments( *out_, member );
      out_->putU32( type );
      out_->putU32( id );
   } );
   if ( !sent || known ) return sent;
   auto const fresh = childIs( member );
   out_->entityIdIs( *fresh, out_->newEntityId() );
   fresh->doThis();
   return true;
}

/// Sends all members between two markers, then the keys that changed meanwhile. False where room runs out.
bool SaOut::serializeColl( VornAttr const & attr ) {
   auto & flowOut = *flowOut_;
   U32 const id = attr.id();
   if ( !flowOut.vornHasSynced( id ) ) {
      if ( !flowOut.walkedAll() ) {
         auto const start = flowOut.bookmarkDeq();
         if ( !start && !sendTransactionMarker( attr, transactionBegin ) ) return false;
         for ( GenericIf::Iterator it( object(), attr, start ? start->data() : nullptr ); it; it.advance() ) {
            GenericIf::Value key( attr.keyType );
            it.key( key.data() );
            bool sent;
            if ( attr.kind() == VornKind::entityColl ) {
               Ptr< PtrInterface > member;
               it.object( &member );
               sent = serializeMember( attr, static_cast< Entity & >( *member ) );
            } else {
               sent = serializeSing( attr, key.data() );
            }
            if ( !sent ) {
               flowOut.bookmarkIs( std::make_unique< GenericIf::Value >( key ) );
               return false;
            }
         }
         flowOut.walkedAllIs( true );
      }
      if ( !sendTransactionMarker( attr, transactionEnd ) ) return false;
      flowOut.walkedAllIs( false );
      flowOut.vornHasSyncedIs( id, true );
   }
   if ( !flowOut.hasDirtyCollKeys() ) return true;
   auto & keys = flowOut.dirtyKeys( id );
   while ( !keys.empty() ) {
      // The record may make other keys dirty, so the key is not left in the set while it is written.
      auto node = keys.extract( keys.begin() );
      if ( serializeSing( attr, node.value().data() ) ) continue;
      keys.insert( std::move( node ) );
      return false;
   }
   return true;
}

bool SaOut::sendTransactionMarker( VornAttr const & attr, AttrTransactionType type ) {
   return out_->record( NboAttrLog::markerRecord, entityId(), attr.id(), [&] {
      out_->putU8( type );
      out_->putU32( 0 );
      if ( attr.kind() != VornKind::queue || type != transactionBegin ) return;
      U32 indices[2];
      attr.ops->op( indices, object(), attr, GenericIf::indices, nullptr, nullptr );
      out_->putU32( indices[0] );
      out_->putU32( indices[1] );
   } );
}

// The observer.

SaOut::VornNboAttrLogSaAdapter_::VornNboAttrLogSaAdapter_( VornNboAttrLogSa & adapter )
     : adapter_( &adapter ) {
   watchesAllIs( true );
   isRegisteredNotifieeIs( true );
   notifierIs( Ptr< PtrInterface const >( &adapter.entity() ) );
   isWeakReferenceIs( true );
}

void SaOut::VornNboAttrLogSaAdapter_::handleNotification( U32 attributeId, void const * key ) {
   if ( !adapter_ ) return;
   Ptr< VornNboAttrLogSa > const adapter( adapter_ );
   try {
      adapter->onAttribute( attributeId, key );
   } catch ( ... ) {
      adapter->onNotificationException( std::current_exception() );
   }
}

void SaOut::VornNboAttrLogSaAdapter_::vornFwkActivity() {
   if ( !adapter_ ) return;
   Ptr< VornNboAttrLogSa > const adapter( adapter_ );
   adapter->onFwkActivity();
}

void SaOut::VornNboAttrLogSaAdapter_::adapterDel() {
   if ( !std::exchange( adapter_, nullptr ) ) return;
   isWeakReferenceIs( false );
   isRegisteredNotifieeIs( false );
   notifierIs( nullptr );
}

// The flow-out.

namespace NboAttrLog {

FlowOut::FlowOut( VornType const & type )
     : type_( &type ), dirty_( type.attributeNum ), unsynced_( type.attributeNum ) {}

U32 FlowOut::index( U32 attributeId ) const noexcept {
   U32 const place = 5 + attributeId - Entity::vornChildFirstId;
   if ( place < type_->attributeNum && type_->attributes[place].id() == attributeId ) return place;
   return U32( type_->attribute( attributeId ) - type_->attributes );
}

void FlowOut::bitIs( Bits & bits, U32 & count, U32 attributeId, bool set ) noexcept {
   auto bit = bits[index( attributeId )];
   if ( bit == set ) return;
   bit = set;
   set ? ++count : --count;
}

bool FlowOut::hasDirtyCollKeys() const noexcept {
   return std::any_of( keys_.begin(), keys_.end(), []( auto const & keys ) { return !keys.second.empty(); } );
}

void FlowOut::bookmarkIs( std::unique_ptr< GenericIf::Value > key ) {
   FlowOut * const rsc = this;
   VORN_ASSERT( !rsc->bookmark() );
   bookmark_ = std::move( key );
}

} // namespace NboAttrLog

} // namespace Vorn
