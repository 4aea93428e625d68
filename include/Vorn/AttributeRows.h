/// \file
/// Records of classes that are written by hand: parsers, views over a packet, values of the wire. Their
/// headers read as any class's; `VORN_REFLECTED` or `VORN_REFLECTED_OBJECT` stands first in the class, and
/// a source file lists which of its accessors are attributes, in their order:
///
///     VORN_VIEW_RECORD( Ldp, LdpPduHdr, field( versionNbo, version_ ), field( lengthNbo, length_ ),
///                       field( ldpIdentifier, ldpIdentifier_ ), constant( pduHdrSizeExclude ),
///                       read( version ), read( length ), read( totalLength ), read( stringValue ) )
///
/// Type and key of an attribute follow from the accessor, its id from its place. The rows of a base come
/// first, so its record stands in the same file, further up. A row is one of
///
///     ctor( x )            constructor argument, read by `x()`
///     read( x )            computed by `x()`
///     keyed( x )           computed by `x( key )`
///     indexed( x, num )    computed by `x( index )` for each index below `num()`; can be walked
///     state( x )           state in the field `x_`; field( x, y ) in the field `y`
///     part( x )            field of a value, read by `x()` and written by `xIs( v )`
///     write( x )           computed by `x()`, and written by `xIs( v )`
///     view( x )            view over the packet, or null, by `x()`; viewBy( x, y ) by `y()`
///     values( x )          collection in the field `x_`, changed by `xIs( key, v )` and `xDel( key )`
///     references( x )      the same of counted objects
///     views( x )           the same of views, which reflection can drop and cannot put in
///     child( x )           owned object: `x()`, `xIs( ... )`, `xDel()`
///     constant( x )        static member
///     function( x )        called with arguments
///     where( y, row )      a row whose operations apply while `y()` holds
///     writtenWhere( y, row ) the same, except that it can always be read
#pragma once

#include "Vorn/ReflectOps.h"

namespace Vorn {

/// The rows of a class, as an array.
template< class... Rows >
constexpr std::array< VornAttr, sizeof...( Rows ) > rowsOf( Rows const &... rows ) {
   return { rows... };
}

/// What an accessor gives, and the type of its argument.
template< class Get >
struct AccessorOf;
template< class Result, class Class, class Key, bool never >
struct AccessorOf< Result ( Class::* )( Key ) const noexcept( never ) > {
   using Type = std::remove_cvref_t< Result >;
   using KeyType = std::remove_cvref_t< Key >;
};
template< class Result, class Class, bool never >
struct AccessorOf< Result ( Class::* )() const noexcept( never ) > {
   using Type = std::remove_cvref_t< Result >;
};
template< auto get >
using TypeOf = typename AccessorOf< decltype( get ) >::Type;
template< auto get >
using KeyOf = typename AccessorOf< decltype( get ) >::KeyType;

template< class Self, auto get >
constexpr VornAttr readRow( char const * name, VornKind kind = VornKind::derived ) {
   return attrRecord< Self, TypeOf< get > >( name, kind, 0, local, &readOps< Self, get > );
}

template< class Self, auto field >
constexpr VornAttr fieldRow( char const * name ) {
   using T = std::remove_cvref_t< decltype( std::declval< Self & >().*field ) >;
   return attrRecord< Self, T >( name, VornKind::state, 0, local, &fieldOps< Self, T, field, true > );
}

/// `isField` tells the fields that make up a value from views of them.
template< class Self, auto get, auto set >
constexpr VornAttr writeRow( char const * name, bool isField ) {
   auto attr = attrRecord< Self, TypeOf< get > >( name, VornKind::state, 0, local,
                                                  &scalarOps< Self, TypeOf< get >, get, set > );
   if ( !isField ) attr.flags |= viewAccess;
   return attr;
}

/// A view is not written through reflection, which could not tell what it lies over.
template< class Self, auto get >
constexpr VornAttr viewRow( char const * name ) {
   auto attr = readRow< Self, get >( name, VornKind::state );
   attr.flags &= ~writeAccess;
   return attr;
}

template< class T, auto const * constant >
inline constexpr VornAttrOps constantAtOps{
   []( void * result, void *, VornAttr const &, U32 op, void const *, void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      *static_cast< T * >( result ) = T( *constant );
      return GenericIf::done;
   },
   nullptr,
};

template< class Self, auto const * constant >
constexpr VornAttr constantRow( char const * name ) {
   using Written = std::remove_cvref_t< decltype( *constant ) >;
   using T = std::conditional_t< std::is_pointer_v< Written >, String, Written >;
   return attrRecord< Self, T >( name, VornKind::constant, 0, local, &constantAtOps< T, constant > );
}

/// Computed for a key; the caller knows which keys there are.
template< class Self, auto get >
inline constexpr VornAttrOps keyedOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * key,
       void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      resultIs( result, TypeOf< get >( ( selfOf< Self >( object )->*get )(
                             *static_cast< KeyOf< get > const * >( key ) ) ) );
      return GenericIf::done;
   },
   nullptr,
};

