// The incoming half of an adapter: records become calls of its entity's mutators.

#include "Vorn/NboAttrLogIn.h"

#include "NboAttrLogAnchors.h"
#include "Vorn/Strep.h"

namespace Vorn {

using NboAttrLog::Arguments;
using NboAttrLog::FlowIn;
using NboAttrLog::In;
using Sa = Entity::VornNboAttrLogSa;

namespace {

[[noreturn]] void refuse( String const & message ) { throw AttrLogRecordException( message ); }

} // namespace

/// What is being applied to an entity: a change that the observer reports of it came from the other end and
/// does not go back.
class NboAttrLog::FlowIn {
 public:
   /// A change of one attribute, at a key for a collection; without an attribute, of the arguments of a
   /// member that is asked for again.
   FlowIn( Out & out, Sa const & adapter, VornAttr const * attr, void const * key ) noexcept
        : out_( out ), adapter_( adapter ), attr_( attr ), key_( key ),
          outer_( std::exchange( out.flowIn_, this ) ) {}
   ~FlowIn() { out_.flowIn_ = outer_; }
   FlowIn( FlowIn const & ) = delete;
   FlowIn & operator=( FlowIn const & ) = delete;

   /// Whether it is about that attribute of that entity, and that key if one is given.
   bool holds( Sa const & adapter, VornAttr const & attr, void const * key ) const {
      if ( &adapter != &adapter_ ) return false;
      if ( !attr_ ) return attr.isCtorArg();
      return &attr == attr_ && ( !key_ || !key || attr.keyType->methods->equal( key, key_ ) );
   }
   void reported() noexcept { ++reported_; }
   FlowIn * outer() const noexcept { return outer_; }
   /// One more change than the one that the record asks for is made to apply it.
   void furtherChange() noexcept { ++made_; }
   /// Whether more happened than was applied: an observer wrote the attribute again.
   bool writtenAgain() const noexcept { return reported_ > made_; }

