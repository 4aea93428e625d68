// What every value type promises: its text and its octets on the log read back, and nothing else does.
#include "model/Observe.h"
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

// Those that can also be set by their plain text.
TEST( ValueSweep, PlainTextsAreTakenAndRefusedAlike ) {
   namespace GenericIf = Vorn::GenericIf;
   std::size_t types = 0;
   for ( VornType const * type : valueTypes() ) {
      VornAttr const * const attr = type->attributes ? type->attribute( "stringValue" ) : nullptr;
      WrittenTexts const & written = writtenTexts( *type );
      if ( !attr || attr->kind() != Vorn::VornKind::state || written.refusal.empty() ) continue;
      SCOPED_TRACE( type->name );
      ++types;
      Value value( type );
      auto const set = [&]( std::string const & text ) {
         Vorn::String const given( text.c_str() );
         void const * const args[] = { &given };
         attr->ops->op( nullptr, value.data(), *attr, GenericIf::write, nullptr, args );
      };
      for ( std::size_t i = 0; i < written.good.size(); ++i ) {
         set( written.good[i] );
         EXPECT_TRUE( value == sample( *type, i ) ) << written.good[i];
      }
      Value const before = value;
      for ( std::string const & text : written.bad ) {
         EXPECT_EQ( messageOf< RangeException >( [&] { set( text ); } ), written.refusal ) << text;
         EXPECT_TRUE( value == before ) << "it stays as it was";
      }
   }
   EXPECT_EQ( types, 4u );
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
      WrittenTexts const & written = writtenTexts( *type );
      bad.insert( bad.end(), written.bad.begin(), written.bad.end() );
      for ( std::string const & text : bad ) {
         std::string const said = messageOf< RangeException >( [&] { value.stringValueIs( text.c_str() ); } );
         EXPECT_NE( said, "none" ) << text;
         // What is left over behind a text that was taken is told by the caller of the reader.
         EXPECT_TRUE( written.refusal.empty() || said == written.refusal ||
                      said.starts_with( "expected the end" ) )
              << said;
         EXPECT_TRUE( value == before ) << "it stays as it was";
      }
   }
}

} // namespace