/// Walks the indices below a number.
template< class Self, auto get, auto num >
class IndexWalk {
 public:
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

template< class Self, auto get, auto num >
inline constexpr VornAttrOps indexedOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      Self & self = *selfOf< Self >( object );
      auto const found = [&] { return *static_cast< KeyOf< get > const * >( key ) < ( self.*num )(); };
      switch ( op ) {
      case GenericIf::read:
         if ( !found() ) return GenericIf::notApplicable;
         return keyedOps< Self, get >.op( result, object, attr, op, key, args );
      case GenericIf::members: *static_cast< U32 * >( result ) = ( self.*num )(); return GenericIf::done;
      case GenericIf::has: *static_cast< bool * >( result ) = found(); return GenericIf::done;
      default: return GenericIf::notApplicable;
      }
   },
   []( void * object, void const * key, GenericIf::IteratorVTable const ** vtable ) -> void * {
      using It = IndexWalk< Self, get, num >;
      using Index = typename It::Index;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { resultIs( out, it.value() ); },
                                 []( It & it, void * out ) { *static_cast< Index * >( out ) = it.key(); },
                                 []( It & ) { return false; } >;
      return new It( *selfOf< Self >( object ), key ? *static_cast< Index const * >( key ) : Index( 0 ) );
   },
};

template< class Self, auto get >
constexpr VornAttr keyedRow( char const * name, VornAttrOps const * ops ) {
   return keyedRecord< Self, typename Pointee< TypeOf< get > >::Type, KeyOf< get > >(
        name, VornKind::derived, 0, local, nullptr, nullptr, ops );
}

/// What a collection's mutator takes: its key and its value.
template< class Set >
struct MutatorOf;
template< class Result, class Class, class Key, class Value, bool never >
struct MutatorOf< Result ( Class::* )( Key, Value ) noexcept( never ) > {
   using KeyType = std::remove_cvref_t< Key >;
   using Type = std::remove_cvref_t< Value >;
};

/// A collection that tells nobody, changed by the class's own mutators. Views are only dropped.
template< class Self, auto field, auto set, auto del >
inline constexpr VornAttrOps heldOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const * k,
       void const * const * args ) -> U32 {
      using Key = typename MutatorOf< decltype( set ) >::KeyType;
      using T = typename MutatorOf< decltype( set ) >::Type;
      Self & self = *selfOf< Self >( object );
      auto const & map = self.*field;
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
      using Key = typename MutatorOf< decltype( set ) >::KeyType;
      using T = typename MutatorOf< decltype( set ) >::Type;
      auto const & map = selfOf< Self >( object )->*field;
      using It = typename std::remove_cvref_t< decltype( map ) >::IteratorConst;
      *vtable = &iteratorVTable< It, []( It & it, void * out ) { resultIs( out, T( it->value() ) ); },
                                 []( It & it, void * out ) { *static_cast< Key * >( out ) = it->key(); },
                                 []( It & ) { return false; } >;
      return newIterator< It, Key >( map, key );
   },
};

