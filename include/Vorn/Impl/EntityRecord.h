/// \file
/// The record of an entity type, and what it points to: the attributes of `Entity` itself, the generic
/// observer, and how the attribute log makes an entity.
#pragma once

#include "Vorn/Impl/AttrTable.h"
#include "Vorn/Impl/CollectionReflection.h"
#include "Vorn/ValueType.h"

namespace Vorn {

/// The record of one of the base's own attributes.
constexpr VornAttr entityAttr( char const * name, VornType const * type, U32 id, VornAttrOps const * ops ) {
   return { name,
            &Entity::_vornType,
            type,
            nullptr,
            nullptr,
            nullptr,
            attrFlags( VornKind::derived, id, local, false ),
            ops };
}

/// The base's own attributes, whose order is not that of their ids. Every entity type's table begins with
/// them.
template<>
struct AttrTable< Entity > {
   static constexpr VornAttrOps entityOps{
      []( void * result, void * object, VornAttr const &, U32 op, void const * key,
          void const * const * ) -> U32 {
         if ( op != GenericIf::read && op != GenericIf::has ) return GenericIf::notApplicable;
         auto const child = selfOf< Entity >( object )->entity( *static_cast< String const * >( key ) );
         if ( op == GenericIf::has ) {
            *static_cast< bool * >( result ) = bool( child );
         } else {
            resultIs( result, child );
         }
         return GenericIf::done;
      },
      nullptr,
   };
   static constexpr U32 num = 5;
   static constexpr U32 own = 5;
   static constexpr std::array< VornAttr, num + 1 > table{
      entityAttr( "name", recordOf< Name >(), Entity::nameId, &readOps< Entity, &Entity::name > ),
      entityAttr( "fullName", recordOf< Name >(), Entity::fullNameId, &readOps< Entity, &Entity::fullName > ),
      entityAttr( "parent", &Entity::_vornType, Entity::parentId, &readOps< Entity, &Entity::parent > ),
      entityAttr( "parentAttrName", recordOf< String >(), Entity::parentAttrNameId,
                  &readOps< Entity, &Entity::parentAttrName > ),
      VornAttr{ "entity", &Entity::_vornType, &Entity::_vornType, recordOf< String >(), nullptr, nullptr,
                attrFlags( VornKind::derived, Entity::entityId, local, true ), &entityOps },
      VornAttr{},
   };
   static constexpr VornAttr const * attributes = table.data();
   static constexpr std::array< VornCtorArg, 1 > ctorTable{};
   static constexpr VornCtorArg const * ctorArgs = ctorTable.data();
};

/// Name of the attribute that is the members' key. Further arguments only put the call off until the record
/// is made.
template< class Type, class... >
constexpr char const * memberKeyName() {
   for ( VornAttr const & attr : AttrTable< Type >::table ) {
      if ( attr.isKey() ) return attr.name;
   }
   return "name";
}
template< class Type, class... >
constexpr VornCtorArg const * memberCtorArgs() {
   return AttrTable< Type >::ctorArgs;
}

/// Whether the attribute log carries a type's entities: an attribute of theirs is logged, or the type says so
/// in a line of its own (`vornOnLog`).
template< class T >
consteval bool hasAttrLogInterface() {
   bool logged = T::vornOnLog;
   for ( VornAttr const & attr : AttrTable< T >::table ) {
      logged |= attr.name && attr.logged();
   }
   return logged;
}

/// A generic observer bound through reflection: it forwards every change to the observer it was made for.
template< class T >
class GenericIfNotifieeOf : public T::NotifieeConst {
 public:
   explicit GenericIfNotifieeOf( GenericIf::NotifieeConst & observer ) : observer_( &observer ) {
      this->watchesAllIs( true );
   }
   void handleNotification( U32 attributeId, void const * key ) override {
      if ( !observer_ ) return;
      if ( key ) {
         observer_->onRawAttribute( attributeId, key, true );
      } else {
         observer_->onRawAttribute( attributeId );
      }
   }
   /// Null: the observer that it was made for is gone.
   void observerIs( GenericIf::NotifieeConst * observer ) noexcept { observer_ = observer; }

