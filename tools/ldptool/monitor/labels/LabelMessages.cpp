// Label messages, handed to the subjects of their FEC elements.
#include "monitor/labels/LabelMessages.h"

#include "monitor/labels/P2mpLabels.h"
#include "monitor/labels/PrefixLabels.h"
#include "monitor/labels/Pseudowires.h"

namespace LdpTool {

using namespace Ldp;

namespace {

template< class Parser >
AnyLabel labelOf( LdpMsgParser const & message ) {
   auto const * tlv = static_cast< Parser const & >( message ).msgGenLabelTlv();
   return tlv ? AnyLabel( tlv->label() ) : AnyLabel();
}

AnyLabel labelOf( LdpMsgParser const & message ) {
   switch ( message.type() ) {
   case LdpLabelMapping: return labelOf< LdpLabelMappingMsgParser >( message );
   case LdpLabelWithdraw: return labelOf< LdpLabelWithdrawMsgParser >( message );
   case LdpLabelRelease: return labelOf< LdpLabelReleaseMsgParser >( message );
   default: return {};
   }
}

void onWildcard( Exchange const & exchange, AnyLabel label ) {
   PrefixLabels::onWildcard( exchange, label );
   P2mpLabels::onWildcard( exchange, label );
   Pseudowires::onWildcard( exchange, label );
}

} // namespace

void onLabelMessage( Exchange const & exchange ) {
   auto const & fecs = *exchange.message.ldpFecTlvParser();
   AnyLabel const label = labelOf( exchange.message );
   // Of a FEC TLV that is bad, which only a release may have, the elements in front of the bad one count.
   for ( U32 i = 0; i < fecs.fecElements(); ++i ) {
      auto const element = fecs.fecElement( i );
      switch ( element->type() ) {
      case wildcardElement: onWildcard( exchange, label ); break;
      case prefixElement:
      case hostAddrElement: PrefixLabels::onMessage( exchange, element->fwdEqvCls(), label ); break;
      case p2mpElement: P2mpLabels::onMessage( exchange, element->p2mpFecElem(), label ); break;
      case pwIdElement: Pseudowires::onMessage( exchange, element->pwFwdEqvCls(), label ); break;
      default: break; // the FEC parser keeps no other
      }
   }
}

} // namespace LdpTool
