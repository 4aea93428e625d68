// What the configuration does beyond its attributes: constructors that make children, bit words, ranges.
#include "Ldp/LdpConfig.h"
#include "Ldp/LdpStatus.h"
#include "Lumo/NamespaceName.h"
#include "Vorn/System.h"
#include "model/Observe.h"

#include <gtest/gtest.h>

#include <chrono>

namespace {

using namespace Ldp;
using L3::VrfName;
using Test::observerOf;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::String;

using Calls = std::vector< std::string >;

class CollLog : public LdpConfigColl::NotifieeConst {
 public:
   Calls calls;
   void onConfig( VrfName const & key ) override { calls.push_back( key.stringValue().charPtr() ); }
   void onInitialized() override { calls.push_back( "initialized" ); }

 private:
   VORN_OBJECT( CollLog )
};
VORN_OBJECT_RECORD( Test, CollLog, &LdpConfigColl::NotifieeConst::_vornType )

TEST( LdpConfigCollTest, HasTheDefaultVrfFromTheStart ) {
   auto const coll = ldpConfigCollFactory( "ldp" );
   EXPECT_EQ( coll->references(), 1u );
   EXPECT_TRUE( coll->initialized() );
   EXPECT_EQ( coll->configs(), 1u );
   auto const config = coll->config( VrfName( "default" ) );
   ASSERT_TRUE( config );
   EXPECT_EQ( config->parent().ptr(), coll.ptr() );
   auto const seen = observerOf< CollLog >( *coll );
   EXPECT_EQ( coll->configIs( VrfName( "default" ) ).ptr(), config.ptr() );
   coll->handleInitialized();
   EXPECT_EQ( seen->calls, Calls{} );
   coll->configIs( VrfName( "red" ) );
   EXPECT_EQ( seen->calls, Calls{ "red" } );
}

TEST( LdpConfigCollTest, AMemberHeldElsewhereOutlivesTheCollection ) {
   auto coll = ldpConfigCollFactory( "ldp" );
   auto const config = coll->config( VrfName( "default" ) );
   coll = nullptr;
   EXPECT_FALSE( config->parent() );
   config->helloHoldTimeIs( 3 ); // below the interval: it is not for this layer to mind
   EXPECT_EQ( config->helloHoldTime(), 3u );
   EXPECT_EQ( config->helloInterval(), 5u );
}

TEST( ConfigTest, DeletedInterfacesAreNotEnabled ) {
   auto const config = configFactory( VrfName( "red" ) );
   Lumo::IntfId const eth( "Ethernet1" );
   config->ldpEnabledIntfIs( eth );
   EXPECT_TRUE( config->ldpEnabledIntfHas( eth ) );
   config->ldpEnabledIntfDel( eth );
   EXPECT_FALSE( config->ldpEnabledIntfHas( eth ) );
}

class ProtoLog : public ProtoConfig::NotifieeConst {
 public:
   Calls calls;
   void onLdpProtoParam() override { calls.push_back( "param" ); }
   void onFecFilter() override { calls.push_back( "filter" ); }

