// The types of the decoders as reflection shows them: their records are as expected/*.txt has them, and what
// the operations of each kind of attribute promise.
#include "Reflected.h"

#include "Ldp/LdpUtils.h"
#include "Vorn/GenericIf.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

namespace {

using namespace Test;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;

std::map< ExpectedForm, U32 > const flags{ { ExpectedForm::wire, 0x0000ffff },
                                           { ExpectedForm::overlay, 0x0000ffff },
                                           { ExpectedForm::object, 0x0200ffff } };

void expectType( ExpectedType const & expected ) {
   SCOPED_TRACE( expected.name );
   VornType const & type = typeOf( expected.name );
   EXPECT_EQ( type.base ? type.base->name : "", expected.base );
   EXPECT_EQ( type.flags, flags.at( expected.form ) );
   EXPECT_EQ( type.sizeAndFlags >> 28, expected.form == ExpectedForm::overlay ? 1u : 8u );
   EXPECT_TRUE( expected.size == 0 || type.size() == expected.size );
   auto const rows = expectedAttributes( expected ); // the base's come first
   U32 const inherited = type.base ? type.base->attributeNum : 0;
   ASSERT_EQ( type.attributeNum, inherited + expected.attributes.size() );
   // A base that is no decoder's, such as a number in network order, is not written down.
   U32 const from = type.attributeNum - U32( rows.size() );
   for ( U32 i = 0; i < from; ++i )
      EXPECT_STREQ( type.attributes[i].name, type.base->attributes[i].name );
   for ( U32 i = from; i < type.attributeNum; ++i ) {
      VornAttr const & attr = type.attributes[i];
      ExpectedAttr const & row = rows[i - from];
      expectRecord( attr, row );
      EXPECT_EQ( bool( attr.flags & Vorn::writeAccess ), attr.kind() == VornKind::state && !row.isView );
      if ( row.defaultText.empty() ) continue;
      EXPECT_EQ( GenericIf::attributeText( nullptr, type, attr ), row.defaultText.c_str() ) << row.name;
   }
   EXPECT_TRUE( !type.attributes || !type.attributes[type.attributeNum].name );
}

TEST( Records, AreAsWrittenDown ) {
   std::set< std::string > expected;
   for ( auto const & [form, word] : flags ) {
      for ( ExpectedType const & type : expectedTypes( form ) ) {
         expectType( type );
         expected.insert( type.name );
      }
   }
   expectEnumerations();
   for ( VornType const * type : Vorn::typeNodes() ) {
      bool const counted = type->isPolymorphic() && !type->attribute( "parentAttrName" );
      if ( !( type->isOverlay() || counted ) || !std::string( type->name ).starts_with( "Ldp::" ) ) continue;
      EXPECT_TRUE( expected.count( type->name ) ) << type->name << " is left out";
   }
}

// A Mapping of 10.0.0.0/8 with label 16, a hop count and a path vector of two, behind two octets of something
// else.
constexpr U8 mapping[] = { 0xee, 0xee,                                           //
                           0x04, 0x00, 0x00, 0x26, 0x00, 0x00, 0x00, 0x07,       //
                           0x01, 0x00, 0x00, 0x05, 0x02, 0x00, 0x01, 0x08, 0x0a, //
                           0x02, 0x00, 0x00, 0x04, 0x00, 0x00, 0x00, 0x10,       //
                           0x01, 0x03, 0x00, 0x01, 0x05,                         //
                           0x01, 0x04, 0x00, 0x08, 0x01, 0x01, 0x01, 0x01, 0x02, 0x02, 0x02, 0x02 };
constexpr U32 start = 2, hopCountAt = 27;

// Over the first octets of that packet.
Reflected made( char const * type, U32 offset, std::size_t octets = sizeof mapping ) {
   return Reflected::made( type, Lumo::pktFactory( mapping, octets ), offset );
}

TEST( Records, AMessageIsReadByRecordsAlone ) {
   Reflected const parser = made( "Ldp::LdpLabelMappingMsgParser", start );
   EXPECT_EQ( parser.text( "validMsg" ), "True" );
   EXPECT_EQ( parser.text( "msgId" ), "7" );
   EXPECT_EQ( parser.walk( "tlvOffset" ), "0=10 1=19 2=27 3=32" );
   EXPECT_EQ( parser.child( "tlvGroupParser" ).text( "tlvNum" ), "4" );
   EXPECT_EQ( parser.view( "msgGenLabelTlv" ).text( "label" ), "16" );
   EXPECT_EQ( parser.view( "msgGenLabelTlv" ).text( "type" ), "genLabelTlv" ) << "of the base";
   EXPECT_EQ( parser.view( "msgPathVectorTlv" ).walk( "lsrId" ), "0=1.1.1.1 1=2.2.2.2" );
   EXPECT_FALSE( parser.view( "msgPwStatusTlv" ) );
   Reflected const fec = parser.child( "ldpFecTlvParser" );
   EXPECT_EQ( fec.walk( "fecElement" ), "0=Ldp::LdpFecTlvPrefixElement" );
   U32 const first = 0;
   Ptr< PtrInterface > element;
   EXPECT_EQ( fec.op( "fecElement", GenericIf::read, &element, &first, nullptr ), GenericIf::done );
   EXPECT_EQ( Reflected( element ).text( "fwdEqvCls" ), "10.0.0.0/8" );
   Value other( &Ldp::PwFwdEqvClassInfo::_vornType );
   EXPECT_EQ( Reflected( element ).op( "pwFwdEqvCls", GenericIf::read, other.data(), nullptr, nullptr ),
              GenericIf::notApplicable )
        << "it is of another kind, and nothing asserts";
}

TEST( Records, WhatReflectionMayWriteAndCall ) {
   Reflected const parser = made( "Ldp::LdpLabelMappingMsgParser", start );
   EXPECT_EQ( parser.write( "statusCode", "shutdown" ), GenericIf::done );
   EXPECT_EQ( parser.text( "validMsg" ), "False" );
   for ( char const * attr : { "offset", "msgId", "validMsg" } ) {
      EXPECT_EQ( parser.write( attr, attr == std::string( "validMsg" ) ? "True" : "1" ),
                 GenericIf::notApplicable )
           << attr;
   }
   EXPECT_EQ( parser.op( "msgHdr", GenericIf::write, nullptr, nullptr, nullptr ), GenericIf::notApplicable );
   U32 const at = 4;
   U32 offset = 0;
   EXPECT_EQ( parser.op( "tlvOffset", GenericIf::read, &offset, &at, nullptr ), GenericIf::notApplicable )
        << "behind the last";
   Ldp::LdpStatusCode status = Ldp::internalError;
   Reflected const tlv = made( "Ldp::LdpHopCountTlvParser", hopCountAt );
   EXPECT_EQ( tlv.op( "validate", GenericIf::read, &status, nullptr, nullptr ), GenericIf::notApplicable );
   EXPECT_EQ( tlv.op( "validate", GenericIf::write, &status, nullptr, nullptr ), GenericIf::done );
   EXPECT_EQ( status, Ldp::success );
   Reflected const group = parser.child( "tlvGroupParser" );
   U32 const first = 0;
   EXPECT_EQ( group.op( "tlvOffset", GenericIf::del, &offset, &first, nullptr ), GenericIf::done );
   EXPECT_EQ( offset, 10u );
   EXPECT_EQ( group.text( "tlvNum" ), "3" );
}

// A view that does not lie in the packet is not given out, and a setter does not act where its octets are
// not.
TEST( Records, NothingReachesBehindThePacket ) {
   for ( std::size_t octets = start; octets <= start + 8; ++octets ) {
      bool const whole = octets == start + 8;
      EXPECT_EQ( bool( made( "Ldp::LdpMsgParser", start, octets ).view( "msgHdr" ) ), whole ) << octets;
   }
   for ( std::size_t octets = hopCountAt; octets <= hopCountAt + 5; ++octets ) {
      Reflected const tlv = made( "Ldp::LdpHopCountTlvParser", hopCountAt, octets );
      bool const whole = octets == hopCountAt + 5;
      EXPECT_EQ( bool( tlv.view( "header" ) ), octets >= hopCountAt + 4 ) << octets;
      EXPECT_EQ( tlv.text( "hopCount" ), whole ? "5" : "0" );
      EXPECT_EQ( tlv.write( "hopCount", "9" ), whole ? GenericIf::done : GenericIf::notApplicable );
      EXPECT_EQ( tlv.text( "hopCount" ), whole ? "9" : "0" );
   }
}

} // namespace
