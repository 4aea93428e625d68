/// \file
/// Records of classes that are written by hand: parsers, views over a packet, values of the wire. Their
/// headers read as any class's; `VORN_REFLECTED` or `VORN_REFLECTED_OBJECT` stands first in the class, and
/// a source file lists which of its accessors are attributes, in their order:
///
///     constexpr Vorn::VornAttr LdpPduHdr::vornRows[] = {
///        field< &Self::version_ >( "versionNbo" ), read< &Self::version >( "version" ), ...
///     };
///     VORN_VIEW_RECORD( Ldp, LdpPduHdr )
///
/// Type and key of an attribute follow from the accessor, its id from its place. The rows of a base come
/// first, so its record stands in the same file, further up. A source file takes the rows by
/// `using namespace Vorn::Rows;`:
///
///     ctor< x >              constructor argument, read by the function `x`
///     read< x >              computed by `x()`
///     keyed< x >             computed by `x( key )`
///     indexed< x, num >      computed by `x( index )` for each index below `num()`; can be walked
///     field< x_ >            state in the field `x_`
///     part< x, xIs >         field of a value, read by `x()` and written by `xIs( v )`
///     write< x, xIs >        computed by `x()`, and written by `xIs( v )`
///     view< x >              view over the packet, or null, by `x()`
///     values< x, xIs, xDel > collection in the field `x`, or that `x()` gives, changed by `xIs( key, v )`
///     and
///                            `xDel( key )`; of views, which reflection can drop and cannot put in, too
///     objects< x, xIs, xDel > the same of counted objects
///     child< x, xIs, xDel >  owned object: `x()`, `xIs( ... )`, `xDel()`
///     constant< x >          static member
///     function< x >          called with arguments
///     where< y >( row )      a row whose operations apply while `y()` holds
///     writtenWhere< y >( row ) the same, except that it can always be read
///     none                   stands alone in a class without attributes
#pragma once

#include "Vorn/Impl/EntityRecord.h"

#include <functional>

namespace Vorn {

/// What a member is: the class that has it, the type that it gives, and the types of its arguments.
template< class Member >
struct MemberOf;
template< class Result, class Class_, bool never >
struct MemberOf< Result ( Class_::* )() const noexcept( never ) > {
   using Class = Class_;
   using Type = std::remove_cvref_t< Result >;
};
template< class Result, class Class_, class Key_, bool never >
struct MemberOf< Result ( Class_::* )( Key_ ) const noexcept( never ) > {
   using Class = Class_;
   using Type = std::remove_cvref_t< Result >;
   using Key = std::remove_cvref_t< Key_ >;
};
/// A mutator of a collection.
template< class Result, class Class_, class Key_, class Value, bool never >
struct MemberOf< Result ( Class_::* )( Key_, Value ) noexcept( never ) > {
   using Class = Class_;
   using Type = std::remove_cvref_t< Value >;
   using Key = std::remove_cvref_t< Key_ >;
};
template< class T, class Class_ >
requires std::is_object_v< T >
struct MemberOf< T Class_::* > {
   using Class = Class_;
   using Type = T;
};
template< auto member >
using ClassOf = typename MemberOf< decltype( member ) >::Class;
template< auto member >
using TypeOf = typename MemberOf< decltype( member ) >::Type;
template< auto member >
using KeyOf = typename MemberOf< decltype( member ) >::Key;

template< class T, auto const * constant >
inline constexpr VornAttrOps constantAtOps{
   []( void * result, void *, VornAttr const &, U32 op, void const *, void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      *static_cast< T * >( result ) = T( *constant );
      return GenericIf::done;
   },
   nullptr,
};

/// Computed for a key; the caller knows which keys there are.
template< auto get >
inline constexpr VornAttrOps keyedOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * key,
       void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      resultIs( result, TypeOf< get >( ( selfOf< ClassOf< get > >( object )->*get )(
                             *static_cast< KeyOf< get > const * >( key ) ) ) );
      return GenericIf::done;
   },
   nullptr,
};

