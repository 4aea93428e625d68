/// \file
/// Records of value types: the built-in ones, and the macros by which a class becomes one.
///
///     /// Pair of a session's state and the code that caused it.
///     class VORN_API LdpSessionState {
///        VORN_VALUE( LdpSessionState )
///        VORN_CTOR_FIELD( 0x2, SessionState, sessionState ) = stateUnknown;
///        VORN_CTOR_FIELD( 0x3, LdpStatusCode, code ) = success;
///
///      public:
///        LdpSessionState( SessionState sessionState, LdpStatusCode code );
///        friend bool operator==( LdpSessionState const &, LdpSessionState const & ) noexcept = default;
///     };
///     VORN_TEXT( LdpSessionState )
///
/// and in the source file
///
///     VORN_VALUE_RECORD( Ldp, LdpSessionState )
///     VORN_TEXT_OF_RECORD( LdpSessionState )
///
/// A field's line gives its accessor and, for a mutable field, its setter; text and log forms follow from the
/// lines.
#pragma once

#include "Vorn/Impl/AttrTable.h"
#include "Vorn/Impl/ScalarReflection.h"

namespace Vorn {

/// Methods of a value type; what the type lacks (hash, text, log form) is refused when it is asked for.
template< class T, class Dummy = void >
struct GenericIfValueMethods {
   /// Destroys the value.
   static void genericIfDestruct( void * value ) { static_cast< T * >( value )->~T(); }
   /// Makes a copy of `*from` at `value`, or a default value for a null `from`.
   static void genericIfConstruct( void * value, void const * from ) {
      if ( from ) {
         new ( value ) T( *static_cast< T const * >( from ) );
      } else {
         new ( value ) T{};
      }
   }
   /// Hash of the value; throws where the type has none.
   static U32 genericIfHash( void const * value, VornType const * type ) {
      [[maybe_unused]] T const & v = *static_cast< T const * >( value );
      if constexpr ( requires { v.hash(); } ) {
         return U32( v.hash() );
      } else if constexpr ( std::is_integral_v< T > ) {
         return VornHashBase< false >::hashU64( U64( v ) );
      } else {
         GenericIfImpl::throwUnhashableException( type );
      }
   }
   /// The text of the value.
   static String genericIfStrRep( void const * value, VornType const * ) {
      return valueToStrep( *static_cast< T const * >( value ) );
   }
   /// Reads a whole text. Throws RangeException for any other, and then the value stays as it was.
   static void genericIfStrepToValue( void * value, String const & text, VornType const * ) {
      strepToValue( text, static_cast< T * >( value ) );
   }
   /// Reads a value from the front of a text and moves `it` behind it.
   static void sequenceTo( String::IteratorConst & it, String::IteratorConst const & end, void * value,
                           VornType const * ) {
      sequenceToValue( it, end, static_cast< T * >( value ) );
   }
   /// Whether the two values are equal.
   static bool equal( void const * a, void const * b ) {
      return *static_cast< T const * >( a ) == *static_cast< T const * >( b );
   }
   /// Makes `*to` equal to `*from`.
   static void assign( void * to, void const * from ) {
      *static_cast< T * >( to ) = *static_cast< T const * >( from );
   }
   /// Writes the value's form in the attribute log.
   static void logOutOf( NboAttrLog::Out & out, void const * value ) {
      NboAttrLog::toLog( out, *static_cast< T const * >( value ) );
   }
   /// Reads the value from that form.
   static void logInOf( NboAttrLog::In & in, void * value ) {
      NboAttrLog::fromLog( in, static_cast< T * >( value ) );
   }

   static constexpr GenericIfMethods vtable_{ genericIfDestruct,
                                              genericIfConstruct,
                                              genericIfHash,
                                              genericIfStrRep,
                                              genericIfStrepToValue,
                                              GenericIfImpl::voidPtrIs,
                                              sequenceTo,
                                              equal,
                                              assign,
                                              logOutOf,
                                              logInOf };
};

/// Methods of an enumeration, whatever its names: those of its word, with texts by the record.
template< class Word >
struct GenericIfEnumMethods : GenericIfValueMethods< Word > {
   /// The methods of the word.
   using Base = GenericIfValueMethods< Word >;

