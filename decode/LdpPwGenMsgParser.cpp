// The PW ID element: its judgement and that of its interface parameters.
#include "Ldp/LdpPwGenMsgParser.h"

#include "Codecs.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpPwGenMsgParser" )

/// The status, whose reason the parser keeps.
LdpStatusCode withReason( LdpFecTlvParser * parser, LdpStatusCode status, Vorn::String const & reason ) {
   parser->reasonIs( reason );
   TWAIN_TRACE( 5, parser->reason() );
   return status;
}

/// What a known sub-TLV puts into the parameters; false if its value is out of bounds.
bool intfParamIs( LdpPwIntfMtuSubTlv const & subTlv, PwFwdEqvClassParams & params ) {
   params.mtuIs( subTlv.mtu().value() );
   return true;
}

bool intfParamIs( LdpPwIntfDescSubTlv const & subTlv, PwFwdEqvClassParams & params ) {
   params.intfDescriptionIs( subTlv.description() );
   return true;
}

bool intfParamIs( LdpPwRequestedVlanIdSubTlv const & subTlv, PwFwdEqvClassParams & params ) {
   U16 const vlanId = subTlv.vlanId().value();
   if ( vlanId > Bridging::VlanIdOrNone::max ) return false;
   params.requestedVlanIdIs( Bridging::VlanIdOrNone( vlanId ) );
   return true;
}

bool intfParamIs( LdpPwFragIndicatorSubTlv const & subTlv, PwFwdEqvClassParams & params ) {
   params.fragCapableIs( subTlv.fragIndicator().value() != 0 );
   return true;
}

bool intfParamIs( LdpPwVccvParamSubTlv const & subTlv, PwFwdEqvClassParams & params ) {
   params.vccvCcTypesIs( subTlv.ccTypes() );
   params.vccvCvTypesIs( Pseudowire::VccvCvTypes( subTlv.cvTypes() ) );
   return true;
}

/// One element on its way: where the walk over its interface parameters stands.
struct IntfParamWalk {
   LdpFecTlvParser * parser;
   LdpFecTlvPwIdElement & element;
   PwFwdEqvClassParams & params;
   U32 & off;
   U32 elementEnd;

   /// Reads the sub-TLV at `off` and moves `off` behind it.
   LdpStatusCode parsePwIntfParamSubTlv() const;

 private:
   template< class SubTlv >
   LdpStatusCode known( char const * invalid, U32 flag ) const;
   LdpStatusCode unknown( LdpPwIntfParamSubTlv const & subTlv ) const;
   U32 remaining() const { return elementEnd - off; }
   template< class SubTlv >
   SubTlv const & at() const {
      return *reinterpret_cast< SubTlv const * >( parser->pkt()->front() + off );
   }
};

LdpStatusCode IntfParamWalk::parsePwIntfParamSubTlv() const {
   if ( remaining() < sizeof( LdpPwIntfParamSubTlv ) ) {
      return withReason( parser, malformedTlv, "Invalid PW Intf param element: TLV is too small" );
   }
   auto const & head = at< LdpPwIntfParamSubTlv >();
   using Flags = LdpPwIntfParamFlags;
   switch ( head.type() ) {
   case intfMtu:
      return known< LdpPwIntfMtuSubTlv >( "Invalid PW Intf param element: PW MTU validation failure",
                                          Flags::intfMtu_ );
   case intfDesc:
      return known< LdpPwIntfDescSubTlv >( "Invalid PW Intf param element: PW Description validation failure",
                                           Flags::intfDesc_ );
   case requestedVlanId:
      return known< LdpPwRequestedVlanIdSubTlv >(
           "Invalid PW Intf param element: Requested VLAN Id validation failure", Flags::requestedVlanId_ );
   case fragIndicator:
      return known< LdpPwFragIndicatorSubTlv >(
           "Invalid PW Intf param element: Fragmentation indicator validation failure",
           Flags::fragIndicator_ );
   case vccvParam:
      return known< LdpPwVccvParamSubTlv >( "Invalid PW Intf param element: VCCV param validation failure",
                                            Flags::vccvParam_ );
   default: return unknown( head );
   }
}

template< class SubTlv >
LdpStatusCode IntfParamWalk::known( char const * invalid, U32 flag ) const {
   static constexpr char const * tooSmall = "Invalid PW Intf param element: TLV value is too small";
   auto const & subTlv = at< SubTlv >();
   // The fixed part must be there before anything is asked of it; the head is, already.
   if ( remaining() < sizeof( SubTlv ) ) return withReason( parser, malformedTlv, tooSmall );
   LdpStatusCode const status = subTlv.validate();
   if ( status != success ) return withReason( parser, status, invalid );
   if ( remaining() < subTlv.length() ) return withReason( parser, malformedTlv, tooSmall );
   if ( !intfParamIs( subTlv, params ) ) {
      U16 const vlanId = at< LdpPwRequestedVlanIdSubTlv >().vlanId().value();
      return withReason(
           parser, unknownFec,
           Vorn::format( "Invalid PW Intf param element: Vlan id out of bounds (%d)", vlanId ) );
   }
   element.parsedIntfParamsIs( LdpPwIntfParamFlags( element.parsedIntfParams().value() | flag ) );
   off += subTlv.length();
   return success;
}