/// Walks the indices below a number.
template< auto get, auto num >
class IndexWalk {
 public:
   using Self = ClassOf< get >;
   using Index = KeyOf< get >;

   IndexWalk( Self & self, Index from ) : self_( &self ), at_( from ) {}

   explicit operator bool() const { return at_ < ( self_->*num )(); }
   void advance() noexcept { ++at_; }
   Index key() const noexcept { return at_; }
   TypeOf< get > value() const { return ( self_->*get )( at_ ); }

 private:
   Self * self_;
   Index at_;
};

template< auto get, auto num >
inline constexpr VornAttrOps indexedOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      auto & self = *selfOf< ClassOf< get > >( object );
      auto const found = [&] { return *static_cast< KeyOf< get > const * >( key ) < ( self.*num )(); };
      switch ( op ) {
      case GenericIf::read:
         if ( !found() ) return GenericIf::notApplicable;
         return keyedOps< get >.op( result, object, attr, op, key, args );
      case GenericIf::members: *static_cast< U32 * >( result ) = ( self.*num )(); return GenericIf::done;
      case GenericIf::has: *static_cast< bool * >( result ) = found(); return GenericIf::done;
      default: return GenericIf::notApplicable;
      }
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) -> void * {
      using It = IndexWalk< get, num >;
      using Index = typename It::Index;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { resultIs( out, it.value() ); },
                                 []( It & it, void * out ) { *static_cast< Index * >( out ) = it.key(); },
                                 []( It & ) { return false; } >;
      return new It( *selfOf< ClassOf< get > >( object ),
                     key ? *static_cast< Index const * >( key ) : Index( 0 ) );
   },
};

/// A collection that tells nobody, changed by the class's own mutators. Views are only dropped.
template< auto held, auto set, auto del >
inline constexpr VornAttrOps heldOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * k,
       void const * const * args ) -> U32 {
      using Key = KeyOf< set >;
      using T = TypeOf< set >;
      auto & self = *selfOf< ClassOf< set > >( object );
      auto const & map = std::invoke( held, self );
      if ( containerOp( map, result, op ) ) return GenericIf::done;
      Key const & key = *static_cast< Key const * >( k );
      switch ( op ) {
      case GenericIf::read: resultIs( result, T( map.value( key ) ) ); break;
      case GenericIf::write:
         if constexpr ( std::is_pointer_v< T > )
            return GenericIf::notApplicable;
         else
            ( self.*set )( key, ArgOf< T >::get( args[0] ) );
         break;
      case GenericIf::del:
         if ( result ) resultIs( result, T( map.value( key ) ) );
         ( self.*del )( key );
         break;
      case GenericIf::has: *static_cast< bool * >( result ) = map.has( key ); break;
      default: return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) {
      using Key = KeyOf< set >;
      using T = TypeOf< set >;
      auto const & map = std::invoke( held, *selfOf< ClassOf< set > >( object ) );
      using It = typename std::remove_cvref_t< decltype( map ) >::IteratorConst;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { resultIs( out, T( it->value() ) ); },
                                 []( It & it, void * out ) { *static_cast< Key * >( out ) = it->key(); },
                                 []( It & ) { return false; } >;
      return newIterator< It, Key >( map, key );
   },
};

/// An owned object, which is no entity.
template< auto get, auto set, auto del >
inline constexpr VornAttrOps ownedOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      switch ( op ) {
      case GenericIf::read: return readOps< ClassOf< get >, get >.op( result, object, attr, op, key, args );
      case GenericIf::write:
         return FunctionOps< ClassOf< get >, set >::op( result, object, attr, op, key, args );
      case GenericIf::del:
         return FunctionOps< ClassOf< get >, del >::op( result, object, attr, GenericIf::write, key, args );
      default: return GenericIf::notApplicable;
      }
   },
   nullptr,
};