 private:
   Out & out_;
   Sa const & adapter_;
   VornAttr const * attr_;
   void const * key_;
   FlowIn * outer_;
   unsigned made_ = 1;
   unsigned reported_ = 0;
};

FlowIn * Sa::flowInFor( VornAttr const & attr, void const * key ) const noexcept {
   FlowIn * flowIn = out_->flowIn_;
   while ( flowIn && !flowIn->holds( *this, attr, key ) ) {
      flowIn = flowIn->outer();
   }
   return flowIn;
}

bool Sa::flowInReported( VornAttr const & attr, void const * key ) {
   FlowIn * const flowIn = flowInFor( attr, key );
   if ( flowIn ) flowIn->reported();
   return flowIn;
}

/// Refuses what comes from a read-only copy, unless the host lets it write this attribute.
void Sa::checkWritable( U32 attributeId ) const {
   if ( status_.any( remoteReadOnly ) && !allowWriteFromReadOnlyRemote( attributeId ) ) {
      throwWriteUpdateFromReadOnlyProxyException();
   }
}

bool Sa::allowWriteFromReadOnlyRemote( U32 attributeId ) const {
   return out_->permits_ && out_->permits_->writeFromReadOnlyRemote( *entity_, attributeId );
}

void Sa::throwWriteUpdateFromReadOnlyProxyException() { refuse( "a change came in from a read-only copy" ); }

/// Calls a mutator in the name of the other end. What an observer made of it meanwhile goes out.
template< class Call >
void Sa::apply( VornAttr const & attr, void const * key, Call const & call ) {
   bool again;
   {
      FlowIn flowIn( *out_, *this, &attr, key );
      call( flowIn );
      again = flowIn.writtenAgain();
   }
   if ( !again || !out_ ) return;
   try {
      onX( attr, key );
   } catch ( ... ) {
      onNotificationException();
   }
}

void Sa::doHandleAttrDeserialization( U32 attributeId, In & in ) {
   if ( attributeId == NboAttrLog::groupId || attributeId == 0 - NboAttrLog::groupId ) {
      groupFromLog( in );
      return;
   }
   bool const deletion = attributeId & 0x80000000;
   VornAttr const & attr = loggedAttribute( deletion ? 0 - attributeId : attributeId );
   checkWritable( attr.id() );
   if ( deletion ) {
      deletionFromLog( attr, in, true );
   } else if ( attr.kind() == VornKind::mutableAttr ) {
      scalarFromLog( attr, in, true );
   } else if ( attr.instantiating() ) {
      memberFromLog( attr, in );
   } else {
      valueFromLog( attr, in, true );
   }
}

VornAttr const & Sa::loggedAttribute( U32 id ) const {
   VornAttr const * const attr = attribute( id );
   if ( !attr || !attr->logged() ) doBaseVornNboAttrLogSaMsg( id );
   return *attr;
}

/// An attribute that is none of the type's logged ones: those of `Entity` are not logged either.
void Sa::doBaseVornNboAttrLogSaMsg( U32 attributeId ) const {
   refuse( format( "attribute %#x of %s is not logged", attributeId, type_.name ) );
}

/// Several attribute records of one entity under one head. All are read before the first is applied, so that
/// a bad one leaves all as they were.
void Sa::groupFromLog( In & in ) {
   U16 const first = in.nextU16();
   U16 const end = in.nextU16();
   if ( first != 2 * sizeof( U16 ) || end < first ) refuse( "a group has impossible bounds" );
   In const part = in.nextEntries( end - first );
   in.endIs();
   U32 lastEntityId = in.demuxer().lastEntityId_;
   for ( bool const write : { false, true } ) {
      In entries = part;
      while ( entries.left() && out_ ) {
         entryFromLog( entries, write, lastEntityId );
      }
   }
}

/// One entry: a scalar, a member, or a deletion. A word that names no logged attribute is passed over.
void Sa::entryFromLog( In & in, bool write, U32 & lastEntityId ) {
   U32 const attributeId = in.nextAttributeId();
   bool const deletion = attributeId & 0x80000000;
   VornAttr const * const attr = attribute( deletion ? 0 - attributeId : attributeId );
   if ( !attr || !attr->logged() ) return;
   bool const keyed = attr->kind() == VornKind::entityColl || attr->kind() == VornKind::valueColl;
   if ( attr->kind() != VornKind::mutableAttr && !keyed ) {
      refuse( "a group holds scalars and members of collections only" );
   }
   checkWritable( attr->id() );
   if ( deletion ) {
      deletionFromLog( *attr, in, write );
   } else if ( attr->kind() == VornKind::mutableAttr ) {
      scalarFromLog( *attr, in, write );
   } else if ( attr->kind() == VornKind::valueColl ) {
      valueFromLog( *attr, in, write );
   } else if ( write ) {
      memberFromLog( *attr, in );
   } else {
      Arguments const arguments( in, attr->memberCtorArgs );
      NboAttrLog::ensureCorrectType( in.nextType(), *attr->type );
      U32 const id = in.nextEntityId();
      if ( !( id & NboAttrLog::numberedByPeer ) || id <= lastEntityId ) {
         refuse( "a group holds a member with a number that was given before" );
      }
      lastEntityId = id;
   }
}

void Sa::scalarFromLog( VornAttr const & attr, In & in, bool write ) {
   GenericIf::Value value( attr.type );
   attr.type->methods->logIn( in, value.data() );
   in.endIs();
   if ( !write ) return;
   apply( attr, nullptr, [&]( FlowIn & ) {
      void const * const arg = value.data();
      attr.ops->op( nullptr, object(), attr, GenericIf::write, nullptr, &arg );
   } );
}

/// A member of a collection that is no entity of its own, or a single reference.
void Sa::valueFromLog( VornAttr const & attr, In & in, bool write ) {
   std::optional< GenericIf::Value > key;
   if ( attr.keyed() ) {
      key.emplace( attr.keyType );
      attr.keyType->methods->logIn( in, key->data() );
   }
   GenericIf::Value value( attr.type );
   bool const isReference = attr.kind() == VornKind::reference || attr.kind() == VornKind::referenceColl;
   if ( isReference ) {
      *static_cast< Ptr< PtrInterface > * >( value.data() ) = in.nextEntity();
   } else if ( attr.isSet() ) {
      *static_cast< bool * >( value.data() ) = true;
   } else {
      attr.type->methods->logIn( in, value.data() );
   }
   in.endIs();
   if ( !write ) return;
   void const * const at = key ? key->data() : nullptr;
   if ( isReference && at && !*static_cast< Ptr< PtrInterface > * >( value.data() ) ) {
      memberDel( attr, at );
      return;
   }
   apply( attr, at, [&]( FlowIn & ) {
      void const * const arg = value.data();
      if ( attr.kind() == VornKind::queue ) {
         auto const seen = out_->queuesSeen_.find( { this, attr.id() } );
         if ( seen != out_->queuesSeen_.end() ) seen->second.insert( *static_cast< U32 const * >( at ) );
      } else if ( at ) {
         attr.ops->op( nullptr, object(), attr, GenericIf::clearMark, at, nullptr );
      }
      attr.ops->op( nullptr, object(), attr, GenericIf::write, at, &arg );
   } );
}

void Sa::memberFromLog( VornAttr const & attr, In & in ) {
   Arguments const arguments( in, attr.memberCtorArgs );
   NboAttrLog::ensureCorrectType( in.nextType(), *attr.type );
   U32 const id = in.nextEntityId();
   in.endIs();
   void const * const key = attr.keyed() ? arguments.pointers()[attr.memberKeyIndex()] : nullptr;
   Ptr< PtrInterface > member;
   attr.ops->op( &member, object(), attr, GenericIf::read, key, nullptr );
   auto * const known = out_->adapterById( id );
   if ( known ) {
      // Said again of a member that is known, so it must be that one.
      if ( &known->entity() != member.ptr() ) refuse( "a member comes in with the number of another entity" );
   } else if ( in.demuxer().gone( id ) ) {
      return;
   } else {
      in.demuxer().newEntityIdIs( id );
   }
   Ptr< VornNboAttrLogSa > const present( member ? out_->adapter( static_cast< Entity & >( *member ) )
                                                 : nullptr );
   apply( attr, key, [&]( FlowIn & flowIn ) {
      std::optional< FlowIn > arguing;
      if ( present ) arguing.emplace( *out_, *present, nullptr, nullptr );
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
   if ( out_ && entity.parent().ptr() == entity_ ) in.demuxer().doEntityIdIs( entity, id, this );
}

void Sa::deletionFromLog( VornAttr const & attr, In & in, bool write ) {
   std::optional< GenericIf::Value > key;
   if ( attr.keyed() ) {
      key.emplace( attr.keyType );
      attr.keyType->methods->logIn( in, key->data() );
   } else if ( attr.kind() != VornKind::child ) {
      refuse( "an attribute that cannot be deleted is deleted" );
   }
   in.endIs();
   if ( write ) memberDel( attr, key ? key->data() : nullptr );
}

void Sa::memberDel( VornAttr const & attr, void const * key ) {
   apply( attr, key,
          [&]( FlowIn & ) { attr.ops->op( nullptr, object(), attr, GenericIf::del, key, nullptr ); } );
}

void StreamAdapter::doHandleAttrTransaction( U32, AttrTransactionType, In & ) {
   refuse( "a marker that cannot be" );
}

void Sa::doHandleAttrTransaction( U32 attributeId, AttrTransactionType type, In & in ) {
   VornAttr const * const attr = attribute( attributeId );
   if ( !attr || !attr->logged() || !attr->keyed() ||
        ( type != transactionBegin && type != transactionEnd ) ) {
      StreamAdapter::doHandleAttrTransaction( attributeId, type, in );
      return;
   }
   checkWritable( attributeId );
   Ptr< Entity > const hold( entity_ ); // while it is walked an observer may drop it
   if ( attr->kind() == VornKind::queue ) {
      queueFromLog( *attr, type, in );
      return;
   }
   in.endIs();
   if ( type == transactionEnd ) {
      sweep( *attr );
   } else if ( attr->kind() == VornKind::entityColl ) {
      for ( GenericIf::Iterator it( object(), *attr ); it; it.advance() ) {
         Ptr< PtrInterface > member;
         it.object( &member );
         if ( auto * const adapter = out_->adapter( static_cast< Entity & >( *member ) ) ) {
            adapter->confirmedIs( false );
         }
      }
   } else {
      attr->ops->op( nullptr, object(), *attr, GenericIf::markAll, nullptr, nullptr );
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
         stale = !adapter || adapter->status_.any( unconfirmed );
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

/// A queue has no marks: the indices that come in are remembered, and at the end all others go. Its indices
/// go on where those of the original do.
void Sa::queueFromLog( VornAttr const & attr, AttrTransactionType type, In & in ) {
   U32 indices[2] = {};
   if ( type == transactionBegin ) {
      indices[0] = in.nextU32();
      indices[1] = in.nextU32();
   }
   in.endIs();
   auto const delUnless = [&]( auto const & wanted ) {
      for ( GenericIf::Iterator it( object(), attr ); it && out_; it.advance() ) {
         U32 index;
         it.key( &index );
         if ( !wanted( index ) ) memberDel( attr, &index );
      }
   };
   if ( type == transactionBegin ) {
      out_->queuesSeen_[{ this, attr.id() }].clear();
      // What is left rises, as it does in the original; where the indices have wrapped, nothing is.
      U32 least = indices[0];
      delUnless( [&]( U32 index ) {
         if ( index < least || index >= indices[1] ) return false;
         least = index + 1;
         return true;
      } );
      void const * const arg = indices;
      attr.ops->op( nullptr, object(), attr, GenericIf::indicesIs, nullptr, &arg );
   } else if ( auto const begun = out_->queuesSeen_.extract( { this, attr.id() } ) ) {
      delUnless( [&]( U32 index ) { return begun.mapped().contains( index ); } );
   }
}

} // namespace Vorn
