/// \file
/// The mutators behind the attribute lines: the order of compare, store and notification is written here once
/// for each kind of attribute.
#pragma once

#include "Vorn/HashMap.h"
#include "Vorn/HashMap2018.h"
#include "Vorn/Impl/AttrTable.h"
#include "Vorn/Impl/ScalarReflection.h"
#include "Vorn/LinkQueue.h"

#include <algorithm>

namespace Vorn {

/// The change of an attribute without a key: one virtual call to `onX()`.
template< class Self, U32 id, auto on >
inline constexpr NotifieeChange changeOf{
   id, &Self::_vornType,
   []( PtrInterface::NotifieeConst & notifiee, void const * ) {
      ( static_cast< typename FunctionClass< decltype( on ) >::Type & >( notifiee ).*on )();
   }
};

/// The change of a keyed attribute: one virtual call to `onX( key )`.
template< class Self, U32 id, class Key, auto on >
inline constexpr NotifieeChange keyedChangeOf{
   id, &Self::_vornType,
   []( PtrInterface::NotifieeConst & notifiee, void const * key ) {
      ( static_cast< typename FunctionClass< decltype( on ) >::Type & >( notifiee ).*
        on )( *static_cast< Key const * >( key ) );
   }
};

/// The owner of what a mutator changes. Observers, children, destructors of what is replaced: whom a mutator
/// calls may drop the last reference to the owner, which stays until the mutator is done.
template< class Self >
class Owner {
 public:
   explicit Owner( Self & self ) noexcept : self_( self ), hold_( self ) {}

   /// Tells the observers of a change that is stored.
   template< class Change >
   void notify( Change const & change, void const * key = nullptr ) const {
      self_.notify( change, key );
   }
   /// As the parent of what it owns.
   Entity * entity() const noexcept { return &self_; }