template< class Self, auto field, auto set, auto del >
constexpr VornAttr heldRow( char const * name, VornKind kind ) {
   using Mutator = MutatorOf< decltype( set ) >;
   return keyedRecord< Self, typename Pointee< typename Mutator::Type >::Type, typename Mutator::KeyType >(
        name, kind, 0, local, nullptr, nullptr, &heldOps< Self, field, set, del > );
}

/// An owned object, which is no entity.
template< class Self, auto get, auto set, auto del >
inline constexpr VornAttrOps ownedOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      switch ( op ) {
      case GenericIf::read: return readOps< Self, get >.op( result, object, attr, op, key, args );
      case GenericIf::write: return FunctionOps< Self, set >::op( result, object, attr, op, key, args );
      case GenericIf::del:
         return FunctionOps< Self, del >::op( result, object, attr, GenericIf::write, key, args );
      default: return GenericIf::notApplicable;
      }
   },
   nullptr,
};

template< class Self, auto get, auto set, auto del >
constexpr VornAttr childRow( char const * name ) {
   return attrRecord< Self, TypeOf< get > >( name, VornKind::child, 0, local,
                                             &ownedOps< Self, get, set, del > );
}

/// Operations that apply while `test` holds of the object.
template< class Self, auto test, bool alwaysRead, VornAttrOps const * ops >
inline constexpr VornAttrOps whereOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      bool const free = alwaysRead && op == GenericIf::read;
      if ( !free && !( selfOf< Self >( object )->*test )() ) return GenericIf::notApplicable;
      return ops->op( result, object, attr, op, key, args );
   },
   ops->iterator,
};

template< class Self, auto test, bool alwaysRead, VornAttrOps const * ops >
constexpr VornAttr whereRow( VornAttr row ) {
   row.ops = &whereOps< Self, test, alwaysRead, ops >;
   return row;
}

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

/// The rows, separated by commas, each behind the name of its macro.
#define VORN_ROWS_( ... ) __VA_OPT__( VORN_SCAN_( VORN_ROW_( __VA_ARGS__ ) ) )
#define VORN_ROW_( row, ... ) VORN_ROW_##row __VA_OPT__(, VORN_ROW_AGAIN_ VORN_PARENS_( __VA_ARGS__ ) )
// The preprocessor does not expand a macro within itself, so the rest of the list waits for the next of these
// scans: more than anyone has rows.
#define VORN_ROW_AGAIN_() VORN_ROW_
#define VORN_PARENS_ ()
#define VORN_SCAN_( ... ) VORN_SCAN3_( VORN_SCAN3_( VORN_SCAN3_( VORN_SCAN3_( __VA_ARGS__ ) ) ) )
#define VORN_SCAN3_( ... ) VORN_SCAN2_( VORN_SCAN2_( VORN_SCAN2_( VORN_SCAN2_( __VA_ARGS__ ) ) ) )
#define VORN_SCAN2_( ... ) VORN_SCAN1_( VORN_SCAN1_( VORN_SCAN1_( VORN_SCAN1_( __VA_ARGS__ ) ) ) )
#define VORN_SCAN1_( ... ) __VA_ARGS__