LdpStatusCode IntfParamWalk::unknown( LdpPwIntfParamSubTlv const & subTlv ) const {
   if ( subTlv.length() < sizeof( LdpPwIntfParamSubTlv ) ) {
      return withReason( parser, badTlvLength,
                         "Invalid PW Intf param element: Unrecognized packet invalid length" );
   }
   TWAIN_TRACE( 6, "Ignoring unrecognized PW intf sub-TLV (code 0x",
                Vorn::format( "%.2x", U32( subTlv.typeField() ) ), ")" );
   // Whether it fits is not asked here: running over the element's end is a mismatch of lengths.
   off += subTlv.length();
   return success;
}

} // namespace

LdpFecTlvPwIdElement::~LdpFecTlvPwIdElement() = default;

Vorn::Ptr< LdpFecTlvPwIdElement > ldpFecTlvPwIdElementFactory() {
   return Vorn::newObject< LdpFecTlvPwIdElement >();
}

Vorn::String LdpFecTlvPwIdElement::stringValue() const {
   PwFwdEqvClassParams const & params = pwFwdEqvCls().params();
   LdpPwIntfParamFlags const sent = parsedIntfParams_;
   Vorn::String text = pwFwdEqvCls().fwdEqvClass().stringValue();
   text += " groupId=" + valueToStrep( params.groupId() ) + " mtu=";
   text += sent.intfMtu() ? Vorn::valueToStrep( params.mtu() ) : Vorn::String( "n/a" );
   if ( sent.intfDesc() ) text += " intfDescription=\"" + params.intfDescription() + "\"";
   if ( sent.requestedVlanId() ) text += " reqVlanId=" + valueToStrep( params.requestedVlanId() );
   if ( sent.fragIndicator() ) text += params.fragCapable() ? " fragCapable=1" : " fragCapable=0";
   if ( sent.vccvParam() ) {
      text += " vccvCcTypes=" + Vorn::valueToStrep( params.vccvCcTypes() );
      text += " vccvCvTypes=" + valueToStrep( params.vccvCvTypes() );
   }
   return text;
}

LdpStatusCode parseFecTlvPwIdElement( LdpFecTlvParser * parser, U32 & currOffset, U32 endOffset,
                                      LdpFecTlvPwIdElement & element ) {
   U32 const cur = currOffset;
   VORN_ASSERT( cur <= endOffset );
   auto const * hdr = reinterpret_cast< LdpFecTlvPwIdElementHdr const * >( parser->pkt()->front() + cur );
   if ( endOffset - cur < sizeof *hdr ) {
      return withReason( parser, malformedTlv, "Invalid FEC PW ID Element: TLV is too small" );
   }
   Pseudowire::PseudowireType const pwType = hdr->pwType();
   if ( pwType != Pseudowire::pwTypeTagged && pwType != Pseudowire::pwTypeRaw ) {
      return withReason( parser, unknownFec,
                         Vorn::format( "Invalid FEC PW ID Element: Unknown PW type 0x%.4x", U32( pwType ) ) );
   }
   U32 const pwInfoLen = hdr->pwInfoLen();
   if ( pwInfoLen + sizeof *hdr > endOffset - cur ) {
      return withReason( parser, malformedTlv, "Invalid FEC PW ID Element: TLV value is too small" );
   }
   U32 off = cur + U32( sizeof *hdr );
   U32 const elementEnd = off + pwInfoLen;
   currOffset = elementEnd;
   if ( pwInfoLen != 0 && pwInfoLen < sizeof( Lumo::NetU32 ) ) {
      return withReason( parser, badTlvLength,
                         "Invalid FEC PW ID Element: TLV value length must be 0 or >= 4" );
   }
   PwFwdEqvClassParams params;
   Pseudowire::PseudowireId const pwId = hdr->pwId();
   if ( pwInfoLen != 0 ) {
      // Only the short form, without a PW ID, stands for all pseudowires.
      if ( pwId == 0 )
         return withReason( parser, malformedTlv, "Invalid FEC PW ID Element: PW ID cannot be 0" );
      off += U32( sizeof( Lumo::NetU32 ) );
      IntfParamWalk const walk{ parser, element, params, off, elementEnd };
      while ( off < elementEnd ) {
         LdpStatusCode const status = walk.parsePwIntfParamSubTlv();
         if ( status != success ) return status;
      }
   }
   if ( off != elementEnd ) {
      return withReason(
           parser, malformedTlv,
           Vorn::format( "Invalid FEC PW ID Element: TLV value length mismatch. Expected %d octets but "
                         "found %d octets.",
                         int( pwInfoLen ), int( elementEnd - off ) ) );
   }
   params.groupIdIs( hdr->groupId() );
   PwFwdEqvClassInfo info;
   info.fwdEqvClassIs( PwFwdEqvClass( pwId, pwType, hdr->controlWord() ) );
   info.paramsIs( params );
   element.pwFwdEqvClsIs( info );
   return success;
}

} // namespace Ldp