 private:
   Self & self_;
   Hold const hold_;
};

/// Equal, return; store; tell. A pointer compares by identity, a NaN is unequal to everything.
template< class Self, class T >
void scalarIs( Self & self, T & field, Arg< T > value, NotifieeChange const & change ) {
   if ( field == value ) return;
   if constexpr ( std::is_trivially_destructible_v< T > ) {
      field = value;
      self.notify( change ); // all that is left to do
   } else {
      Owner const owner( self );
      field = value;
      owner.notify( change );
   }
}

/// The types of an entity's constructor arguments: what it declares, else its key or name alone. A base that
/// nobody makes by itself has none.
template< class Type >
concept DeclaresCtorTypes = requires {
   typename Type::VornCtorTypes;
};
template< class Type >
struct CtorTypesOf {};
template< DeclaresCtorTypes Type >
struct CtorTypesOf< Type > {
   using Types = typename Type::VornCtorTypes;
};
template< class Type >
requires( !DeclaresCtorTypes< Type > ) && requires( Type const & entity ) { entity.vornKey(); }
struct CtorTypesOf< Type > {
   using Types = std::tuple< std::remove_cvref_t< decltype( std::declval< Type const & >().vornKey() ) > >;
};
template< class Type >
using CtorTypes = typename CtorTypesOf< Type >::Types;

/// Whether a program's argument may stand where a constructor takes `To`: where it converts by itself, and is
/// no fraction for a whole number.
template< class To, class From >
concept StandsFor = std::is_convertible_v< From const &, To > &&
     !( std::is_floating_point_v< From > && !std::is_floating_point_v< To > );
template< class Types, class... Given >
inline constexpr bool standForAll = false;
template< class... Types, class... Given >
requires( sizeof...( Types ) ==
          sizeof...( Given ) ) inline constexpr bool standForAll< std::tuple< Types... >, Given... > =
     ( StandsFor< Types, Given > && ... );
/// A new entity, where the type is made from such arguments.
template< class Type, class... Given >
requires( standForAll< CtorTypes< Type >, Given... > ) using MadeFrom = Ptr< Type >;

/// How a factory takes an argument: a value that fits a word as it is, others by reference.
template< class T >
using FactoryArg = std::conditional_t< sizeof( T ) <= sizeof( void * ), T, T const & >;
/// The free factory of an entity type: its function type, and the class template `Definition` that defines it
/// (VORN_FACTORY), for the type's constructor arguments.
template< class Type, class Types = CtorTypes< Type > >
struct EntityFactory;
template< class Type, class... Args >
struct EntityFactory< Type, std::tuple< Args... > > {
   using Fn = Ptr< Type >( FactoryArg< Args >... );
   template< template< class... > class Definition >
   using With = Definition< Args... >;
};

/// Calls `call` with an array of pointers to the arguments, as the functions below take them.
template< class... Args, class Call >
auto withPointers( std::tuple< Args... > const & args, Call const & call ) {
   return std::apply(
        [&]( auto const &... arg ) {
           void const * const pointers[] = { &arg..., nullptr };
           return call( pointers );
        },
        args );
}

/// Whether an entity's name and immutable constructor arguments are the ones given. One that is made from
/// nothing always is.
VORN_API bool madeFrom( Entity const & entity, VornType const & type, void const * const * args );

/// Fails if an immutable constructor argument of the present entity differs from the one given, and writes
/// the mutable ones.
VORN_API void reinstantiate( Entity & present, VornType const & type, void const * const * args );

/// See VORN_CHILD.
template< class Self, class Type, class... Args >
Ptr< Type > childIs( Owner< Self > const & owner, Child< Type > & field, NotifieeChange const & change,
                     Args const &... given ) {
   // In the types that the attributes have, since the comparison goes by their records.
   CtorTypes< Type > const args( given... );
   if ( Ptr< Type > const present = field.get() ) {
      bool const same = withPointers( args, [&]( void const * const * pointers ) {
         return madeFrom( *present, Type::_vornType, pointers );
      } );
      if ( same ) return present;
      present->vornLeft();
   }
   Ptr< Type > const child =
        std::apply( []( auto const &... arg ) { return newObject< Type >( arg... ); }, args );
   child->vornParentIs( owner.entity() );
   field.replace( child ); // what has come in between leaves as well
   owner.notify( change );
   return child;
}

template< class Self, class Type >
Ptr< Type > childDel( Owner< Self > const & owner, Child< Type > & field, NotifieeChange const & change ) {
   Ptr< Type > const child = field.replace( nullptr );
   if ( child ) owner.notify( change );
   return child;
}

/// Which of an entity type's constructor arguments is the key: the one that has its type. (The type's table
/// would say so too, and cost each file that includes the header the table; the record compares the two.)
template< class Type, class Types = CtorTypes< Type > >
inline constexpr std::size_t keyIndex = 0;
template< class Type, class First, class... More >
inline constexpr std::size_t keyIndex< Type, std::tuple< First, More... > > = [] {
   using Key = std::remove_cvref_t< decltype( std::declval< Type const & >().vornKey() ) >;
   bool const isKey[] = { std::is_same_v< First, Key >, std::is_same_v< More, Key >... };
   return std::size_t( std::find( std::begin( isKey ), std::end( isKey ), true ) - isKey );
}();

/// See VORN_ENTITY_COLL. `given` are the members' constructor arguments in their order.
template< class Self, class Type, class Key, class Change, class... Given >
Ptr< Type > memberIs( Owner< Self > const & owner, HashMap< Self, Type, Key > & map, Change const & change,
                      Given const &... given ) {
   // In the types that the attributes have, since the comparison goes by their records.
   CtorTypes< Type > const args( given... );
   Key const & key = std::get< keyIndex< Type > >( args );
   U32 const hash = keyHash( key );
   if ( Ptr< Type > const present{ map.member( key, hash ) } ) {
      if constexpr ( sizeof...( Given ) > 1 ) {
         withPointers( args, [&]( void const * const * pointers ) {
            reinstantiate( *present, Type::_vornType, pointers );
         } );
      }
      return present;
   }
   Ptr< Type > const member =
        std::apply( []( auto const &... arg ) { return newObject< Type >( arg... ); }, args );
   map.newMember( *member, hash );
   member->vornParentIs( owner.entity() );
   owner.notify( change, &key );
   return member;
}

/// Tells that a member, which somebody holds, has been taken out.
template< class Self, class Type, class Change >
void memberTold( Owner< Self > const & owner, Change const & change, Type const & member ) {
   auto const & key = member.vornKey();
   owner.notify( change, &key );
}

template< class Self, class Type, class Key, class Change >
Ptr< Type > memberDel( Owner< Self > const & owner, HashMap< Self, Type, Key > & map, Change const & change,
                       Key const & key ) {
   U32 const hash = keyHash( key );
   Ptr< Type > const member( map.member( key, hash ) );
   if ( !member ) return nullptr;
   map.del( *member, hash );
   memberTold( owner, change, *member );
   return member;
}

template< class Self, class Type, class Key, class Change >
void membersDel( Owner< Self > const & owner, HashMap< Self, Type, Key > & map, Change const & change ) {
   // Once, unless an observer inserts again.
   while ( map.members() ) {
      // The iterator holds the member until it moves on. What ends then may have deleted the next one.
      for ( auto it = map.begin(); it; it.advance() ) {
         if ( it.del( map ) ) memberTold( owner, change, *it );
      }
   }
}

/// See VORN_VALUE_COLL.
template< class Self, class Map, class Change, class Key, class T >
void valueIs( Owner< Self > const & owner, Map & map, Change const & change, Key const & key,
              T const & value ) {
   // Who tells nobody does not compare either.
   if constexpr ( !std::is_same_v< Change, Silence > ) {
      if ( auto * node = map[key]; node && node->value() == value ) return;
   }
   Key const kept = key;
   map.valueIs( kept, value );
   owner.notify( change, &kept );
}

template< class T, class Self, class Map, class Change, class Key >
T valueDel( Owner< Self > const & owner, Map & map, Change const & change, Key const & key ) {
   auto const deleted = map.del( key );
   if ( !deleted ) return T{};
   Key const & kept = deleted->key(); // the caller's may have lain in the map
   owner.notify( change, &kept );
   return deleted->value();
}

template< class Self, class Map, class Change, class Key >
void keyIs( Owner< Self > const & owner, Map & map, Change const & change, Key const & key ) {
   if ( map[key] ) return;
   Key const kept = key;
   map.keyIs( kept );
   owner.notify( change, &kept );
}

template< class Self, class Map, class Change, class Key >
bool keyDel( Owner< Self > const & owner, Map & map, Change const & change, Key const & key ) {
   auto const deleted = map.del( key );
   if ( !deleted ) return false;
   Key const & kept = deleted->key();
   owner.notify( change, &kept );
   return true;
}

template< class Key, class Self, class Map, class Change >
void valuesDel( Owner< Self > const & owner, Map & map, Change const & change ) {
   // No iterator stands in a bucket while observers are told: they may do the same, as deep as they like.
   while ( map.members() ) {
      for ( auto const * node = map.first(); node; ) {
         Key const key = node->key();
         if ( map.del( key ) ) owner.notify( change, &key );
         node = map.atOrBehind( key );
      }
   }
}

/// See VORN_COUNTER_COLL.
template< class T, class Self, class Map, class Change, class Key >
T counterInc( Owner< Self > const & owner, Map & map, Change const & change, Key const & key, T n ) {
   Key const kept = key;
   auto * const node = map[kept];
   T const old = node ? node->value() : T( 0 );
   T const value = T( old + n );
   // An absent key is entered even if nothing is added: wanted, and silent.
   if ( !node || value != old ) map.valueIs( kept, value );
   if ( value != old ) owner.notify( change, &kept );
   return value;
}

/// See VORN_KEYED_REFERENCE_COLL.
template< class Self, class Map, class Key, class T >
void keyedReferenceIs( Owner< Self > const & owner, Map & map, NotifieeChange const & change, Key const & key,
                       Ptr< T > const & value ) {
   if ( auto * node = map[key]; node && node->value() == value ) return;
   map.valueIs( value );
   owner.notify( change, &key );
}
[[noreturn]] VORN_API void throwNullReference( VornType const & type, char const * attrName );

/// See VORN_QUEUE.
template< class Self, class Queue, class T >
U32 queueEnq( Owner< Self > const & owner, Queue & queue, NotifieeChange const & change, T const & value ) {
   U32 const index = queue.enq( value );
   owner.notify( change, &index );
   return index;
}
template< class T, class Self, class Queue >
T queueDel( Owner< Self > const & owner, Queue & queue, NotifieeChange const & change, U32 index ) {
   auto const node = queue.del( index );
   if ( !node ) return T{};
   owner.notify( change, &index );
   return node->value();
}
template< class T, class Self, class Queue >
T queueDeq( Owner< Self > const & owner, Queue & queue, NotifieeChange const & change ) {
   return queue.members() ? queueDel< T >( owner, queue, change, queue.firstIndex() ) : T{};
}
template< class Self, class Queue, class T >
void queueIs( Owner< Self > const & owner, Queue & queue, NotifieeChange const & change, U32 index,
              T const & value ) {
   if ( auto const node = queue[index]; node && node->value() == value ) return;
   queue.valueIs( index, value );
   owner.notify( change, &index );
}
template< class Self, class Queue >
void queueDelAll( Owner< Self > const & owner, Queue & queue, NotifieeChange const & change ) {
   while ( queue.members() ) {
      U32 const index = queue.firstIndex();
      queue.del( index );
      owner.notify( change, &index );
   }
}

} // namespace Vorn
