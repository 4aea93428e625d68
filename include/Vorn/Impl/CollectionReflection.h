/// \file
/// How reflection reaches children, collections and queues.
#pragma once

#include "Vorn/Impl/Mutators.h"

namespace Vorn {

/// Calls `call` with the arguments that reflection passed as pointers.
template< class Types, class Call >
decltype( auto ) withArgs( void const * const * args, Call const & call ) {
   return [&]< std::size_t... i >( std::index_sequence< i... > )->decltype( auto ) {
      return call( *static_cast< std::tuple_element_t< i, Types > const * >( args[i] )... );
   }
   ( std::make_index_sequence< std::tuple_size_v< Types > >{} );
}

template< class Self, class Type, Child< Type > Self::*field, auto change >
inline constexpr VornAttrOps childOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const *,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      Ptr< Type > child;
      switch ( op ) {
      case GenericIf::read: child = ( self.*field ).get(); break;
      case GenericIf::write:
         child = withArgs< CtorTypes< Type > >( args, [&]( auto const &... arg ) {
            return childIs( Owner( self ), self.*field, *change, arg... );
         } );
         break;
      case GenericIf::del: child = childDel( Owner( self ), self.*field, *change ); break;
      default: return GenericIf::notApplicable;
      }
      if ( result ) resultIs( result, child );
      return GenericIf::done;
   },
   nullptr,
};

/// What all containers answer alike; false for another operation.
template< class Map >
bool containerOp( Map const & map, void * result, U32 op ) {
   if ( op == GenericIf::members ) {
      *static_cast< U32 * >( result ) = map.members();
   } else if ( op == GenericIf::modificationCount ) {
      *static_cast< U32 * >( result ) = map.modificationCount();
   } else {
      return false;
   }
   return true;
}

/// What keyed attributes do for the attribute log alone.
template< class Set, class Key, class Map >
bool logOp( Map const & map, void * result, U32 op, void const * key, void const * const * args ) {
   if ( op == GenericIf::newKeySet ) {
      *static_cast< std::unique_ptr< KeySet > * >( result ) = std::make_unique< Set >();
   } else if constexpr ( requires( Key const & k ) { map.crowded( k, 0u ); } ) {
      if ( op != GenericIf::crowded ) return false;
      *static_cast< bool * >( result ) =
           map.crowded( *static_cast< Key const * >( key ), *static_cast< U32 const * >( args[0] ) );
   } else {
      return false;
   }
   return true;
}

/// An iterator of a container behind the functions of reflection. `Object` and `Key` say what is put out.
template< class It, auto object, auto key, auto marked >
inline constexpr GenericIf::IteratorVTable iteratorVTable{
   []( VornAttr const &, void * it, void * out ) { object( *static_cast< It * >( it ), out ); },
   []( VornAttr const &, void * it, void * out ) { key( *static_cast< It * >( it ), out ); },
   []( VornAttr const &, void * it ) { return bool( *static_cast< It * >( it ) ); },
   []( VornAttr const &, void * it ) { static_cast< It * >( it )->advance(); },
   []( VornAttr const &, void * it ) { delete static_cast< It * >( it ); },
   []( VornAttr const &, void * it ) { return marked( *static_cast< It * >( it ) ); },
};

template< class It, class Key, class Map >
void * newIterator( Map & map, void const * key ) {
   return key ? new It( map, *static_cast< Key const * >( key ) ) : new It( map );
}

