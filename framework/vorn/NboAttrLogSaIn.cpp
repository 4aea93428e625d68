// The incoming half of an adapter: records become calls of its entity's mutators.

#include "Vorn/Impl/NboAttrLogIn.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogState.h"
#include "Vorn/Strep.h"

namespace Vorn {

using NboAttrLog::Arguments;
using NboAttrLog::FlowIn;
using NboAttrLog::In;
using NboAttrLog::Transactions;
using Sa = Entity::VornNboAttrLogSa;

namespace {

[[noreturn]] void refuse( String const & message ) { throw AttrLogRecordException( message ); }

} // namespace

bool NboAttrLog::FlowIn::asksFor( Entity const & entity ) const {
   Ptr< PtrInterface > member;
   attr_.ops->op( &member, static_cast< PtrInterface * >( &adapter_.entity() ), attr_, GenericIf::read, key_,
                  nullptr );
   return member.ptr() == &entity;
}

void Sa::checkWritable( U32 attributeId ) const {
   if ( status_.any( remoteReadOnly ) && !allowWriteFromReadOnlyRemote( attributeId ) ) {
      throwWriteUpdateFromReadOnlyProxyException();
   }
}

bool Sa::allowWriteFromReadOnlyRemote( U32 attributeId ) const {
   auto * const permits = out_->permits();
   return permits && permits->writeFromReadOnlyRemote( entity(), attributeId );
}

void Sa::throwWriteUpdateFromReadOnlyProxyException() { refuse( "a change came in from a read-only copy" ); }

/// Calls a mutator in the name of the other end. What an observer made of it meanwhile goes out.
template< class Call >
void Sa::apply( VornAttr const & attr, void const * key, Call const & call ) {
   bool again;
   {
      FlowIn flowIn( out_->state(), *this, attr, key );
      call( flowIn );
      again = flowIn.writtenAgain();
   }
   if ( !again || !out_ ) return;
   try {
      handleNotification( attr.id(), key );
   } catch ( ... ) {
      onNotificationException();
   }
}

void Sa::doHandleAttrDeserialization( U32 attributeId, bool introducing, unsigned, Ptr< In > const & in ) {
   // Whoever calls holds the adapter, whatever observers do.
   VornAttr const * const scalar = attribute( attributeId ); // as nearly every record is about one
   if ( scalar && scalar->logged() && scalar->kind() == VornKind::mutableAttr && !introducing ) [[likely]] {
      checkWritable( attributeId );
      scalarFromLog( *scalar, *in );
   } else {
      otherFromLog( attributeId, introducing, in );
   }
}

void Sa::otherFromLog( U32 attributeId, bool introducing, Ptr< In > const & in ) {
   bool const isGroup = attributeId == NboAttrLog::groupId || attributeId == 0 - NboAttrLog::groupId;
   bool const deletion = attributeId & 0x80000000;
   VornAttr const * const attr =
        isGroup ? nullptr : &loggedAttribute( deletion ? 0 - attributeId : attributeId );
   if ( introducing != ( attr && attr->instantiating() && !deletion ) ) {
      refuse( "a record is of the wrong kind for its attribute" );
   }
   if ( isGroup ) {
      groupFromLog( in );
      return;
   }
   checkWritable( attr->id() );
   if ( deletion ) {
      deletionFromLog( *attr, *in, nullptr );
   } else if ( attr->instantiating() ) {
      memberFromLog( *attr, *in, nullptr );
   } else {
      valueFromLog( *attr, *in, nullptr );
   }
}

VornAttr const & Sa::loggedAttribute( U32 id ) const {
   VornAttr const * const attr = attribute( id );
   if ( !attr || !attr->logged() ) doBaseVornNboAttrLogSaMsg( id );
   return *attr;
}

/// An attribute that is none of the type's logged ones: those of `Entity` are not logged either.
void Sa::doBaseVornNboAttrLogSaMsg( U32 attributeId ) const {
   refuse( format( "attribute %#x of %s is not logged", attributeId, type().name ) );
}

/// What is known of a group that is being read. All of it is read and checked before the first record is
/// applied, so that a bad one leaves all as they were.
struct Sa::GroupState {
   bool write = false;
   U32 records = 0;      // all of the group
   U32 lastEntityId = 0; // the highest number that came in, the group's included
};

/// Several records of collections of one entity under one head.
void Sa::groupFromLog( Ptr< In > const & in ) {
   U16 const first = in->nextU16();
   U16 const end = in->nextU16();
   if ( first != 2 * sizeof( U16 ) || end != in->left() + first ) refuse( "a group has impossible bounds" );
   in->entriesAre( true );
   GroupState group;
   group.lastEntityId = in->demuxer().lastEntityId();
   U8 const * const place = in->place();
   while ( in->left() ) {
      entryFromLog( *in, group );
   }
   in->placeIs( place );
   group.write = true;
   while ( in->left() && out_ ) {
      entryFromLog( *in, group );
   }
}

/// One entry: a member, or a deletion. A word that names no logged attribute is passed over.
void Sa::entryFromLog( In & in, GroupState & group ) {
   U32 const attributeId = in.nextAttributeId();
   bool const deletion = attributeId & 0x80000000;
   VornAttr const * const attr = attribute( deletion ? 0 - attributeId : attributeId );
   if ( !attr || !attr->logged() ) return;
   if ( !attr->keyed() ) refuse( "a group holds records of collections only" );
   checkWritable( attr->id() );
   if ( !group.write ) ++group.records;
   if ( deletion ) {
      deletionFromLog( *attr, in, &group );
   } else if ( attr->kind() == VornKind::entityColl ) {
      memberFromLog( *attr, in, &group );
   } else {
      valueFromLog( *attr, in, &group );
   }
}

void Sa::scalarFromLog( VornAttr const & attr, In & in ) {
   apply( attr, nullptr,
          [&]( FlowIn & ) { attr.ops->op( &in, object(), attr, GenericIf::fromLog, nullptr, nullptr ); } );
}

/// Refuses a key for which a collection has no room: it is not the other end that ends this process.
void Sa::checkRoom( VornAttr const & attr, void const * key, GroupState const * group ) {
   if ( !attr.keyed() || attr.kind() == VornKind::queue ) return;
   U32 const others = group && !group->write ? group->records - 1 : 0;
   U32 members = 0;
   attr.ops->op( &members, object(), attr, GenericIf::members, nullptr, nullptr );
   if ( members + others < HashMap2018BktHdr::maxSlots ) return;
   bool crowded = false;
   void const * const arg = &others;
   attr.ops->op( &crowded, object(), attr, GenericIf::crowded, key, &arg );
   if ( crowded ) refuse( String( "too many keys of one hash for attribute " ) + attr.name );
}

/// A member of a collection that is no entity of its own, or a single reference.
void Sa::valueFromLog( VornAttr const & attr, In & in, GroupState * group ) {
   std::optional< GenericIf::Value > key;
   if ( attr.keyed() ) {
      key.emplace( attr.keyType );
      attr.keyType->methods->logIn( in, key->data() );
   }
   void const * const at = key ? key->data() : nullptr;
   GenericIf::Value value( attr.type );
   void const * const arg = value.data();
   bool const isReference = attr.kind() == VornKind::reference || attr.kind() == VornKind::referenceColl;
   bool leads = true;
   if ( isReference ) {
      U8 const * const place = in.place();
      if ( !in.nextU32() && at ) refuse( "a collection of references holds none to nobody" );
      in.placeIs( place );
      auto const entity = in.nextEntity();
      leads = bool( entity );
      if ( leads && !entity->fwkType()->isDerived( attr.type ) ) {
         NboAttrLog::ensureCorrectType( *entity->fwkType(), *attr.type );
      }
      *static_cast< Ptr< PtrInterface > * >( value.data() ) = entity;
      bool own = true;
      attr.ops->op( &own, object(), attr, GenericIf::ownKey, at, &arg );
      if ( !own ) refuse( "a reference stands under a key that is not its own" );
   } else if ( attr.isSet() ) {
      *static_cast< bool * >( value.data() ) = true;
   } else {
      attr.type->methods->logIn( in, value.data() );
   }
   in.endIs();
   checkRoom( attr, at, group );
   if ( group && !group->write ) return;
   if ( at && !leads ) {
      memberDel( attr, at );
      return;
   }
   apply( attr, at, [&]( FlowIn & ) {
      if ( attr.kind() == VornKind::queue ) {
         out_->state().transactions.indexIs( *this, attr.id(), *static_cast< U32 const * >( at ), true );
      } else if ( at ) {
         attr.ops->op( nullptr, object(), attr, GenericIf::clearMark, at, nullptr );
      }
      attr.ops->op( nullptr, object(), attr, GenericIf::write, at, &arg );
   } );
}

void Sa::memberFromLog( VornAttr const & attr, In & in, GroupState * group ) {
   Arguments const arguments( in, attr.memberCtorArgs );
   NboAttrLog::ensureCorrectType( in.nextType(), *attr.type );
   U32 const id = in.nextEntityId();
   in.endIs();
   void const * const key = attr.keyed() ? arguments.pointers()[attr.memberKeyIndex()] : nullptr;
   checkRoom( attr, key, group );
   if ( group && !group->write ) {
      if ( id != group->lastEntityId + 1 )
         refuse( "a group holds a member with another number than the next" );
      group->lastEntityId = id;
      return;
   }
   auto * const known = out_->state().adapterById( id );
   Ptr< PtrInterface > member;
   // In a collection it is looked up once, by the mutator.
   if ( known || !key ) attr.ops->op( &member, object(), attr, GenericIf::read, key, nullptr );
   if ( known ) {
      // Said again of a member that is known, so it must be that one.
      if ( &known->entity() != member.ptr() ) refuse( "a member comes in with the number of another entity" );
   } else if ( in.demuxer().gone( id ) ) {
      return;
   } else {
      in.demuxer().newEntityIdIs( id );
   }
   apply( attr, key, [&]( FlowIn & flowIn ) {
      flowIn.asks();
      auto const del = [&] {
         flowIn.furtherChange();
         attr.ops->op( nullptr, object(), attr, GenericIf::del, key, nullptr );
      };
      auto const make = [&] {
         attr.ops->op( &member, object(), attr, GenericIf::write, key, arguments.pointers() );
      };
      try {
         Expect const expect( Exception::nameInUse );
         // A single child of the same name is taken as it is, so its other arguments are compared here.
         if ( !key && member && !arguments.areThoseOf( static_cast< Entity & >( *member ) ) ) {
            del();
         }
         make();
      } catch ( NameInUseException const & ) {
         del();
         make();
      }
   } );
   auto & entity = static_cast< Entity & >( *member );
   // An observer may have taken it out again.
   if ( out_ && entity.parent().ptr() == &this->entity() ) in.demuxer().doEntityIdIs( entity, id, this );
}

void Sa::deletionFromLog( VornAttr const & attr, In & in, GroupState * group ) {
   std::optional< GenericIf::Value > key;
   if ( attr.keyed() ) {
      key.emplace( attr.keyType );
      attr.keyType->methods->logIn( in, key->data() );
   } else if ( attr.kind() != VornKind::child ) {
      refuse( "an attribute that cannot be deleted is deleted" );
   }
   in.endIs();
   if ( group && !group->write ) return;
   void const * const at = key ? key->data() : nullptr;
   memberDel( attr, at );
   if ( out_ && attr.kind() == VornKind::queue ) indexPassed( attr, *static_cast< U32 const * >( at ) );
}

/// An index was given that has gone again: the queue goes on behind it as the original does. Where the first
/// index of an empty one lags behind after that, the end of the sync sets it right.
void Sa::indexPassed( VornAttr const & attr, U32 index ) {
   out_->state().transactions.indexIs( *this, attr.id(), index, false );
   U32 indices[2];
   attr.ops->op( indices, object(), attr, GenericIf::indices, nullptr, nullptr );
   if ( std::int32_t( index - indices[1] ) < 0 ) return;
   indices[0] = indices[1] = index + 1;
   void const * const arg = indices;
   attr.ops->op( nullptr, object(), attr, GenericIf::indicesIs, nullptr, &arg );
}

void Sa::memberDel( VornAttr const & attr, void const * key ) {
   apply( attr, key,
          [&]( FlowIn & ) { attr.ops->op( nullptr, object(), attr, GenericIf::del, key, nullptr ); } );
}

void StreamAdapter::doHandleAttrTransaction( U32, AttrTransactionType, unsigned,
                                             Ptr< NboAttrLog::In > const & ) {
   refuse( "a marker that cannot be" );
}

void Sa::doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, unsigned word,
                                  Ptr< In > const & in ) {
   VornAttr const * const attr = attribute( attributeId );
   if ( !attr || !attr->logged() || !attr->keyed() || word ||
        ( type != transactionBegin && type != transactionEnd ) ) {
      StreamAdapter::doHandleAttrTransaction( attributeId, type, word, in );
      return;
   }
   checkWritable( attributeId );
   U32 indices[2] = {}; // the first and the next of a queue
   if ( attr->kind() == VornKind::queue && type == transactionBegin ) {
      indices[0] = in->nextU32();
      indices[1] = in->nextU32();
   }
   in->endIs();
   Ptr< VornNboAttrLogSa > const hold( this ); // and with it the entity, which an observer may drop
   auto & transactions = out_->state().transactions;
   std::unique_ptr< Transactions::Indices > seen;
   if ( type == transactionBegin ) {
      if ( !transactions.begin( *this, *attr ) ) refuse( "a resynchronisation begins again and again" );
      attr->kind() == VornKind::queue ? queueBegins( *attr, indices ) : markAll( *attr );
   } else if ( transactions.end( *this, attributeId, seen ) ) {
      seen ? queueEnds( *attr, *seen ) : sweep( *attr );
   }
}

