/// \file
/// How reflection reaches scalars and functions: one template for each kind of attribute, made from member
/// pointers, and the attribute's record. The macros of Attributes.h and ValueType.h only name them.
#pragma once

#include "Vorn/GenericIf.h"
#include "Vorn/Impl/AttrTypes.h"

namespace Vorn {

/// The address of an object as the class that declares an attribute.
template< class Self >
Self * selfOf( void * object ) {
   if constexpr ( std::is_base_of_v< PtrInterface, Self > ) {
      return static_cast< Self * >( static_cast< PtrInterface * >( object ) );
   } else if constexpr ( std::is_base_of_v< NrcPtrInterface, Self > ) {
      return static_cast< Self * >( static_cast< NrcPtrInterface * >( object ) );
   } else {
      return static_cast< Self * >( object );
   }
}

/// Puts a value into a result: a pointer to a counted object as `Ptr< PtrInterface >`, one to a view as that
/// of its base.
template< class T >
void resultIs( void * result, T const & value ) {
   *static_cast< T * >( result ) = value;
}
template< class T >
void resultIs( void * result, Ptr< T > const & value ) {
   *static_cast< Ptr< PtrInterface > * >( result ) =
        Ptr< PtrInterface >( const_cast< std::remove_const_t< T > * >( value.ptr() ) );
}

template< class T >
void resultIs( void * result, T const * const & value ) {
   *static_cast< NrcPtrInterface const ** >( result ) = value;
}

/// One argument of a call through reflection: a value, or a `Ptr< PtrInterface >` as the pointer that is
/// asked for.
template< class T >
struct ArgOf {
   static T const & get( void const * arg ) { return *static_cast< T const * >( arg ); }
};
template< class T >
struct ArgOf< Ptr< T > > {
   static Ptr< T > get( void const * arg ) {
      auto const & object = *static_cast< Ptr< PtrInterface > const * >( arg );
      if ( object && !object->fwkType()->isDerived( &T::_vornType ) ) {
         GenericIfImpl::throwTypeException( object->fwkType() );
      }
      return Ptr< T >( static_cast< T * >( object.ptr() ) );
   }
};

/// The class of a member function.
template< class Function >
struct FunctionClass;
template< class Result, class Class, class... Args, bool never >
struct FunctionClass< Result ( Class::* )( Args... ) noexcept( never ) > {
   using Type = Class;
};
template< class Result, class Class, class... Args, bool never >
struct FunctionClass< Result ( Class::* )( Args... ) const noexcept( never ) > {
   using Type = Class;
};

/// Read-only: key, constructor argument, derived.
template< class Self, auto get >
inline constexpr VornAttrOps readOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const *, void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      resultIs( result, std::remove_cvref_t< decltype( ( selfOf< Self >( object )->*get )() ) >(
                             ( selfOf< Self >( object )->*get )() ) );
      return GenericIf::done;
   },
   nullptr,
};

/// What the accessor of a constant gives: its type where a constant can have that, else what was written.
template< class T, class Written >
using ConstantOf = std::conditional_t< std::is_trivially_copyable_v< T >, T, Written >;

/// A constant: a static member of the class.
template< class T, auto value >
inline constexpr VornAttrOps constantOps{
   []( void * result, void *, VornAttr const &, U32 op, void const *, void const * const * ) -> U32 {
      if ( op != GenericIf::read ) return GenericIf::notApplicable;
      *static_cast< T * >( result ) = T( value() );
      return GenericIf::done;
   },
   nullptr,
};

/// Whether a scalar can go to an attribute log: one of an entity that is no reference.
template< class Self, class T >
inline constexpr bool isLoggedScalar = std::is_base_of_v< Entity, Self >;
template< class Self, class T >
inline constexpr bool isLoggedScalar< Self, Ptr< T > > = false;

/// A scalar with a mutator, a single reference included. A value's field that has one is placed by it as
/// well.
template< class Self, class T, auto get, auto set >
inline constexpr VornAttrOps scalarOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const *,
       void const * const * args ) -> U32 {
      switch ( op ) {
      case GenericIf::read:
      case GenericIf::carried:
         resultIs( result, T( ( selfOf< Self >( object )->*get )() ) );
         return GenericIf::done;
      case GenericIf::write:
      case GenericIf::place:
         ( selfOf< Self >( object )->*set )( ArgOf< T >::get( args[0] ) );
         return GenericIf::done;
      case GenericIf::toLog:
      case GenericIf::fromLog:
         if constexpr ( isLoggedScalar< Self, T > ) {
            auto & self = *selfOf< Self >( object );
            if ( op == GenericIf::toLog ) {
               NboAttrLog::toLog< T >( *static_cast< NboAttrLog::Out * >( result ), ( self.*get )() );
            } else {
               ( self.*set )( NboAttrLog::lastOf< T >( *static_cast< NboAttrLog::In * >( result ) ) );
            }
            return GenericIf::done;
         }
         return GenericIf::notApplicable;
      default: return GenericIf::notApplicable;
      }
   },
   nullptr,
};