 private:
   GenericIf::NotifieeConst * observer_;
};

/// Makes an entity from what the attribute log's next values say. Whoever asks ties it to the log.
template< class T >
Ptr< PtrInterface > newEntityFromLog( Ptr< NboAttrLog::In > const & in, Vorn_BitSet, unsigned,
                                      Ptr< NboAttrLog::Out > const & ) {
   CtorTypes< T > args{};
   std::apply( [&]( auto &... arg ) { ( NboAttrLog::fromLog( *in, &arg ), ... ); }, args );
   return std::apply( []( auto const &... arg ) -> Ptr< PtrInterface > { return newObject< T >( arg... ); },
                      args );
}

namespace NboAttrLog {

/// Makes the adapters of what a logged child attribute holds, where the parent is on the log, and returns the
/// last; null for another name. The hook of every type that has such an attribute; see StreamAdapter.h.
VORN_API Ptr< StreamAdapter > childAttrLogIs( VornType const * type, char const * attrName, Entity & parent,
                                              Ptr< Out > const & out );

} // namespace NboAttrLog

/// `genericIfIterator` of a type; null where nothing can be walked.
template< class T >
constexpr auto iteratorOf() -> decltype( VornType::genericIfIterator ) {
   for ( VornAttr const & walked : AttrTable< T >::table ) {
      if ( !walked.ops || !walked.ops->iterator ) continue;
      return []( void * object, VornAttr const & attr, GenericIf::IteratorVTable const ** vtable ) {
         return GenericIfImpl::iterator( T::_vornType, object, attr, vtable );
      };
   }
   return nullptr;
}

/// A new entity by the type's free factory, which so gets its place beside the record.
template< class T, class... Args >
Ptr< T > factoryMade( Args const &... args ) {
   if constexpr ( requires {
                     typename decltype( vornFactory( static_cast< T const * >( nullptr ) ) )::Made;
                  } ) {
      using Factory = decltype( vornFactory( static_cast< T const * >( nullptr ) ) );
      if constexpr ( std::is_same_v< typename Factory::Made, T > ) return Factory::function( args... );
   }
   return newObject< T >( args... );
}

/// Whether the type's table agrees with `keyIndex`.
template< class T >
consteval bool keyIsWhereItsTypeIs() {
   if constexpr ( !AttrTable< T >::named && requires( T const & entity ) { entity.vornKey(); } ) {
      std::size_t index = 0;
      for ( VornAttr const & attr : AttrTable< T >::table ) {
         if ( attr.isKey() ) return index == keyIndex< T >;
         index += attr.name && attr.isCtorArg();
      }
   }
   return true;
}

/// Whether a type has observer classes of its own, which its last line gives it.
template< class T >
inline constexpr bool endsInObservers = requires {
   requires std::is_same_v< typename T::NotifieeConst::VornNotifier, T >;
};

/// The record of an entity type.
template< class T >
constexpr VornType entityRecord( char const * name ) {
   VornType type{};
   type.name = name;
   type.base = &T::VornBase::_vornType;
   type.attributes = AttrTable< T >::attributes;
   type.ctorArgs = AttrTable< T >::ctorArgs;
   type.methods = &GenericIfImpl::GenericIfPtrInterfaceMethods< Entity >::vtable_;
   if constexpr ( requires { typename CtorTypes< T >; } ) {
      if constexpr ( hasAttrLogInterface< T >() ) type.newEntityForAttrLog = newEntityFromLog< T >;
      type.genericIfConstructFromCtorArgs = []( Ptr< PtrInterface > * result, void const * const * args ) {
         *result = withArgs< CtorTypes< T > >(
              args, []( auto const &... arg ) { return factoryMade< T >( arg... ); } );
      };
   }
   for ( VornAttr const & attr : AttrTable< T >::table ) {
      if ( !attr.name || !attr.instantiating() ) continue;
      ++type.instantiatingNum;
      if ( attr.logged() ) type.childAttrLogIs = NboAttrLog::childAttrLogIs;
   }
   type.genericIfAttributeOp = []( void * result, void * object, VornAttr const & attr, U32 op,
                                   void const * key, void const * const * args ) {
      return GenericIfImpl::attributeOp( T::_vornType, result, object, attr, op, key, args );
   };
   type.genericIfIterator = iteratorOf< T >();
   type.genericIfNotifiee = []( GenericIf::NotifieeConst & observer ) -> Ptr< PtrInterface > {
      return newObject< typename T::GenericIfNotifiee_ >( observer );
   };
   type.sizeAndFlags = VornType::objectSizeFlag | U32( sizeof( T ) );
   type.attributeNum = AttrTable< T >::num;
   type.flags = VornType::plainFlags | VornType::polymorphicFlag;
   static_assert( keyIsWhereItsTypeIs< T >(),
                  "of the constructor arguments, only the key may have its type" );
   return type;
}

} // namespace Vorn
