// What every value type promises: its text and its octets on the log read back, and nothing else does.
#include "model/Samples.h"

#include "Bridging/VlanId.h"
#include "Ldp/LdpMsgParser.h"
#include "Vorn/Entity.h"
#include "Vorn/NboAttrLog.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>

namespace {

using namespace Test;
using Vorn::Entity;
using Vorn::RangeException;
using Vorn::VornAttr;
using Vorn::VornType;
using Vorn::GenericIf::Value;

// All value types that are registered or stand in an attribute.
std::set< VornType const * > valueTypes() {
   std::set< VornType const * > types;
   auto const add = [&]( VornType const * type ) {
      if ( type && type->methods && !type->isDerived( &Entity::_vornType ) && type->methods->equal &&
           type->methods->logOut )
         types.insert( type );
   };
   for ( VornType const * type : Vorn::typeNodes() ) {
      add( type );
      if ( type->isEnum() ) continue;
      for ( VornAttr const * attr = type->attributes; attr && attr->name; ++attr ) {
         add( attr->type );
         add( attr->keyType );
      }
   }
   return types;
}

TEST( ValueSweep, EveryValueReadsBackFromItsText ) {
   for ( VornType const * type : valueTypes() ) {
      SCOPED_TRACE( type->name );
      Value const unset( type );
      std::set< std::string > seen{ unset.stringValue().charPtr() };
      std::vector< Value > values{ unset };
      for ( std::size_t i = 0; i < sampleTexts( *type ).size(); ++i ) {
         values.push_back( sample( *type, i ) );
         EXPECT_EQ( values.back().stringValue(), sampleTexts( *type )[i].c_str() );
         bool const fresh = seen.insert( values.back().stringValue().charPtr() ).second;
         EXPECT_TRUE( fresh || !std::strcmp( type->name, "bool" ) ) << "samples differ";
      }
      for ( Value const & value : values ) {
         Value read( type );
         read.stringValueIs( value.stringValue() );
         EXPECT_TRUE( read == value ) << value.stringValue();
      }
   }
}

// `!value` asks whether it is a default one.
template< class... Types >
void expectNotOfDefaultsOnly() {
   auto const expect = []< class T >( T const & unset ) {
      EXPECT_TRUE( !unset ) << unset;
      T set;
      Vorn::strepToValue( Vorn::String( sampleTexts( *Vorn::recordOf< T >() ).front().c_str() ), &set );
      EXPECT_FALSE( !set ) << set;
   };
   ( expect( Types{} ), ... );
}
TEST( ValueSweep, EveryValueKnowsItsDefault ) {
   using namespace Ldp;
   expectNotOfDefaultsOnly< Lumo::IpAddr, Lumo::Ip6Addr, Lumo::IpGenPrefix, Lumo::NetU8, Lumo::NetU16,
                            Lumo::NetU32, Lumo::MplsLabel, Bridging::VlanIdOrNone, Mpls::FwdEqvClass,
                            LdpTlvTypeField, LdpStatusTlvStatusCode, LdpGenericLSPId,
                            LdpMPBasicOpaqueValueElementHdr, LdpPwIntfParamFlags >();
}

// These and no others: bit words are a number, identities a text of their own.
TEST( ValueSweep, WhichValuesAreWrittenAsComposites ) {
   std::set< std::string > const composites{ "LdpFecBindingInfo",
                                             "LdpGrOperationalFlag",
                                             "Via",
                                             "LdpP2mpFecElement",
                                             "LdpHdrMsgUbitAndTypeField",
                                             "LdpTlvTypeField",
                                             "LdpCommonHelloTargetField",
                                             "LdpStatusTlvStatusCode",
                                             "LdpGenLabelTlvLabel",
                                             "LdpGenericLSPId",
                                             "LdpMPBasicOpaqueValueElementHdr",
                                             "LdpFtSessionFlags",
                                             "LdpPwIntfParamFlags",
                                             "LdpPwVccvParamField",
                                             "LdpFecTlvPwIdElementHdrTypeField",
                                             "LdpPwStatusField",
                                             "LdpSessionState",
                                             "LdpSessionStateLogEntry",
                                             "LdpMsgIdFecMappingInfo",
                                             "PwMsgIdFecMappingInfo",
                                             "PwFwdEqvClassParams",
                                             "PwFwdEqvClassInfo" };
   std::set< std::string > found;
   for ( VornType const * type : valueTypes() ) {
      std::string const text = Value( type ).stringValue().charPtr();
      if ( text.starts_with( std::string( "Value('" ) + type->name + "', ** {'" ) ) {
         found.insert( std::string( type->name ).substr( 5 ) );
      }
   }
   EXPECT_EQ( found, composites );
}

TEST( ValueSweep, EveryValueReadsBackFromItsOctets ) {
   namespace NboAttrLog = Vorn::NboAttrLog;
   auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
   for ( VornType const * type : valueTypes() ) {
      SCOPED_TRACE( type->name );
      for ( std::size_t i = 0; i < sampleTexts( *type ).size(); ++i ) {
         Value const value = sample( *type, i );
         auto const out = Vorn::newObject< NboAttrLog::Out >();
         std::size_t const header = out->bytes();
         type->methods->logOut( *out, value.data() );
         std::size_t const octets = out->bytes() - header;
         U8 const * const at = out->data() + header;
         Value read( type );
         NboAttrLog::In in( at, octets, *demuxer );
         type->methods->logIn( in, read.data() );
         in.endIs();
         EXPECT_TRUE( read == value ) << value.stringValue();
         for ( std::size_t left = 0; left < octets; ++left ) {
            NboAttrLog::In cut( at, left, *demuxer );
            EXPECT_THROW( type->methods->logIn( cut, read.data() ), Vorn::AttrLogRecordException ) << left;
         }
      }
   }
}

TEST( ValueSweep, TextReadersRefuseWhatIsNotTheirs ) {
   for ( VornType const * type : valueTypes() ) {
      SCOPED_TRACE( type->name );
      std::string const good = sampleTexts( *type ).front();
      Value value = sample( *type, 1 );
      Value const before = value;
      std::vector< std::string > bad{ "", " " + good };
      // An interface's name goes on to the end, whatever it is made of.
      if ( std::strcmp( type->name, "Ldp::LdpAdjId" ) != 0 ) bad.push_back( good + " " );
      if ( good.starts_with( "Value(" ) ) {
         bad.push_back( "Value( " + good.substr( 6 ) );
         bad.push_back( std::string( good ).insert( good.find( '{' ) + 1, " " ) );
         bad.push_back( good.substr( 0, good.size() - 1 ) );
      }
      for ( std::string const & text : bad ) {
         EXPECT_THROW( value.stringValueIs( text.c_str() ), RangeException ) << text;
         EXPECT_TRUE( value == before ) << "it stays as it was";
      }
   }
}

} // namespace
