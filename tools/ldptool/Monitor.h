#pragma once

// A passive monitor: an agent without state machines, which writes into the model what messages show and lets
// it expire by the capture's clock.

#include "Network.h"
#include "Reporter.h"

#include <map>

namespace LdpTool {

class Monitor : public Reporter {
 public:
   explicit Monitor( Network & network ) : network_( network ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & ) override {}
   void onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & ) override {}

   /// The packet that the monitor has come to.
   Arrival const & arrival() const { return arrival_; }

 private:
   /// What a speaker sent last of its own parameters, for the negotiation with each of its neighbours.
   struct Offer {
      U16 helloHoldTime = 0;
      U16 keepAliveTime = 0;
      U16 maxPduLength = 0;
   };
   using Addr = Lumo::IpGenAddr;

   void expire();
   void onHello( Ldp::LdpHelloMsgParser const & hello );
   void hear( Speaker & speaker, Ldp::LdpAdjId const & id, Ldp::LdpHelloMsgParser const & hello );
   void onSessionMessage( Ldp::LdpMsgParser const & parser, bool good );
   void onInit( Ldp::LdpInitMsgParser const & init, Ldp::LdpSessionStatus & received,
                Ldp::LdpSessionStatus & sent );
   void onKeepAlive( Ldp::LdpSessionStatus & received );
   void onAddresses( Ldp::LdpMsgParser const & parser, Ldp::LdpSessionStatus & received,
                     Ldp::LdpSessionStatus & sent );
   void onNotification( Ldp::LdpNotificationMsgParser const & notification, Ldp::LdpSessionStatus & received,
                        Ldp::LdpSessionStatus & sent );
   void negotiate( Ldp::LdpSessionStatus & status, Ldp::LdpIdentifier const & own,
                   Ldp::LdpIdentifier const & peer );
   void stateIs( Ldp::LdpSessionStatus & status, Ldp::SessionState state, Ldp::LdpStatusCode code,
                 Vorn::String const & reason );
   Vorn::Ptr< Ldp::LdpSessionStatus > session( Ldp::LdpIdentifier const & own,
                                               Ldp::LdpIdentifier const & peer, bool ownIsSource );
   bool shareLink( Ldp::LdpIdentifier const & speaker, Addr const & source ) const;
   Addr source() const;
   Addr destination() const;

   Network & network_;
   Arrival arrival_;
   double now_ = 0; // the capture's time, in seconds since the epoch
   double expiredAt_ = 0;
   Flow const * flow_ = nullptr; // of the PDU in hand
   Ldp::LdpIdentifier sender_;   // of the PDU in hand
   std::map< Ldp::LdpIdentifier, Offer > offers_;
   std::map< Addr, Ldp::LdpIdentifier > speakerAt_;               // transport and source addresses seen
   std::map< Ldp::LdpIdentifier, std::map< Addr, bool > > links_; // source addresses of link hellos
};

} // namespace LdpTool