template< class Self, class Type, class Key, HashMap< Self, Type, Key > Self::*field, auto change >
inline constexpr VornAttrOps entityCollOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * key,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto & map = self.*field;
      if ( containerOp( map, result, op ) || logOp< KeySetOf< Key >, Key >( map, result, op, key, args ) ) {
         return GenericIf::done;
      }
      Ptr< Type > member;
      switch ( op ) {
      case GenericIf::read: member = map.member( *static_cast< Key const * >( key ) ); break;
      case GenericIf::write:
         member = withArgs< CtorTypes< Type > >(
              args, [&]( auto const &... arg ) { return memberIs( Owner( self ), map, change(), arg... ); } );
         break;
      case GenericIf::del:
         member = memberDel( Owner( self ), map, change(), *static_cast< Key const * >( key ) );
         break;
      case GenericIf::delAll: membersDel( Owner( self ), map, change() ); return GenericIf::done;
      case GenericIf::has:
         *static_cast< bool * >( result ) = map.member( *static_cast< Key const * >( key ) );
         return GenericIf::done;
      default: return GenericIf::notApplicable;
      }
      if ( result ) resultIs( result, member );
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) -> void * {
      using It = typename HashMap< Self, Type, Key >::IteratorConst;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { resultIs( out, Ptr< Type >( &*it ) ); },
                                 []( It & it, void * out ) { *static_cast< Key * >( out ) = it->vornKey(); },
                                 []( It & ) { return false; } >;
      return newIterator< It, Key >( selfOf< Self >( object )->*field, key );
   },
};

/// What value collections, sets and reference collections do beside reading and writing.
template< class Map, class Key >
bool markOp( Map & map, U32 op, void const * key ) {
   if ( op == GenericIf::markAll ) {
      map.vornMarkAllForDeletion();
   } else if ( op == GenericIf::clearMark ) {
      map.vornMarkedForDeletionIs( *static_cast< Key const * >( key ), false );
   } else {
      return false;
   }
   return true;
}

template< class Map, class Key, auto object >
void * nodeIterator( Map & map, void const * key, GenericIf::IteratorVTable const ** vtable ) {
   using It = typename Map::Iterator;
   *vtable =
        &iteratorVTable< It, object, []( It & it, void * out ) { *static_cast< Key * >( out ) = it->key(); },
                         []( It & it ) { return it.markedForDeletion(); } >;
   return newIterator< It, Key >( map, key );
}

template< class Self, class T, class Key, HashMap2018< Self, Key, T > Self::*field, auto change >
inline constexpr VornAttrOps valueCollOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * k,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto & map = self.*field;
      if ( containerOp( map, result, op ) || logOp< KeySetOf< Key >, Key >( map, result, op, k, args ) ||
           markOp< std::remove_cvref_t< decltype( map ) >, Key >( map, op, k ) ) {
         return GenericIf::done;
      }
      Key const & key = *static_cast< Key const * >( k );
      switch ( op ) {
      case GenericIf::read: *static_cast< T * >( result ) = map.value( key ); break;
      case GenericIf::write:
         valueIs( Owner( self ), map, change(), key, *static_cast< T const * >( args[0] ) );
         break;
      case GenericIf::del: {
         T const value = valueDel< T >( Owner( self ), map, change(), key );
         if ( result ) *static_cast< T * >( result ) = value;
         break;
      }
      case GenericIf::has: *static_cast< bool * >( result ) = map.has( key ); break;
      default: return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) {
      using Map = HashMap2018< Self, Key, T >;
      return nodeIterator< Map, Key, []( typename Map::Iterator & it, void * out ) {
         *static_cast< T * >( out ) = it->value();
      } >( selfOf< Self >( object )->*field, key, vtable );
   },
};

template< class Self, class Key, HashMap2018< Self, Key > Self::*field, auto change >
inline constexpr VornAttrOps setOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * k,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto & map = self.*field;
      if ( containerOp( map, result, op ) || logOp< KeySetOf< Key >, Key >( map, result, op, k, args ) ||
           markOp< HashMap2018< Self, Key >, Key >( map, op, k ) ) {
         return GenericIf::done;
      }
      Key const & key = *static_cast< Key const * >( k );
      switch ( op ) {
      case GenericIf::read:
      case GenericIf::has: *static_cast< bool * >( result ) = map.has( key ); break;
      case GenericIf::write:
         if ( !*static_cast< bool const * >( args[0] ) ) GenericIfImpl::throwSetFalseValueException( attr );
         keyIs( Owner( self ), map, change(), key );
         break;
      case GenericIf::del: {
         bool const was = keyDel( Owner( self ), map, change(), key );
         if ( result ) *static_cast< bool * >( result ) = was;
         break;
      }
      default: return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) {
      using Map = HashMap2018< Self, Key >;
      return nodeIterator< Map, Key, []( typename Map::Iterator &, void * out ) {
         *static_cast< bool * >( out ) = true;
      } >( selfOf< Self >( object )->*field, key, vtable );
   },
};