/// The same for one that at times holds what the attribute log must not see: then `inContext` says so, and
/// the log carries the default.
template< class Self, class T, auto get, auto set, auto inContext >
inline constexpr VornAttrOps contextOps{
   []( void * result, void * object, VornAttr const & attr, U32 op, void const * key,
       void const * const * args ) -> U32 {
      if ( ( op == GenericIf::carried || op == GenericIf::toLog ) &&
           ( selfOf< Self >( object )->*inContext )( attr.id() ) ) {
         if constexpr ( isLoggedScalar< Self, T > ) {
            if ( op == GenericIf::toLog ) {
               NboAttrLog::toLog( *static_cast< NboAttrLog::Out * >( result ), T() );
               return GenericIf::done;
            }
         }
         resultIs( result, T() );
         return GenericIf::done;
      }
      return scalarOps< Self, T, get, set >.op( result, object, attr, op, key, args );
   },
   nullptr,
};

/// What can be written and not read.
template< class Self, class T, auto set >
inline constexpr VornAttrOps writeOps{
   []( void *, void * object, VornAttr const &, U32 op, void const *, void const * const * args ) -> U32 {
      if ( op != GenericIf::write ) return GenericIf::notApplicable;
      ( selfOf< Self >( object )->*set )( ArgOf< T >::get( args[0] ) );
      return GenericIf::done;
   },
   nullptr,
};

/// Whether a value's field can go to an attribute log: one that is no reference.
template< class T >
inline constexpr bool isLoggedField = Recorded< T >;
template< class T >
inline constexpr bool isLoggedField< Ptr< T > > = false;
template< class T >
inline constexpr bool isLoggedField< T const * > = false;

/// A field of a value.
template< class Self, class T, T Self::*field, bool settable >
inline constexpr VornAttrOps fieldOps{
   []( void * result, void * object, VornAttr const &, U32 op, void const *,
       void const * const * args ) -> U32 {
      T & value = selfOf< Self >( object )->*field;
      if ( op == GenericIf::read ) {
         resultIs( result, value );
      } else if ( op == GenericIf::place || ( settable && op == GenericIf::write ) ) {
         value = *static_cast< T const * >( args[0] );
      } else if ( op == GenericIf::toLog || op == GenericIf::fromLog ) {
         if constexpr ( isLoggedField< T > ) {
            if ( op == GenericIf::toLog ) {
               NboAttrLog::toLog< T >( *static_cast< NboAttrLog::Out * >( result ), value );
            } else {
               NboAttrLog::fromLog< T >( *static_cast< NboAttrLog::In * >( result ), &value );
            }
            return GenericIf::done;
         }
         return GenericIf::notApplicable;
      } else {
         return GenericIf::notApplicable;
      }
      return GenericIf::done;
   },
   nullptr,
};

/// A function with hand-written logic: `write` calls it with the arguments and leaves what it returns in the
/// result.
template< class Self, auto function, class Signature = decltype( function ) >
struct FunctionOps;
template< class Self, auto function, class Result, class Class, class... Args, bool never >
struct FunctionOps< Self, function, Result ( Class::* )( Args... ) noexcept( never ) > {
   static U32 op( void * result, void * object, VornAttr const &, U32 op, void const *,
                  void const * const * args ) {
      if ( op != GenericIf::write ) return GenericIf::notApplicable;
      [&]< std::size_t... i >( std::index_sequence< i... > ) {
         auto * self = selfOf< Self >( object );
         if constexpr ( std::is_void_v< Result > ) {
            ( self->*function )( ArgOf< std::remove_cvref_t< Args > >::get( args[i] )... );
         } else {
            auto value = ( self->*function )( ArgOf< std::remove_cvref_t< Args > >::get( args[i] )... );
            if ( result ) resultIs( result, value );
         }
      }
      ( std::index_sequence_for< Args... >{} );
      return GenericIf::done;
   }
   using ResultType = Result;
   static constexpr VornAttrOps ops{ op, nullptr };
};
template< class Self, auto function, class Result, class Class, class... Args, bool never >
struct FunctionOps< Self, function, Result ( Class::* )( Args... ) const noexcept( never ) >
     : FunctionOps< Self, function, Result ( Class::* )( Args... ) > {
   // The call through a const member pointer reads the same.
};

/// The record of a scalar attribute.
template< class Self, class T >
constexpr VornAttr attrRecord( char const * name, VornKind kind, U32 id, VornReplication logged,
                               VornAttrOps const * ops ) {
   return { name,    &Self::_vornType, recordOf< typename Pointee< T >::Type >(), nullptr,
            nullptr, nullptr,          attrFlags( kind, id, logged, false ),      ops };
}

/// The record of a keyed attribute.
template< class Self, class T, class Key >
constexpr VornAttr keyedRecord( char const * name, VornKind kind, U32 id, VornReplication logged,
                                char const * memberKey, VornCtorArg const * memberCtorArgs,
                                VornAttrOps const * ops ) {
   return { name,
            &Self::_vornType,
            recordOf< T >(),
            recordOf< Key >(),
            memberKey,
            memberCtorArgs,
            attrFlags( kind, id, logged, true ),
            ops };
}

/// The record of a value's field.
template< class Self, class T, T Self::*field, bool settable >
constexpr VornAttr fieldAttr( char const * name, U32 id ) {
   return attrRecord< Self, T >( name, settable ? VornKind::state : VornKind::constructor, id, local,
                                 &fieldOps< Self, T, field, settable > );
}

/// The record of a function.
template< class Self, auto function >
constexpr VornAttr functionRecord( char const * name, U32 id ) {
   using Result = typename FunctionOps< Self, function >::ResultType;
   return { name,
            &Self::_vornType,
            recordOf< std::remove_cvref_t< Result > >(),
            nullptr,
            nullptr,
            nullptr,
            attrFlags( VornKind::function, id, local, false ),
            &FunctionOps< Self, function >::ops };
}

} // namespace Vorn
