// Values in Python, by their records.
#include "Values.h"

#include "ByAddress.h"
#include "Entities.h"

#include "views/Tree.h"

#include "Lumo/IpMask.h"
#include "Mpls/FwdEqvClass.h"
#include "Mpls/Types.h"

#include <cstring>
#include <string>
#include <unordered_map>

namespace LdpPython {

using Vorn::VornAttr;
using Vorn::VornType;
using Vorn::GenericIf::Value;

namespace {

template< class T >
T const & as( void const * value ) {
   return *static_cast< T const * >( value );
}

// Objects that outlive every interpreter's end: nothing drops them.
py::handle imported( char const * module, char const * name ) {
   return py::module_::import( module ).attr( name ).cast< py::object >().release();
}

py::object call( py::handle type, PyObject * argument ) {
   py::object const held = py::reinterpret_steal< py::object >( argument );
   if ( !held ) throw py::error_already_set();
   PyObject * const made = PyObject_CallOneArg( type.ptr(), argument );
   if ( !made ) throw py::error_already_set();
   return py::reinterpret_steal< py::object >( made );
}

/// What `ipaddress` makes takes it a microsecond or more, and a capture names the same few again and again.
/// They never change, so they are kept.
class Kept {
 public:
   template< class Make >
   py::object of( char kind, Lumo::IpGenAddr const & addr, U32 bits, Make const & make ) {
      Key key{ {}, U32( kind ) << 16 | U32( addr.family() ) << 8 | bits };
      std::size_t const size = addr.family() == Lumo::ipv4 ? Lumo::IpAddr::size : Lumo::Ip6Addr::size;
      Lumo::IpAddr const ipv4 = addr.ipAddr();
      std::memcpy( key.octets, addr.family() == Lumo::ipv4 ? ipv4.octets() : addr.octets(), size );
      if ( auto const found = objects_.find( key ); found != objects_.end() ) return found->second;
      if ( objects_.size() >= most ) objects_.clear();
      return objects_[key] = make();
   }