void Sa::markAll( VornAttr const & attr ) {
   if ( attr.kind() != VornKind::entityColl ) {
      attr.ops->op( nullptr, object(), attr, GenericIf::markAll, nullptr, nullptr );
      return;
   }
   for ( GenericIf::Iterator it( object(), attr ); it; it.advance() ) {
      Ptr< PtrInterface > member;
      it.object( &member );
      if ( auto * const adapter = out_->adapter( static_cast< Entity & >( *member ) ) ) {
         adapter->confirmedIs( false );
      }
   }
}

/// Deletes what was not named between the markers.
void Sa::sweep( VornAttr const & attr ) {
   for ( GenericIf::Iterator it( object(), attr ); it && out_; it.advance() ) {
      bool stale;
      if ( attr.kind() == VornKind::entityColl ) {
         Ptr< PtrInterface > member;
         it.object( &member );
         auto const * const adapter = out_->adapter( static_cast< Entity & >( *member ) );
         stale = !adapter || adapter->flags().any( unconfirmed );
      } else {
         stale = it.markedForDeletion();
      }
      if ( !stale ) continue;
      GenericIf::Value key( attr.keyType );
      it.key( key.data() );
      NboAttrLog::FlagAnchor const anchor( status_, applyingLog );
      memberDel( attr, key.data() );
   }
}

