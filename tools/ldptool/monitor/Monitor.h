#pragma once

// A passive monitor: takes each message to the agents of its sender and of its receiver, and lets what they
// hold expire by the capture's clock.

#include "messages/Reporter.h"
#include "monitor/discovery/Discovery.h"
#include "monitor/session/Sessions.h"

#include <functional>

namespace LdpTool {

class Monitor : public Reporter {
 public:
   enum Bindings {
      live,   ///< as objects of the model, all the time: for who follows each change, or the whole tree
      compact ///< as such objects only where `show` has asked for them: a fifth of the memory
   };
   explicit Monitor( Network & network, MonitorLimits const & limits = {}, std::size_t mostFlows = 32768,
                     Bindings bindings = live )
        : agents_( network, limits, bindings == compact ), discovery_( agents_ ), sessions_( agents_ ),
          connections_( mostFlows ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;
   void onTcpStep( Origin const & origin, TcpStep step ) override;
   void onClose( Origin const & origin ) override;

   /// Nothing has come until that time, in seconds since the epoch.
   void timeIs( double now );

   /// Calls `view` while the model has the bindings of the speaker, of all its sessions or of that with one
   /// peer.
   void show( Ldp::LdpIdentifier const & speaker, std::function< void() > const & view );
   void show( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer,
              std::function< void() > const & view );

   /// What the speaker has of its session with the peer; null without one.
   SessionEnd const * sessionEnd( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer ) const;
   /// Who is told of each change; null for nobody. It is not owned.
   void listenerIs( JournalListener * listener ) { agents_.journal().listenerIs( listener ); }

   /// The packet that the monitor has come to, and all that it has seen change.
   Journal const & journal() const { return agents_.journal(); }
   /// How often a message or a PDU was refused, by what is answered to it.
   std::map< Ldp::LdpStatusCode, std::uint64_t > const & refusals() const { return refusals_; }
   /// What was not kept, because there is too much of it.
   TurnedAway const & turnedAway() const { return agents_.turnedAway(); }

 private:
   void arrive( Origin const & origin );
   void receiverIs( Ldp::LdpIdentifier const & receiver );
   void onSessionMessage( Message const & message );

   Agents agents_;
   Discovery discovery_;
   Sessions sessions_;
   Connections connections_;
   double expiredAt_ = 0;
   std::map< Ldp::LdpStatusCode, std::uint64_t > refusals_;
   // Of the PDU in hand: where it comes from, its sender, its connection and which end of that the sender is,
   // and the ends of the session that it belongs to. They are null while the receiver is not known.
   Origin origin_;
   std::uint64_t octets_ = 0;
   Ldp::LdpIdentifier sender_;
   Connection * connection_ = nullptr;
   int from_ = 0;
   SessionEnd * sent_ = nullptr;
   SessionEnd * received_ = nullptr;
};

} // namespace LdpTool