 private:
   static constexpr std::size_t most = 65536;
   struct Key {
      U64 octets[2];
      U32 kind; ///< and family and bits
      bool operator==( Key const & ) const = default;
   };
   struct Hash {
      std::size_t operator()( Key const & key ) const {
         U64 const mixed = ( key.octets[0] ^ key.kind ) * 0x9e3779b97f4a7c15 + key.octets[1];
         return ( mixed ^ mixed >> 32 ) * 0x9e3779b97f4a7c15;
      }
   };
   std::unordered_map< Key, py::object, Hash > objects_;
};

PyObject * octetsOf( Lumo::Ip6Addr const & addr ) {
   return PyBytes_FromStringAndSize( reinterpret_cast< char const * >( addr.octets() ), addr.size );
}

py::object addressOf( Lumo::IpGenAddr const & addr ) {
   static py::handle const ipv4 = imported( "ipaddress", "IPv4Address" );
   static py::handle const ipv6 = imported( "ipaddress", "IPv6Address" );
   static Kept & kept = *new Kept;
   if ( addr.family() == Lumo::noFamily ) return py::none();
   return kept.of( 'a', addr, 0, [&] {
      return addr.family() == Lumo::ipv4 ? call( ipv4, PyLong_FromUnsignedLong( addr.ipAddr().value() ) )
                                         : call( ipv6, octetsOf( addr.ip6Addr() ) );
   } );
}

/// `interface` keeps the bits behind the mask.
py::object prefixOf( Lumo::IpGenAddr const & addr, U32 bits, bool interface ) {
   static py::handle const classes[] = { imported( "ipaddress", "IPv4Network" ),
                                         imported( "ipaddress", "IPv6Network" ),
                                         imported( "ipaddress", "IPv4Interface" ),
                                         imported( "ipaddress", "IPv6Interface" ) };
   static Kept & kept = *new Kept;
   if ( addr.family() == Lumo::noFamily ) return py::none();
   return kept.of( interface ? 'i' : 'p', addr, bits, [&] {
      bool const v4 = addr.family() == Lumo::ipv4;
      py::object const number =
           v4 ? py::reinterpret_steal< py::object >( PyLong_FromUnsignedLong( addr.ipAddr().value() ) )
              : py::reinterpret_steal< py::object >( octetsOf( addr.ip6Addr() ) );
      return call( classes[2 * interface + !v4], py::make_tuple( number, bits ).release().ptr() );
   } );
}

py::object fecOf( void const * value ) {
   auto const & fec = as< Mpls::FwdEqvClass >( value );
   if ( fec.tag() != Mpls::FwdEqvClass::prefixTag ) return textOf( fec.stringValue().view() );
   return prefixOf( fec.prefix().address(), fec.prefix().len(), false );
}

struct Address {
   VornType const * type;
   py::object ( *convert )( void const * value );
   char const * form;
};

/// The types of addresses and prefixes.
Address const addresses[] = {
   { Vorn::recordOf< Lumo::IpAddr >(), []( void const * v ) { return addressOf( as< Lumo::IpAddr >( v ) ); },
     "IPv4Address" },
   { Vorn::recordOf< Lumo::Ip6Addr >(),
     []( void const * v ) { return addressOf( as< Lumo::Ip6Addr >( v ) ); }, "IPv6Address" },
   { Vorn::recordOf< Lumo::IpGenAddr >(),
     []( void const * v ) { return addressOf( as< Lumo::IpGenAddr >( v ) ); }, "Address | None" },
   { Vorn::recordOf< Mpls::RouterId >(),
     []( void const * v ) { return addressOf( as< Mpls::RouterId >( v ).id() ); }, "IPv4Address" },
   { Vorn::recordOf< Lumo::IpGenPrefix >(),
     []( void const * v ) {
        auto const & prefix = as< Lumo::IpGenPrefix >( v );
        return prefixOf( prefix.address(), prefix.len(), false );
     },
     "Prefix | None" },
   { Vorn::recordOf< Lumo::IpAddrWithMask >(),
     []( void const * v ) {
        auto const & both = as< Lumo::IpAddrWithMask >( v );
        return prefixOf( both.address(), both.len(), true );
     },
     "IPv4Interface" },
   { Vorn::recordOf< Lumo::IpGenAddrWithMask >(),
     []( void const * v ) {
        auto const & both = as< Lumo::IpGenAddrWithMask >( v );
        return prefixOf( both.address(), both.len(), true );
     },
     "IPv4Interface | IPv6Interface | None" },
   { Vorn::recordOf< Mpls::FwdEqvClass >(), fecOf, "Prefix | str | None" },
};

py::object partOf( VornType const & type, VornAttr const & attr, void const * value,
                   SourcePtr const & source ) {
   Value part( attr.type );
   Vorn::GenericIf::attributeOp( type, part.data(), const_cast< void * >( value ), attr,
                                 Vorn::GenericIf::read, nullptr, nullptr );
   return toPython( *attr.type, part.data(), source );
}

py::object tupleOf( VornType const & type, void const * value, SourcePtr const & source ) {
   py::list parts;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
      if ( LdpTool::isPart( *attr ) ) parts.append( partOf( type, *attr, value, source ) );
   return classOf( type )( *py::tuple( parts ) );
}

/// What has neither fields nor a conversion: a number if its text is one, else the text.
py::object wordOf( VornType const & type, void const * value ) {
   std::string const text = LdpTool::plainText( type, value );
   auto const number = LdpTool::numberIn( text );
   return number ? py::int_( *number ) : textOf( text );
}

using Convert = py::object ( * )( VornType const & type, void const * value, SourcePtr const & source );
template< class Number >
py::object numberOf( VornType const &, void const * value, SourcePtr const & ) {
   return py::int_( as< Number >( value ) );
}

struct Conversion {
   Convert convert = nullptr;
   py::object ( *address )( void const * value ) = nullptr;
   std::string form;
   VornAttr const * only = nullptr; ///< the field that is all of the value
};

template< class Number >
bool isNumber( VornType const & type, Conversion & conversion ) {
   if ( &type != Vorn::recordOf< Number >() ) return false;
   conversion.convert = numberOf< Number >;
   conversion.form = "int";
   return true;
}

Conversion conversionOf( VornType const & type ) {
   Conversion c;
   for ( Address const & address : addresses )
      if ( address.type == &type ) {
         c.address = address.convert;
         c.form = address.form;
         return c;
      }
   if ( isNumber< U8 >( type, c ) || isNumber< U16 >( type, c ) || isNumber< U32 >( type, c ) ||
        isNumber< U64 >( type, c ) )
      return c;
   std::string const json = LdpTool::jsonForm( type );
   if ( LdpTool::isReference( type ) ) {
      c.form = shortName( type );
      c.convert = []( VornType const &, void const * value, SourcePtr const & source ) {
         return wrap( LdpTool::referenced( value ), source );
      };
   } else if ( type.isEnum() ) {
      c.form = shortName( type );
      c.convert = []( VornType const & t, void const * value, SourcePtr const & ) {
         return enumeratorOf( t, as< U32 >( value ) );
      };
   } else if ( &type == Vorn::recordOf< bool >() ) {
      c.form = "bool";
      c.convert = []( VornType const &, void const * value, SourcePtr const & ) -> py::object {
         return py::bool_( as< bool >( value ) );
      };
   } else if ( &type == Vorn::recordOf< double >() ) {
      c.form = "float";
      c.convert = []( VornType const &, void const * value, SourcePtr const & ) -> py::object {
         return py::float_( as< double >( value ) );
      };
   } else if ( type.isDerived( Vorn::recordOf< Vorn::String >() ) ||
               &type == Vorn::recordOf< Vorn::Name >() ) {
      c.form = "str";
      c.convert = []( VornType const &, void const * value, SourcePtr const & ) {
         return textOf( as< Vorn::String >( value ).view() );
      };
   } else if ( isTuple( type ) ) {
      c.form = shortName( type );
      c.convert = tupleOf;
   } else if ( ( c.only = LdpTool::onlyField( type ) ) ) {
      c.form = pythonForm( *c.only->type );
   } else {
      // Which of the two a word is shows its default.
      bool const number = py::isinstance< py::int_ >( wordOf( type, Value( &type ).data() ) );
      c.form = number ? "int" : "str";
      c.convert = []( VornType const & t, void const * value, SourcePtr const & ) {
         return wordOf( t, value );
      };
   }
   return c;
}

Conversion const & known( VornType const & type ) {
   static auto & conversions = *new ByAddress< VornType, Conversion >;
   return conversions.of( &type, [&] { return conversionOf( type ); } );
}

void placeParts( VornType const & type, py::handle from, Value & value ) {
   py::sequence const parts = py::reinterpret_borrow< py::sequence >( from );
   std::size_t at = 0;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !LdpTool::isPart( *attr ) ) continue;
      if ( at == parts.size() ) break;
      Value part( attr->type );
      fromPython( *attr->type, parts[at++], part );
      void const * const args[] = { part.data() };
      U32 const op = attr->isField() ? Vorn::GenericIf::place : Vorn::GenericIf::write;
      Vorn::GenericIf::attributeOp( type, nullptr, value.data(), *attr, op, nullptr, args );
   }
}

} // namespace