#define VORN_ROW_ctor( x ) ::Vorn::readRow< VornSelf, &VornSelf::x >( #x, ::Vorn::VornKind::constructor )
#define VORN_ROW_read( x ) ::Vorn::readRow< VornSelf, &VornSelf::x >( #x )
#define VORN_ROW_keyed( x )                                                                                  \
   ::Vorn::keyedRow< VornSelf, &VornSelf::x >( #x, &::Vorn::keyedOps< VornSelf, &VornSelf::x > )
#define VORN_ROW_indexed( x, num )                                                                           \
   ::Vorn::keyedRow< VornSelf, &VornSelf::x >(                                                               \
        #x, &::Vorn::indexedOps< VornSelf, &VornSelf::x, &VornSelf::num > )
#define VORN_ROW_field( x, y ) ::Vorn::fieldRow< VornSelf, &VornSelf::y >( #x )
#define VORN_ROW_state( x ) VORN_ROW_field( x, x##_ )
#define VORN_ROW_part( x ) ::Vorn::writeRow< VornSelf, &VornSelf::x, &VornSelf::x##Is >( #x, true )
#define VORN_ROW_write( x ) ::Vorn::writeRow< VornSelf, &VornSelf::x, &VornSelf::x##Is >( #x, false )
#define VORN_ROW_view( x ) VORN_ROW_viewBy( x, x )
#define VORN_ROW_viewBy( x, y ) ::Vorn::viewRow< VornSelf, &VornSelf::y >( #x )
#define VORN_ROW_held_( x, kind )                                                                            \
   ::Vorn::heldRow< VornSelf, &VornSelf::x##_, &VornSelf::x##Is, &VornSelf::x##Del >(                        \
        #x, ::Vorn::VornKind::kind )
#define VORN_ROW_values( x ) VORN_ROW_held_( x, localValueColl )
#define VORN_ROW_views( x ) VORN_ROW_held_( x, localValueColl )
#define VORN_ROW_references( x ) VORN_ROW_held_( x, referenceColl )
#define VORN_ROW_child( x )                                                                                  \
   ::Vorn::childRow< VornSelf, &VornSelf::x, &VornSelf::x##Is, &VornSelf::x##Del >( #x )
#define VORN_ROW_constant( x ) ::Vorn::constantRow< VornSelf, &VornSelf::x >( #x )
#define VORN_ROW_function( x ) ::Vorn::functionRecord< VornSelf, &VornSelf::x >( #x, 0 )
#define VORN_ROW_where( y, row ) VORN_ROW_where_( y, false, VORN_ROW_##row )
#define VORN_ROW_writtenWhere( y, row ) VORN_ROW_where_( y, true, VORN_ROW_##row )
#define VORN_ROW_where_( y, alwaysRead, row )                                                                \
   ::Vorn::whereRow< VornSelf, &VornSelf::y, alwaysRead, row.ops >( row )

/// Defines the record of a counted class, and its memory tracker. Stands in a source file, in the class's
/// namespace; `factory` is the address of the factory or nullptr.
#define VORN_REFLECTED_OBJECT_RECORD( Namespace, Type, factory, ... )                                        \
   constexpr auto Type::vornRows() { return ::Vorn::rowsOf( VORN_ROWS_( __VA_ARGS__ ) ); }                   \
   constinit ::Vorn::VornType const Type::_vornType =                                                        \
        ::Vorn::reflectedObject< Type, factory >( #Namespace "::" #Type );                                   \
   ::Vorn::AllocTrackTypeInfo Type::vornAllocTrackTypeInfo_{ &Type::_vornType };

/// Defines the record of a view.
#define VORN_VIEW_RECORD( Namespace, Type, ... )                                                             \
   constexpr auto Type::vornRows() { return ::Vorn::rowsOf( VORN_ROWS_( __VA_ARGS__ ) ); }                   \
   constinit ::Vorn::VornType const Type::_vornType = ::Vorn::reflectedView< Type >( #Namespace ":"          \
                                                                                                ":" #Type );

/// Defines the record of a value.
#define VORN_REFLECTED_VALUE_RECORD( Namespace, Type, ... )                                                  \
   constexpr auto Type::vornRows() { return ::Vorn::rowsOf( VORN_ROWS_( __VA_ARGS__ ) ); }                   \
   constinit ::Vorn::VornType const Type::_vornType = ::Vorn::rowsRecord< Type >(                            \
        ::Vorn::valueRecord< Type >( #Namespace "::" #Type, nullptr, 0, nullptr ) );