   /// The text of a value by the type's record.
   static String genericIfStrRep( void const * value, VornType const * type ) {
      return EnumType< Word >::valueToStrep( *static_cast< Word const * >( value ), type );
   }
   /// Reads a whole text. Throws RangeException for any other, and then the value stays as it was.
   static void genericIfStrepToValue( void * value, String const & text, VornType const * type ) {
      auto it = text.begin();
      Word read;
      sequenceTo( it, text.end(), &read, type );
      strepToValueEnd( text, it );
      *static_cast< Word * >( value ) = read;
   }
   /// Reads a value from the front of a text and moves `it` behind it.
   static void sequenceTo( String::IteratorConst & it, String::IteratorConst const & end, void * value,
                           VornType const * type ) {
      *static_cast< Word * >( value ) = EnumType< Word >::sequenceToValue( it, end, type );
   }

   static constexpr GenericIfMethods vtable_{ Base::genericIfDestruct,
                                              Base::genericIfConstruct,
                                              Base::genericIfHash,
                                              genericIfStrRep,
                                              genericIfStrepToValue,
                                              GenericIfImpl::voidPtrIs,
                                              sequenceTo,
                                              Base::equal,
                                              Base::assign,
                                              Base::logOutOf,
                                              Base::logInOf };
};

/// The record of a value type without a base. `attributes` may be null.
template< class T >
constexpr VornType valueRecord( char const * name, VornAttr const * attributes, U32 attributeNum,
                                VornCtorArg const * ctorArgs ) {
   static_assert( requires( T const & value ) { !value; } );
   VornType type{};
   type.name = name;
   type.attributes = attributes;
   type.ctorArgs = ctorArgs;
   type.methods = &GenericIfValueMethods< T >::vtable_;
   type.sizeAndFlags = VornType::objectSizeFlag | U32( sizeof( T ) );
   type.attributeNum = attributeNum;
   type.flags = VornType::plainFlags;
   type.genericIfAttributeOp = []( void * result, void * object, VornAttr const & attr, U32 op,
                                   void const * key, void const * const * args ) {
      return GenericIfImpl::attributeOp( *recordOf< T >(), result, object, attr, op, key, args );
   };
   return type;
}

/// The record of an enumeration.
constexpr VornType enumRecord( char const * name, VornAttr const * enumerators, std::size_t num ) {
   VornType type{};
   type.name = name;
   type.attributes = enumerators;
   type.methods = &GenericIfEnumMethods< unsigned int >::vtable_;
   type.sizeAndFlags = VornType::objectSizeFlag | U32( sizeof( unsigned int ) );
   type.attributeNum = U32( num );
   type.flags = VornType::plainFlags;
   return type;
}

/// The record of one enumerator.
constexpr VornAttr enumeratorRecord( char const * name, U32 value ) {
   return { name,
            nullptr,
            nullptr,
            nullptr,
            nullptr,
            nullptr,
            attrFlags( VornKind::enumerator, value, local, false ),
            nullptr };
}

} // namespace Vorn