/// Operations that apply while `test` holds of the object.
template< auto test, bool alwaysRead, VornAttrOps const * ops >
inline constexpr VornAttrOps whereOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      bool const free = alwaysRead && op == GenericIf::read;
      if ( !free && !( selfOf< ClassOf< test > >( object )->*test )() ) return GenericIf::notApplicable;
      return ops->op( result, object, attr, op, key, args );
   },
   ops->iterator,
};

namespace Rows {

/// A row whose operations are known to the compiler.
template< VornAttrOps const * operations >
struct Row : VornAttr {};
template< VornAttrOps const * operations >
constexpr Row< operations > row( VornAttr attr ) {
   attr.ops = operations;
   return { attr };
}
/// An attribute's record but for its owner, id and operations.
template< class T >
constexpr VornAttr attrOf( char const * name, VornKind kind, VornType const * key = nullptr ) {
   return { name,    nullptr, recordOf< typename Pointee< T >::Type >(), key,
            nullptr, nullptr, attrFlags( kind, 0, local, key ),          nullptr };
}
template< auto member >
constexpr VornAttr keyedAttrOf( char const * name, VornKind kind ) {
   return attrOf< TypeOf< member > >( name, kind, recordOf< KeyOf< member > >() );
}

inline constexpr VornAttr none{};

template< auto get >
constexpr auto read( char const * name ) {
   return row< &readOps< ClassOf< get >, get > >( attrOf< TypeOf< get > >( name, VornKind::derived ) );
}
template< auto get >
constexpr auto ctor( char const * name ) {
   return row< &readOps< ClassOf< get >, get > >( attrOf< TypeOf< get > >( name, VornKind::constructor ) );
}
template< auto get >
constexpr auto keyed( char const * name ) {
   return row< &keyedOps< get > >( keyedAttrOf< get >( name, VornKind::derived ) );
}
template< auto get, auto num >
constexpr auto indexed( char const * name ) {
   return row< &indexedOps< get, num > >( keyedAttrOf< get >( name, VornKind::derived ) );
}
template< auto member >
constexpr auto field( char const * name ) {
   return row< &fieldOps< ClassOf< member >, TypeOf< member >, member, true > >(
        attrOf< TypeOf< member > >( name, VornKind::state ) );
}
template< auto get, auto set >
constexpr auto part( char const * name ) {
   return row< &scalarOps< ClassOf< get >, TypeOf< get >, get, set > >(
        attrOf< TypeOf< get > >( name, VornKind::state ) );
}
template< auto get, auto set >
constexpr auto write( char const * name ) {
   auto attr = part< get, set >( name );
   attr.flags |= viewAccess;
   return attr;
}
/// A view is not written through reflection, which could not tell what it lies over.
template< auto get >
constexpr auto view( char const * name ) {
   auto attr = row< &readOps< ClassOf< get >, get > >( attrOf< TypeOf< get > >( name, VornKind::state ) );
   attr.flags &= ~writeAccess;
   return attr;
}
template< auto held, auto set, auto del >
constexpr auto values( char const * name ) {
   return row< &heldOps< held, set, del > >( keyedAttrOf< set >( name, VornKind::localValueColl ) );
}
template< auto held, auto set, auto del >
constexpr auto objects( char const * name ) {
   return row< &heldOps< held, set, del > >( keyedAttrOf< set >( name, VornKind::referenceColl ) );
}
template< auto get, auto set, auto del >
constexpr auto child( char const * name ) {
   return row< &ownedOps< get, set, del > >( attrOf< TypeOf< get > >( name, VornKind::child ) );
}
template< auto const * value >
constexpr auto constant( char const * name ) {
   using Written = std::remove_cvref_t< decltype( *value ) >;
   using T = std::conditional_t< std::is_pointer_v< Written >, String, Written >;
   return row< &constantAtOps< T, value > >( attrOf< T >( name, VornKind::constant ) );
}
template< auto called >
constexpr auto function( char const * name ) {
   using Called = FunctionOps< typename FunctionClass< decltype( called ) >::Type, called >;
   using Result = std::remove_cvref_t< typename Called::ResultType >;
   VornAttr attr = attrOf< void >( name, VornKind::function );
   attr.type = recordOf< Result >();
   return row< &Called::ops >( attr );
}
template< auto test, VornAttrOps const * ops >
constexpr auto where( Row< ops > const & attr ) {
   return row< &whereOps< test, false, ops > >( attr );
}
template< auto test, VornAttrOps const * ops >
constexpr auto writtenWhere( Row< ops > const & attr ) {
   return row< &whereOps< test, true, ops > >( attr );
}

} // namespace Rows