/// Deletes the elements of a queue whose indices are not wanted.
template< class Wanted >
void Sa::indicesKeep( VornAttr const & attr, Wanted const & wanted ) {
   for ( GenericIf::Iterator it( object(), attr ); it && out_; it.advance() ) {
      U32 index;
      it.key( &index );
      if ( !wanted( index ) ) memberDel( attr, &index );
   }
}

/// A queue has no marks: the indices that come in are remembered, and at the end all others go. Its indices
/// go on where those of the original do.
void Sa::queueBegins( VornAttr const & attr, U32 const * indices ) {
   // What is left rises, as it does in the original; where the indices have wrapped, nothing is.
   U32 least = indices[0];
   indicesKeep( attr, [&]( U32 index ) {
      if ( index < least || index >= indices[1] ) return false;
      least = index + 1;
      return true;
   } );
   void const * const arg = indices;
   if ( out_ ) attr.ops->op( nullptr, object(), attr, GenericIf::indicesIs, nullptr, &arg );
}

void Sa::queueEnds( VornAttr const & attr, Transactions::Indices const & seen ) {
   indicesKeep( attr, [&]( U32 index ) { return seen.has( index ); } );
   U32 members = 0;
   if ( out_ ) attr.ops->op( &members, object(), attr, GenericIf::members, nullptr, nullptr );
   if ( !out_ || members ) return;
   // An element that was announced may have gone before it came: an empty queue begins where it goes on.
   U32 now[2];
   attr.ops->op( now, object(), attr, GenericIf::indices, nullptr, nullptr );
   now[0] = now[1];
   void const * const arg = now;
   attr.ops->op( nullptr, object(), attr, GenericIf::indicesIs, nullptr, &arg );
}

} // namespace Vorn