char const * shortName( VornType const & type ) {
   char const * const colon = std::strrchr( type.name, ':' );
   return colon ? colon + 1 : type.name;
}

bool isTuple( VornType const & type ) {
   return type.methods && !type.isPolymorphic() && !type.isOverlay() && !type.isEnum() &&
          LdpTool::jsonForm( type ) == std::string_view( "object" );
}

std::string pythonForm( VornType const & type ) { return known( type ).form; }

py::object textOf( std::string_view octets ) {
   PyObject * const text = PyUnicode_DecodeLatin1( octets.data(), py::ssize_t( octets.size() ), nullptr );
   if ( !text ) throw py::error_already_set();
   return py::reinterpret_steal< py::object >( text );
}

py::object enumeratorOf( VornType const & type, U32 number ) {
   using Names = std::unordered_map< U32, PyObject * >;
   static auto & types = *new ByAddress< VornType, Names >;
   Names const & names = types.of( &type, [&] {
      Names all;
      for ( VornAttr const * attr = type.attributes; attr->name; ++attr )
         all.try_emplace( attr->id(), PyUnicode_InternFromString( attr->name ) );
      return all;
   } );
   auto const found = names.find( number );
   if ( found == names.end() ) return py::int_( number );
   return py::reinterpret_borrow< py::object >( found->second );
}

py::object toPython( VornType const & type, void const * value, SourcePtr const & source ) {
   Conversion const & c = known( type );
   if ( c.address ) return c.address( value );
   if ( c.only ) return partOf( type, *c.only, value, source );
   return c.convert( type, value, source );
}

void fromPython( VornType const & type, py::handle from, Value & value ) {
   bool const text = py::isinstance< py::str >( from );
   if ( !text && py::isinstance< py::tuple >( from ) && isTuple( type ) )
      return placeParts( type, from, value );
   Conversion const & c = known( type );
   std::string octets;
   try {
      octets = py::str( from ).attr( "encode" )( "latin-1" ).cast< std::string >();
   } catch ( py::error_already_set const & ) {
      throwKeyError( from );
   }
   if ( c.only ) {
      Value part( c.only->type );
      fromPython( *c.only->type, from, part );
      void const * const args[] = { part.data() };
      Vorn::GenericIf::attributeOp( type, nullptr, value.data(), *c.only, Vorn::GenericIf::place, nullptr,
                                    args );
      return;
   }
   Vorn::String const plain( octets.data(), octets.size() );
   try {
      bool const quoted = c.form == "str" && value.stringValue().view().starts_with( '\'' );
      value.stringValueIs( quoted ? Vorn::valueToStrep( plain ) : plain );
   } catch ( Vorn::Exception const & ) {
      throwKeyError( from );
   }
}

void throwKeyError( py::handle key ) {
   PyErr_SetObject( PyExc_KeyError, key.ptr() );
   throw py::error_already_set();
}

} // namespace LdpPython
