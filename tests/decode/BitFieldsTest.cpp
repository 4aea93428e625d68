// Fields of bits on the wire: each setter changes the bits of its own field and no other, and the text forms
// read back.

#include "Expect.h"

#include "Ldp/LdpFecHdr.h"
#include "Ldp/LdpLabelTlv.h"
#include "Ldp/LdpPwHdr.h"
#include "Ldp/LdpSessionTlv.h"

#include <functional>
#include <sstream>

using namespace Ldp;
using namespace Wire;

namespace {

/// One field: how it is written and read, and its bits.
template< class Word >
struct Field {
   char const * name;
   U32 mask;
   std::function< void( Word &, U32 ) > set;
   std::function< U32( Word const & ) > get;
};

#define FIELD( Word, field, mask )                                                                           \
   Field< Word > {                                                                                           \
#field, mask, []( Word & word, U32 value ) { word.field##Is( decltype( word.field() )( value ) ); },   \
        []( Word const & word ) { return U32( word.field() ); }     \
   }

template< class Word >
void expectFields( U32 all, std::vector< Field< Word > > const & fields ) {
   using Value = decltype( Word().value() );
   for ( auto const & field : fields ) {
      SCOPED_TRACE( field.name );
      U32 const shift = U32( std::countr_zero( field.mask ) );
      U32 const most = field.mask >> shift;
      Word word{ Value( 0 ) };
      field.set( word, most );
      EXPECT_EQ( U32( word.value() ), field.mask );
      EXPECT_EQ( field.get( word ), most );
      word.valueIs( Value( all ) );
      field.set( word, 0 );
      EXPECT_EQ( U32( word.value() ), all & ~field.mask );
      EXPECT_EQ( field.get( word ), 0u );
      field.set( word, 1 );
      EXPECT_EQ( U32( word.value() ), ( all & ~field.mask ) | 1u << shift );
   }
}

TEST( BitFields, settersKeepOtherBits ) {
   using Hello = LdpCommonHelloTargetField;
   expectFields< Hello >( 0xffff, { FIELD( Hello, targetedHello, 0x8000 ),
                                    FIELD( Hello, requestSendTargetedHello, 0x4000 ),
                                    FIELD( Hello, reserved, 0x3fff ) } );
   using Ad = LdpCommonSessionParamTlvAdField;
   expectFields< Ad >( 0xff, { FIELD( Ad, advDiscipline, 0x80 ), FIELD( Ad, loopDetect, 0x40 ),
                               FIELD( Ad, reserved, 0x3f ) } );
   using Ft = LdpFtSessionFlags;
   expectFields< Ft >( 0xffff, { FIELD( Ft, learnFromNetwork, 0x0001 ), FIELD( Ft, checkPoint, 0x0002 ),
                                 FIELD( Ft, allLabelProt, 0x0004 ), FIELD( Ft, saveState, 0x0008 ),
                                 FIELD( Ft, reserved, 0x7ff0 ), FIELD( Ft, reconnect, 0x8000 ) } );
   using State = LdpStateBit;
   expectFields< State >( 0xff, { FIELD( State, state, 0x80 ), FIELD( State, reserved, 0x7f ) } );
   using Label = LdpGenLabelTlvLabel;
   expectFields< Label >( 0xffffffff,
                          { FIELD( Label, labelNbo, 0x000fffff ), FIELD( Label, reserved, 0xfff00000 ) } );
   using Status = LdpStatusTlvStatusCode;
   expectFields< Status >( 0xffffffff, { FIELD( Status, statusDataNbo, 0x3fffffff ),
                                         FIELD( Status, forwardUnknown, 0x40000000 ),
                                         FIELD( Status, error, 0x80000000 ) } );
   using PwType = LdpFecTlvPwIdElementHdrTypeField;
   expectFields< PwType >( 0xffff,
                           { FIELD( PwType, controlWordBit, 0x8000 ), FIELD( PwType, pwType, 0x7fff ) } );
   using Vccv = LdpPwVccvParamField;
   expectFields< Vccv >( 0xffff, { FIELD( Vccv, ccTypes, 0xff00 ), FIELD( Vccv, cvTypes, 0x00ff ) } );
   using Pw = LdpPwStatusField;
   expectFields< Pw >( 0xffffffff,
                       { FIELD( Pw, pwNotForwarding, 0x01 ), FIELD( Pw, localACIngrRecvFault, 0x02 ),
                         FIELD( Pw, localACEgrTransFault, 0x04 ), FIELD( Pw, localPsnPwIngrRecvFault, 0x08 ),
                         FIELD( Pw, localPsnPwEgrTransFault, 0x10 ) } );
   using Params = LdpPwIntfParamFlags;
   expectFields< Params >( 0x1f, { FIELD( Params, intfMtu, 1 ), FIELD( Params, intfDesc, 2 ),
                                   FIELD( Params, requestedVlanId, 4 ), FIELD( Params, fragIndicator, 8 ),
                                   FIELD( Params, vccvParam, 16 ) } );
}

TEST( BitFields, bodiesWriteThroughTheirFields ) {
   Octets bytes = octets( tlv( genLabelTlv, "abc12345" ) );
   auto * label = reinterpret_cast< LdpGenLabelTlv * >( bytes.data() );
   label->labelIs( Lumo::MplsLabel( 0xfffff ) );
   EXPECT_EQ( hexOf( bytes ), "02000004abcfffff" );
   label->labelIs( Lumo::MplsLabel( 0x100000 ) ); // no label has no bit among the 20
   EXPECT_EQ( hexOf( bytes ), "02000004abc00000" );

   bytes = octets( tlv( statusTlv, "c0000001 00000000 0000" ) );
   auto * status = reinterpret_cast< LdpStatusTlv * >( bytes.data() );
   status->statusDataIs( ipChange ); // of an internal code the low 30 bits
   EXPECT_EQ( hexOf( bytes ), "0300000ac0000103000000000000" );
   status->msgIdIs( 0x01020304 );
   status->msgTypeIs( LdpLabelMapping );
   status->statusErrorIs( false );
   EXPECT_EQ( hexOf( bytes ), "0300000a40000103010203040400" );

   bytes = octets( tlv( commonHelloTlv, "000f ffff" ) );
   auto * hello = reinterpret_cast< LdpCommonHelloTlv * >( bytes.data() );
   hello->targetedHelloIs( false );
   EXPECT_EQ( hexOf( bytes ), "04000004000f7fff" );
   hello->holdTimeIs( 0x0102 );
   EXPECT_EQ( hexOf( bytes ), "0400000401027fff" );
}

TEST( BitFields, pwForwardsOnlyWithoutAnyBit ) {
   EXPECT_TRUE( LdpPwStatusField( 0 ).pwForwarding() );
   for ( U32 bit = 0; bit < 32; ++bit ) {
      EXPECT_FALSE( LdpPwStatusField( 1u << bit ).pwForwarding() );
   }
   LdpPwStatusField field;
   field.flagsIs( Pseudowire::PseudowireLdpStatusFlags( 0x20 ) );
   EXPECT_EQ( field.value(), 0x20u );
   EXPECT_EQ( field.flags(), Pseudowire::PseudowireLdpStatusFlags( 0x20 ) );
   EXPECT_FALSE( field.pwNotForwarding() );
}

/// The value prints as that text, on a stream too, and is read back from it.
template< class Value >
void expectText( Value const & value, char const * text ) {
   SCOPED_TRACE( text );
   EXPECT_EQ( valueToStrep( value ), text );
   std::ostringstream out;
   out << value;
   EXPECT_EQ( out.str(), text );
   Value read{};
   Vorn::strepToValue( text, &read );
   EXPECT_TRUE( read == value );
   for ( Vorn::String const & bad :
         { Vorn::String( text ) + " ", " " + Vorn::String( text ), Vorn::String() } ) {
      EXPECT_THROW( Vorn::strepToValue( bad, &read ), Vorn::RangeException );
   }
}

TEST( BitFields, flagWordHasARange ) {
   EXPECT_EQ( LdpPwIntfParamFlags( 0x1f ).value(), 0x1fu );
   LdpPwIntfParamFlags flags( 3 );
   try {
      flags.valueIs( 0x20 );
      FAIL() << "taken";
   } catch ( Vorn::RangeException const & refused ) {
      EXPECT_EQ( refused.message(), "LdpPwIntfParamFlags::value > 0x1f not allowed" );
   }
   EXPECT_EQ( flags, LdpPwIntfParamFlags( 3 ) );
}

} // namespace