/// Defines the record of a value type that has none in its class and no reflected fields, and registers the
/// type; see VORN_OUTSIDE_VALUE.
#define VORN_OUTSIDE_RECORD( Namespace, Type )                                                               \
   constinit ::Vorn::VornType const ::Vorn::BuiltinType< Namespace::Type >::record =                         \
        ::Vorn::valueRecord< Namespace::Type >( #Namespace "::" #Type, nullptr, 0, nullptr );                \
   VORN_REGISTER_( &::Vorn::BuiltinType< Namespace::Type >::record )

/// Stands first in a class that is a value type.
#define VORN_VALUE( Type )                                                                                   \
   using Self = Type;                                                                                        \
   friend struct ::Vorn::AttrTable< Type >;                                                                  \
                                                                                                             \
 public:                                                                                                     \
   static constexpr U32 vornFirstId = 0x2;                                                                   \
   static ::Vorn::VornType const _vornType;                                                                  \
   /** Whether the value equals a default one. */                                                            \
   bool operator!() const noexcept { return *this == Type(); }                                               \
   VORN_FROM_LOG( Type )                                                                                     \
                                                                                                             \
 private:                                                                                                    \
   VORN_FIRST_LINE_

/// What each line finds before it, the first one too, and finds instead where a line is left out.
#define VORN_FIRST_LINE_                                                                                     \
   static int vornAttr( ::Vorn::AttrId< vornFirstId - 1 > );                                                 \
   static void vornAttr( ... );

/// Heads the function that gives an attribute's record. It is a template so that a file that only includes
/// the header does not have to compile what the record points to: that is most of a header's cost.
#define VORN_ATTR_( id )                                                                                     \
   static_assert( ::Vorn::isAttrIdOf( id, vornFirstId ) &&                                                   \
                       !::std::is_void_v< decltype( vornAttr( ::Vorn::AttrId< id - 1 >{} ) ) >,              \
                  "attribute ids begin with the type's first one and follow each other without a gap" );     \
   template< class VornWhenUsed = void >                                                                     \
   static constexpr ::Vorn::VornAttr vornAttr( ::Vorn::AttrId< id > )

/// Checks the types that a line is given.
#define VORN_CHECK_TYPE_( Type )                                                                             \
   static_assert( ::Vorn::isAttrType< Type >,                                                                \
                  "an attribute's type has a record: bool, U8 to U64, double, Vorn::String, an enumeration " \
                  "of VORN_ENUM, a value of VORN_VALUE. An int is a U32, a float a double, a std::string a " \
                  "Vorn::String" );
#define VORN_CHECK_KEY_( Key )                                                                               \
   static_assert( ::Vorn::isAttrKey< Key >, "a key has a record, U32 hash() const, == and <" );

/// The class within that function: nothing that has it as an argument is made before the function is used.
#define VORN_SELF_ typename ::Vorn::WhenUsed< Self, VornWhenUsed >::Type

/// A field that the constructor sets and nothing changes. The default stands behind the line.
#define VORN_CTOR_FIELD( id, Type, x )                                                                       \
   VORN_CHECK_TYPE_( Type ) VORN_CTOR_FIELD_( id, ::Vorn::AttrType< Type >, x )
#define VORN_CTOR_FIELD_( id, Type, x )                                                                      \
 public:                                                                                                     \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   VORN_ATTR_( id ) { return ::Vorn::fieldAttr< VORN_SELF_, Type, &Self::x##_, false >( #x, id ); }          \
                                                                                                             \
 private:                                                                                                    \
   Type x##_ = ::Vorn::Default< Type > {}

/// A field with a setter.
#define VORN_FIELD( id, Type, x ) VORN_CHECK_TYPE_( Type ) VORN_FIELD_( id, ::Vorn::AttrType< Type >, x )
#define VORN_FIELD_( id, Type, x )                                                                           \
 public:                                                                                                     \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   void x##Is( ::Vorn::Arg< Type > value ) { x##_ = value; }                                                 \
   VORN_ATTR_( id ) { return ::Vorn::fieldAttr< VORN_SELF_, Type, &Self::x##_, true >( #x, id ); }           \
                                                                                                             \
 private:                                                                                                    \
   Type x##_ = ::Vorn::Default< Type > {}

/// A field whose setter, which the class defines by hand, throws RangeException for what is out of range;
/// text and log come in through it too.
#define VORN_CHECKED_FIELD( id, Type, x )                                                                    \
   VORN_CHECK_TYPE_( Type ) VORN_CHECKED_FIELD_( id, ::Vorn::AttrType< Type >, x )
#define VORN_CHECKED_FIELD_( id, Type, x )                                                                   \
 public:                                                                                                     \
   ::Vorn::Arg< Type > x() const noexcept { return x##_; }                                                   \
   void x##Is( ::Vorn::Arg< Type > value );                                                                  \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >(                                                         \
           #x, ::Vorn::VornKind::state, id, ::Vorn::local,                                                   \
           &::Vorn::scalarOps< VORN_SELF_, Type, &Self::x, &Self::x##Is > );                                 \
   }                                                                                                         \
                                                                                                             \
 private:                                                                                                    \
   Type x##_ = ::Vorn::Default< Type > {}

/// A const member function of a value that reflection calls; the class defines it by hand.
#define VORN_VALUE_FUNCTION( id, Type, x )                                                                   \
 public:                                                                                                     \
   Type x() const;                                                                                           \
   VORN_ATTR_( id ) { return ::Vorn::functionRecord< VORN_SELF_, &Self::x >( #x, id ); }                     \
   static_assert( true )

/// Computed on each read; the class defines the function by hand.
#define VORN_VALUE_DERIVED( id, Type, x )                                                                    \
 public:                                                                                                     \
   Type x() const;                                                                                           \
   VORN_ATTR_( id ) {                                                                                        \
      return ::Vorn::attrRecord< VORN_SELF_, Type >( #x, ::Vorn::VornKind::derived, id, ::Vorn::local,       \
                                                     &::Vorn::readOps< VORN_SELF_, &Self::x > );             \
   }                                                                                                         \
   static_assert( true )

/// The value's own text, which can be read and written; the class defines both functions by hand.
#define VORN_VALUE_TEXT( id, x, xIs )                                                                        \
 public:                                                                                                     \
   ::Vorn::String x() const;                                                                                 \
   void xIs( ::Vorn::String const & text );                                                                  \
   VORN_VIEW_( id, ::Vorn::String, x, xIs )

/// One bit of a bit word, whose word is the field `value`: `VORN_BIT( 0x5, 0, grFlagSpeaker );`. The setter
/// leaves the other bits alone. A bit word declares `value` first, then its constants, then its bits.
#define VORN_BIT( id, bit, x )                                                                               \
 public:                                                                                                     \
   constexpr bool x() const noexcept { return value_ >> (bit)&1; }                                           \
   constexpr void x##Is( bool set ) noexcept {                                                               \
      auto const mask = decltype( value_ )( decltype( value_ )( 1 ) << ( bit ) );                            \
      value_ = set ? value_ | mask : value_ & ~mask;                                                         \
   }                                                                                                         \
   VORN_VIEW_( id, bool, x, x##Is )

/// The record of a view: what can be read and written but is no field.
#define VORN_VIEW_( id, Type, x, xIs )                                                                       \
   VORN_ATTR_( id ) {                                                                                        \
      auto attr = ::Vorn::attrRecord< VORN_SELF_, Type >(                                                    \
           #x, ::Vorn::VornKind::state, id, ::Vorn::local,                                                   \
           &::Vorn::scalarOps< VORN_SELF_, Type, &Self::x, &Self::xIs > );                                   \
      attr.flags |= ::Vorn::viewAccess;                                                                      \
      return attr;                                                                                           \
   }                                                                                                         \
   static_assert( true )

/// Defines the record of a value type and registers the type. Stands in the source file, inside the type's
/// namespace.
#define VORN_VALUE_RECORD( Namespace, Type )                                                                 \
   constinit ::Vorn::VornType const Type::_vornType =                                                        \
        ::Vorn::valueRecord< Type >( #Namespace "::" #Type, ::Vorn::AttrTable< Type >::attributes,           \
                                     ::Vorn::AttrTable< Type >::num, ::Vorn::AttrTable< Type >::ctorArgs );  \
   VORN_REGISTER_( &Type::_vornType )

/// Makes the text forms of a value type from its record: its fields.
#define VORN_TEXT_OF_RECORD( Type ) VORN_TEXT_OF_( Type, &::Vorn::VornAttr::isField )
/// The same for a bit word that shows each of its flags.
#define VORN_TEXT_OF_FLAGS( Type ) VORN_TEXT_OF_( Type, &::Vorn::VornAttr::isView )
#define VORN_TEXT_OF_( Type, shown )                                                                         \
   ::Vorn::String valueToStrep( Type const & value ) {                                                       \
      return ::Vorn::GenericIfImpl::recordToStrep( &value, Type::_vornType, shown );                         \
   }                                                                                                         \
   void sequenceToValue( ::Vorn::String::IteratorConst & it, ::Vorn::String::IteratorConst const & end,      \
                         Type * value ) {                                                                    \
      Type read{};                                                                                           \
      ::Vorn::GenericIfImpl::recordFromSequence( it, end, &read, Type::_vornType, shown );                   \
      *value = read;                                                                                         \
   }                                                                                                         \
   VORN_TEXT_STREAM( Type )

/// Defines the record and the text forms of an enumeration, and registers it. Stands in the source file.
#define VORN_ENUM_RECORD( Namespace, Type, LIST ) VORN_ENUM_RECORD_NAMED( #Namespace "::" #Type, Type, LIST )
/// The same under a name of its own, for the enumeration of a class.
#define VORN_ENUM_RECORD_NAMED( name, Type, LIST )                                                           \
   static constexpr ::Vorn::VornAttr Type##_enumerators[] = { LIST(                                          \
        VORN_ENUMERATOR_RECORD )::Vorn::VornAttr{} };                                                        \
   constinit ::Vorn::VornType const Type##_vornType =                                                        \
        ::Vorn::enumRecord( name, Type##_enumerators, std::size( Type##_enumerators ) - 1 );                 \
   VORN_REGISTER_( &Type##_vornType )                                                                        \
   ::Vorn::String valueToStrep( Type const & value ) {                                                       \
      return ::Vorn::EnumType< unsigned int >::valueToStrep( value, &Type##_vornType );                      \
   }                                                                                                         \
   void sequenceToValue( ::Vorn::String::IteratorConst & it, ::Vorn::String::IteratorConst const & end,      \
                         Type * value ) {                                                                    \
      *value = Type( ::Vorn::EnumType< unsigned int >::sequenceToValue( it, end, &Type##_vornType ) );       \
   }                                                                                                         \
   VORN_TEXT_STREAM( Type )
/// The record of one enumerator of a list.
#define VORN_ENUMERATOR_RECORD( name, number, ... ) ::Vorn::enumeratorRecord( #name, U32( number ) ),
