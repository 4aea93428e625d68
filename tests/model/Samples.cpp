// Values of every type.
#include "model/Samples.h"

#include "Ldp/LdpCommon.h"
#include "Ldp/LdpMsgParser.h"
#include "Lumo/UdpPam.h"
#include "Vorn/AttributeOps.h"
#include "Vorn/Entity.h"

#include <gtest/gtest.h>

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

std::vector< std::string > sampleTexts( VornType const & type ) {
   static std::map< std::string, std::vector< std::string > > const texts{
      { "bool", { "True", "False" } },
      { "U8", { "7", "255" } },
      { "U16", { "7", "65535" } },
      { "U32", { "7", "4294967295" } },
      { "U64", { "7", "18446744073709551615" } },
      { "double", { "0.1", "-2.5e+300" } },
      { "Vorn::String", { "'a'", R"('it\'s \\ \x00\xff')" } },
      { "Vorn::Name", { "'a'", "'b'" } },
      { "L3::VrfName", { "'red'", "'blue'" } },
      { "Lumo::IpAddr", { "10.0.0.1", "255.255.255.255" } },
      { "Lumo::IpGenAddr", { "10.0.0.1", "2001:db8::1", "::" } },
      { "Lumo::IpGenPrefix", { "10.0.0.0/8", "2001:db8::/32" } },
      { "Lumo::IpDscp", { "7", "255" } },
      { "Lumo::IntfId", { "'Ethernet1'", "'Vlan10'" } },
      { "Lumo::MplsLabel", { "16", "1048575" } },
      { "Lumo::NetU16", { "7", "65535" } },
      { "Lumo::NetU32", { "7", "4294967295" } },
      { "Lumo::IpAddrWithMask", { "10.0.0.1/8", "10.0.0.1/32" } },
      { "Lumo::IpGenAddrWithMask", { "10.0.0.1/8", "2001:db8::1/64" } },
      { "Lumo::IpTtl", { "7", "255" } },
      { "Lumo::Port", { "646", "65535" } },
      { "Lumo::TcpSocketOptions", { "7", "4294967295" } },
      { "Lumo::TcpConnSocket", { "7", "8" } },
      { "Mpls::RouterId", { "10.0.0.1", "255.255.255.255" } },
      { "Pseudowire::PseudowireLdpRequestKey", { "10.0.0.1_7", "2001:db8::1_4294967295" } },
      { "Pseudowire::PseudowireLdpStatusFlags", { "7", "4294967295" } },
      { "Pseudowire::PseudowireId", { "7", "4294967295" } },
      { "Pseudowire::GroupId", { "7", "4294967295" } },
      { "Pseudowire::VccvCvTypes", { "7", "255" } },
      { "Bridging::VlanIdOrNone", { "7", "4094" } },
      { "Ldp::PwFwdEqvClass", { "pw100:pwTypeRaw:cbit1", "pw7:99:cbit0" } },
      { "Lumo::NamespaceName", { "'ns-red'", "'ns-blue'" } },
      { "Mpls::FwdEqvClass", { "10.0.0.0/8", "words(1,2)", "p2mp(10.0.0.1,7)" } },
      { "Ldp::LdpIdentifier", { "10.0.0.1:0", "10.0.0.1:1" } },
      { "Ldp::LdpSessionId", { "10.0.0.1:0", "10.0.0.1:1" } },
      { "Ldp::LdpFecSessionId", { "10.0.0.0/8_10.0.0.1:0", "10.0.0.0/9_10.0.0.1:1" } },
      { "Ldp::PwFecSessionId", { "10.0.0.1:0_pw100:pwTypeRaw:cbit1", "10.0.0.1:0_pw7:99:cbit0" } },
      { "Ldp::LdpLocalLabelSessionState", { "4", "2147483652" } },
      { "Ldp::LdpPeerLabelSessionState", { "4", "2147483652" } },
      { "Ldp::LdpAdjId", { "10.0.0.1:0_Ethernet1", "10.0.0.1:0_TARGET_10.0.0.1" } },
      { "Ldp::LdpP2mpFecGenericOpaqueId", { "10.0.0.1_7", "2001:db8::1_4294967295" } },
      { "Ldp::LdpProtoParamSetting", { "2", "512" } },
      { "Ldp::LdpFecTlvP2mpOpaqueLength", { "7", "65535" } },
      { "Ldp::LdpCommonSessionParamTlvAdField", { "7", "255" } },
      { "Ldp::LdpStateBit", { "7", "255" } },
      { "Ldp::LdpFecTlvElementHdrTypeField", { "7", "255" } },
      { "Ldp::LdpPwIntfParamFlags",
        { "Value('Ldp::LdpPwIntfParamFlags', ** {'intfMtu': True, 'intfDesc': False, 'requestedVlanId': "
          "True, "
          "'fragIndicator': False, 'vccvParam': True})",
          "Value('Ldp::LdpPwIntfParamFlags', ** {'intfMtu': False, 'intfDesc': True, 'requestedVlanId': "
          "False, "
          "'fragIndicator': True, 'vccvParam': False})" } },
      { "Lumo::NetU8", { "7", "255" } },
      { "Lumo::Ip6Addr", { "2001:db8::1", "::1" } },
      { "Ldp::LdpGrOperationalFlag",
        { "Value('Ldp::LdpGrOperationalFlag', ** {'grFlagSpeaker': True, 'grFlagHelper': False})",
          "Value('Ldp::LdpGrOperationalFlag', ** {'grFlagSpeaker': True, 'grFlagHelper': True})" } },
      { "Ldp::LdpFecBindingInfo",
        { "Value('Ldp::LdpFecBindingInfo', ** {'inputLabel': 16, 'outputLabel': 3, 'nexthopIntfIp': "
          "10.0.0.1})",
          "Value('Ldp::LdpFecBindingInfo', ** {'inputLabel': 16, 'outputLabel': 3, 'nexthopIntfIp': "
          "none})" } },
      { "Ldp::LdpSessionState",
        { "Value('Ldp::LdpSessionState', ** {'sessionState': stateOperational, 'code': success})",
          "Value('Ldp::LdpSessionState', ** {'sessionState': stateOperational, 'code': shutdown})" } },
      { "Ldp::LdpSessionStateLogEntry",
        { "Value('Ldp::LdpSessionStateLogEntry', ** {'timeStamp': 0.5, 'sessionState': stateExpired, 'code': "
          "shutdown, 'reason': 'it\\'s over'})",
          "Value('Ldp::LdpSessionStateLogEntry', ** {'timeStamp': 1e-07, 'sessionState': 99, 'code': 7777, "
          "'reason': ''})" } },
   };
   if ( auto const found = texts.find( type.name ); found != texts.end() ) return found->second;
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
