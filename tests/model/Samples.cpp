#include "model/Samples.h"

#include <gtest/gtest.h>

#include <map>

namespace Test {

using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornCtorArg;
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
      { "Pseudowire::PseudowireId", { "7", "4294967295" } },
      { "Pseudowire::GroupId", { "7", "4294967295" } },
      { "Pseudowire::VccvCvTypes", { "7", "255" } },
      { "Bridging::VlanIdOrNone", { "7", "4094" } },
      { "Ldp::PwFwdEqvClass", { "pw100:pwTypeRaw:cbit1", "pw7:99:cbit0" } },
      { "Lumo::NamespaceName", { "'ns-red'", "'ns-blue'" } },
      { "Mpls::FwdEqvClass", { "10.0.0.0/8", "words(1,2)", "p2mp(10.0.0.1,7)" } },
      { "Ldp::LdpIdentifier", { "10.0.0.1:0", "10.0.0.1:1" } },
      { "Ldp::LdpSessionId", { "10.0.0.1:0", "10.0.0.1:1" } },
      { "Ldp::LdpAdjId", { "10.0.0.1:0_Ethernet1", "10.0.0.1:0_TARGET_10.0.0.1" } },
      { "Ldp::LdpP2mpFecGenericOpaqueId", { "10.0.0.1_7", "2001:db8::1_4294967295" } },
      { "Ldp::LdpProtoParamSetting", { "2", "512" } },
      { "Ldp::LdpFecTlvP2mpOpaqueLength", { "7", "65535" } },
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

Value sample( VornType const & type, std::size_t index ) {
   Value value( &type );
   if ( type.genericIfConstructFromCtorArgs ) {
      Ptr< PtrInterface > const object = newSampleObject( type, index );
      type.methods->assign( value.data(), &object );
   } else {
      value.stringValueIs( sampleTexts( type ).at( index ).c_str() );
   }
   return value;
}

Ptr< PtrInterface > newSampleObject( VornType const & type, std::size_t index ) {
   std::vector< Value > values;
   for ( VornCtorArg const * arg = type.ctorArgs; arg->name; ++arg ) {
      values.push_back( sample( *arg->type, index ) );
   }
   std::vector< void const * > args;
   for ( Value const & value : values ) {
      args.push_back( value.data() );
   }
   Ptr< PtrInterface > object;
   type.genericIfConstructFromCtorArgs( &object, args.data() );
   return object;
}

} // namespace Test