/// Whether a reference goes by that key: any does where the key stands beside it.
template< class Map, class Key, class Value >
bool ownKey( Map const &, Key const & key, Value const & value ) {
   if constexpr ( Map::keyInValue ) {
      return typename Map::Node( value ).key() == key;
   } else {
      return true;
   }
}

/// `set` is the class's own mutator: with the key beside the value or inside it.
template< class Self, class Type, class Key, auto field, auto change, auto set >
inline constexpr VornAttrOps referenceCollOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * k,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto & map = self.*field;
      if ( containerOp( map, result, op ) || logOp< KeySetOf< Key >, Key >( map, result, op, k, args ) ||
           markOp< std::remove_cvref_t< decltype( map ) >, Key >( map, op, k ) ) {
         return GenericIf::done;
      }
      Key const & key = *static_cast< Key const * >( k );
      switch ( op ) {
      case GenericIf::read: resultIs( result, Ptr< Type >( map.value( key ) ) ); break;
      case GenericIf::write: {
         auto const value = ArgOf< Ptr< Type > >::get( args[0] );
         if constexpr ( std::is_invocable_v< decltype( set ), Self &, Key const &, Ptr< Type > const & > ) {
            ( self.*set )( key, value );
         } else {
            if ( value && !ownKey( map, key, value ) ) {
               throwRangeException( "a reference stands under a key that is not its own" );
            }
            ( self.*set )( value );
         }
         break;
      }
      case GenericIf::del: {
         auto const value = valueDel< Ptr< Type > >( Owner( self ), map, change(), key );
         if ( result ) resultIs( result, value );
         break;
      }
      case GenericIf::has: *static_cast< bool * >( result ) = map.has( key ); break;
      case GenericIf::ownKey: {
         auto const value = ArgOf< Ptr< Type > >::get( args[0] );
         *static_cast< bool * >( result ) = !value || ownKey( map, key, value );
         break;
      }
      default: return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) {
      using Map = std::remove_cvref_t< decltype( selfOf< Self >( object )->*field ) >;
      return nodeIterator< Map, Key, []( typename Map::Iterator & it, void * out ) {
         resultIs( out, Ptr< Type >( it->value() ) );
      } >( selfOf< Self >( object )->*field, key, vtable );
   },
};

template< class Self, class T, LinkQueue< Self, U32, T > Self::*field, auto change >
inline constexpr VornAttrOps queueOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * k,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto & queue = self.*field;
      if ( containerOp( queue, result, op ) || logOp< IndexSet, U32 >( queue, result, op, k, args ) ) {
         return GenericIf::done;
      }
      if ( op == GenericIf::indices ) {
         static_cast< U32 * >( result )[0] = queue.firstIndex();
         static_cast< U32 * >( result )[1] = queue.nextIndex();
         return GenericIf::done;
      }
      if ( op == GenericIf::indicesIs ) {
         auto const * const both = static_cast< U32 const * >( args[0] );
         queue.indicesIs( both[0], both[1] );
         return GenericIf::done;
      }
      U32 const index = *static_cast< U32 const * >( k );
      switch ( op ) {
      case GenericIf::read: *static_cast< T * >( result ) = queue.value( index ); break;
      case GenericIf::write:
         queueIs( Owner( self ), queue, change(), index, *static_cast< T const * >( args[0] ) );
         break;
      case GenericIf::del: {
         T const value = queueDel< T >( Owner( self ), queue, change(), index );
         if ( result ) *static_cast< T * >( result ) = value;
         break;
      }
      case GenericIf::has: *static_cast< bool * >( result ) = bool( queue[index] ); break;
      default: return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) -> void * {
      using It = typename LinkQueue< Self, U32, T >::IteratorConst;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { *static_cast< T * >( out ) = it->value(); },
                                 []( It & it, void * out ) { *static_cast< U32 * >( out ) = it->index(); },
                                 []( It & ) { return false; } >;
      return newIterator< It, U32 >( selfOf< Self >( object )->*field, key );
   },
};

} // namespace Vorn
