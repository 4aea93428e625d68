// Values of every type.
#include "model/Samples.h"

#include "Ldp/LdpCommon.h"
#include "Ldp/LdpMsgParser.h"
#include "Lumo/UdpPam.h"
#include "Vorn/Entity.h"
#include "Vorn/Impl/AttrTable.h"

#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <stdexcept>

namespace Test {

using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornCtorArg;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;

namespace {

// A composite whose fields take their samples by turns, so that not all of them are alike.
std::string composite( VornType const & type, std::size_t index ) {
   std::string text;
   for ( VornAttr const * attr = type.attributes; attr->name; ++attr ) {
      if ( !attr->isField() ) continue;
      auto const fields = sampleTexts( *attr->type );
      text += std::string( text.empty() ? "'" : ", '" ) + attr->name + "': " + fields[index++ % 2];
   }
   return std::string( "Value('" ) + type.name + "', ** {" + text + "})";
}

} // namespace

WrittenTexts const & writtenTexts( VornType const & type ) {
   static std::map< std::string, WrittenTexts > const all = [] {
      std::map< std::string, WrittenTexts > read;
      std::ifstream lines( LDP_TEST_EXPECTED "/../texts.txt" );
      WrittenTexts * texts = nullptr;
      for ( std::string line; std::getline( lines, line ); ) {
         if ( line.empty() || line[0] == '#' ) continue;
         std::string const text = line.substr( std::min< std::size_t >( 2, line.size() ) );
         switch ( line[0] ) {
         case '+': texts->good.push_back( text ); break;
         case '-': texts->bad.push_back( text ); break;
         case '!': texts->refusal = text; break;
         default: texts = &read[line];
         }
      }
      return read;
   }();
   static WrittenTexts const none;
   auto const found = all.find( type.name );
   return found == all.end() ? none : found->second;
}

std::vector< std::string > sampleTexts( VornType const & type ) {
   auto const & texts = writtenTexts( type );
   if ( !texts.good.empty() ) return texts.good;
   std::vector< std::string > made;
   if ( type.isEnum() ) {
      for ( VornAttr const * attr = type.attributes; attr->name && made.size() < 2; ++attr ) {
         if ( attr->id() != 0 ) made.emplace_back( attr->name );
      }
      made.emplace_back( "4294967295" ); // no enumerator
   } else if ( type.attributes ) {
      made = { composite( type, 0 ), composite( type, 1 ) };
   }
   EXPECT_FALSE( made.empty() ) << "no samples of " << type.name;
   return made;
}

Value room( VornType const & type ) {
   // A counted type without methods of its own is referred to like an entity.
   return Value( type.methods ? &type : &Entity::_vornType );
}

Value sample( VornType const & type, std::size_t index ) {
   Value value = room( type );
   if ( type.isPolymorphic() ) {
      Ptr< PtrInterface > const made = newSampleObject( type, index );
      value.type()->methods->assign( value.data(), &made );
   } else {
      value.stringValueIs( sampleTexts( type ).at( index ).c_str() );
   }
   return value;
}

namespace {

Ptr< Lumo::Pkt > packet() { return Lumo::pktFactory( "", 0 ); }

U32 callWith( std::vector< Value > const & args, auto const & call ) {
   std::vector< void const * > pointers;
   for ( Value const & value : args ) {
      pointers.push_back( value.data() );
   }
   return call( pointers.data() );
}

} // namespace

Ptr< PtrInterface > newSampleObject( VornType const & type, std::size_t index ) {
   static std::map< std::string, Ptr< PtrInterface > ( * )() > const makers{
      { "Lumo::Pkt", [] { return Ptr< PtrInterface >( packet() ); } },
      { "Lumo::UdpPam", [] { return Ptr< PtrInterface >( Vorn::newObject< Lumo::UdpPam >() ); } },
      { "Ldp::LdpMsg", [] { return Ptr< PtrInterface >( Ldp::ldpMsgFactory( {}, packet(), 0 ) ); } },
      { "Ldp::LdpLabelMappingMsgParser",
        [] { return Ptr< PtrInterface >( Ldp::ldpLabelMappingMsgParserFactory( packet(), 0 ) ); } },
      { "Ldp::LdpLabelRequestMsgParser",
        [] { return Ptr< PtrInterface >( Ldp::ldpLabelRequestMsgParserFactory( packet(), 0 ) ); } },
   };
   if ( auto const maker = makers.find( type.name ); maker != makers.end() ) return maker->second();
   std::vector< Value > values;
   for ( VornCtorArg const * arg = type.ctorArgs; arg->name; ++arg ) {
      values.push_back( sample( *arg->type, index ) );
   }
   Ptr< PtrInterface > object;
   callWith( values, [&]( void const * const * args ) {
      type.genericIfConstructFromCtorArgs( &object, args );
      return 0u;
   } );
   return object;
}

U32 attributeOp( Ptr< PtrInterface > const & object, VornAttr const & attr, U32 op, void * result,
                 void const * key, std::vector< Value > const & args ) {
   return callWith( args, [&]( void const * const * pointers ) {
      return Vorn::GenericIf::attributeOp( *object->fwkType(), result, address( object ), attr, op, key,
                                           pointers );
   } );
}

std::vector< Value > sampleArgs( VornAttr const & attr, std::size_t index ) {
   std::vector< Value > args;
   if ( attr.instantiating() ) {
      for ( VornCtorArg const * arg = attr.memberCtorArgs; arg->name; ++arg ) {
         args.push_back( sample( *arg->type, index ) );
      }
   } else {
      args.push_back( sample( *attr.type, index ) );
   }
   return args;
}

Value sampleKey( VornAttr const & attr, std::size_t index ) {
   bool const sampled = attr.keyed() && attr.kind() != VornKind::queue;
   return sampled ? sample( *attr.keyType, index ) : Value( Vorn::recordOf< U32 >() );
}

bool isWritten( VornAttr const & attr ) {
   switch ( attr.kind() ) {
   case VornKind::mutableAttr:
   case VornKind::state:
   case VornKind::reference: return true;
   default: return attr.keyed() || attr.instantiating();
   }
}

} // namespace Test