 private:
   VORN_OBJECT( ProtoLog )
};
VORN_OBJECT_RECORD( Test, ProtoLog, &ProtoConfig::NotifieeConst::_vornType )

TEST( ProtoConfigTest, MakesItsParametersAndDropsItsChildrenInOrder ) {
   auto proto = protoConfigFactory( VrfName( "red" ) );
   EXPECT_EQ( proto->references(), 1u );
   auto const param = proto->ldpProtoParam();
   ASSERT_TRUE( param );
   EXPECT_EQ( param->name(), "red" );
   EXPECT_EQ( param->parent().ptr(), proto.ptr() );
   EXPECT_FALSE( proto->fecFilter() );
   auto const filter = proto->fecFilterIs( "filter" );
   auto const seen = observerOf< ProtoLog >( *proto );
   EXPECT_EQ( proto->ldpProtoParamIs( Name( "red" ) ).ptr(), param.ptr() );
   EXPECT_EQ( seen->calls, Calls{} );
   EXPECT_NE( proto->ldpProtoParamIs( Name( "blue" ) ).ptr(), param.ptr() );
   EXPECT_FALSE( param->parent() ) << "the old child is detached";
   seen->calls.clear();
   proto = nullptr;
   EXPECT_EQ( seen->calls, ( Calls{ "param", "filter" } ) );
   EXPECT_FALSE( filter->parent() );
}

TEST( LdpGrOperationalFlagTest, ShowsItsFlagsByName ) {
   LdpGrOperationalFlag flag;
   flag.grFlagHelperIs( true );
   EXPECT_EQ( flag.value(), 2u );
   EXPECT_EQ( valueToStrep( flag ),
              "Value('Ldp::LdpGrOperationalFlag', ** {'grFlagSpeaker': False, 'grFlagHelper': True})" );
   flag.grFlagSpeakerIs( true );
   flag.grFlagHelperIs( false );
   EXPECT_EQ( flag, LdpGrOperationalFlag( LdpGrOperationalFlag::grFlagSpeaker_() ) );
}

template< class Call >
std::string rangeText( Call const & call ) {
   return Test::messageOf< Vorn::RangeException >( call );
}

TEST( Ranges, RefuseWithTheirTexts ) {
   LdpGrOperationalFlag flag( 3 );
   EXPECT_EQ( rangeText( [&] { flag.valueIs( 4 ); } ), "LdpGrOperationalFlag::value > 0x3 not allowed" );
   EXPECT_EQ( flag.value(), 3u );
   std::string const bytes( 151, 'x' );
   auto const name = [&]( std::size_t length ) { return String( bytes.data(), length ); };
   EXPECT_EQ( rangeText( [&] { VrfName{ name( 100 ) }; } ), "none" );
   EXPECT_EQ( rangeText( [&] { VrfName{ name( 101 ) }; } ),
              "VrfName::bytes > VrfName::maxLength not allowed" );
   EXPECT_EQ( rangeText( [&] { Lumo::NamespaceName{ name( 150 ) }; } ), "none" );
   EXPECT_EQ( rangeText( [&] { Lumo::NamespaceName{ name( 151 ) }; } ),
              "NamespaceName::bytes > 150 not allowed" );
   VrfName vrf( "red" );
   EXPECT_EQ( rangeText( [&] { Vorn::strepToValue( Vorn::valueToStrep( name( 101 ) ), &vrf ); } ),
              "VrfName::bytes > VrfName::maxLength not allowed" );
   EXPECT_EQ( vrf, VrfName( "red" ) );
   LdpFecBindingInfo info;
   EXPECT_EQ( rangeText( [&] {
                 Vorn::strepToValue( String( "Value('Ldp::LdpFecBindingInfo', ** {'inputLabel': 8388609, "
                                             "'outputLabel': 3, 'nexthopIntfIp': none})" ),
                                     &info );
              } ),
              "inputLabel: MplsLabel::value < MplsLabel::min or > MplsLabel::luWithdraw not allowed" );
   EXPECT_EQ( rangeText( [&] {
                 Vorn::strepToValue( String( "Value('Ldp::LdpFecBindingInfo', ** {'inputLabel': 3, "
                                             "'outputLabel': 3, 'nexthopIntfIp': x})" ),
                                     &info );
              } ),
              "nexthopIntfIp: Invalid IpGenAddr" );
   EXPECT_TRUE( !info );
}

TEST( NsPrefix, IsThereForThoseWhoLink ) {
   EXPECT_EQ( ldpConfigNsPrefix, "ns-" );
   EXPECT_EQ( ldpStatusNsPrefix, "ns-" );
}

TEST( SystemTest, TheClockCanBeReplaced ) {
   using std::chrono::duration;
   using std::chrono::system_clock;
   double const before = duration< double >( system_clock::now().time_since_epoch() ).count();
   EXPECT_GE( Vorn::System::currentTime(), before );
   Vorn::System::clockIs( [] { return 7.5; } );
   EXPECT_EQ( Vorn::System::currentTime(), 7.5 );
   Vorn::System::clockIs( nullptr );
   EXPECT_GE( Vorn::System::currentTime(), before );
}

} // namespace