/// What all records of classes that are written by hand have.
template< class T >
constexpr VornType rowsRecord( VornType type ) {
   if constexpr ( !std::is_void_v< typename T::VornBase > ) type.base = recordOf< typename T::VornBase >();
   type.attributes = AttrTable< T >::attributes;
   type.attributeNum = AttrTable< T >::num;
   type.ctorArgs = AttrTable< T >::ctorArgs;
   type.genericIfIterator = iteratorOf< T >();
   type.genericIfAttributeOp = []( void * result, void * object, VornAttr const & attr, U32 op,
                                   void const * key, void const * const * args ) {
      return GenericIfImpl::attributeOp( T::_vornType, result, object, attr, op, key, args );
   };
   return type;
}

/// `genericIfConstructFromCtorArgs` by a factory.
template< auto factory, class Signature = decltype( factory ) >
struct FactoryOf;
template< auto factory, class Result, class... Args >
struct FactoryOf< factory, Result ( * )( Args... ) > {
   static void construct( Ptr< PtrInterface > * result, void const * const * args ) {
      [&]< std::size_t... i >( std::index_sequence< i... > ) {
         *result = factory( ArgOf< std::remove_cvref_t< Args > >::get( args[i] )... );
      }
      ( std::index_sequence_for< Args... >{} );
   }
};

/// The record of a counted class; `factory` is null for one that only others derive from.
template< class T, auto factory >
constexpr VornType reflectedObject( char const * name ) {
   VornType type = rowsRecord< T >( objectRecord( name, nullptr, sizeof( T ) ) );
   if constexpr ( !std::is_null_pointer_v< decltype( factory ) > ) {
      type.genericIfConstructFromCtorArgs = FactoryOf< factory >::construct;
   }
   return type;
}

/// The record of a view.
template< class T >
constexpr VornType reflectedView( char const * name ) {
   VornType type{};
   type.name = name;
   type.methods = &GenericIfImpl::viewMethods;
   type.sizeAndFlags = VornType::overlaySizeFlag | U32( sizeof( T ) );
   type.flags = VornType::plainFlags;
   return rowsRecord< T >( type );
}

} // namespace Vorn

/// Defines the record of a counted class, and its memory tracker, and registers the type. Stands behind the
/// rows, in the class's namespace; `factory` is the address of the factory or nullptr.
#define VORN_REFLECTED_OBJECT_RECORD( Namespace, Type, factory )                                             \
   constinit ::Vorn::VornType const Type::_vornType =                                                        \
        ::Vorn::reflectedObject< Type, factory >( #Namespace "::" #Type );                                   \
   ::Vorn::AllocTrackTypeInfo Type::vornAllocTrackTypeInfo_{ &Type::_vornType };                             \
   VORN_REGISTER_( &Type::_vornType )

/// Defines the record of a view, and registers the type.
#define VORN_VIEW_RECORD( Namespace, Type )                                                                  \
   constinit ::Vorn::VornType const Type::_vornType =                                                        \
        ::Vorn::reflectedView< Type >( #Namespace "::" #Type );                                              \
   VORN_REGISTER_( &Type::_vornType )

/// Defines the record of a value, and registers the type.
#define VORN_REFLECTED_VALUE_RECORD( Namespace, Type )                                                       \
   constinit ::Vorn::VornType const Type::_vornType = ::Vorn::rowsRecord< Type >(                            \
        ::Vorn::valueRecord< Type >( #Namespace "::" #Type, nullptr, 0, nullptr ) );                         \
   VORN_REGISTER_( &Type::_vornType )
