#pragma once

// What has changed between speakers, when and why: the monitor's memory of what the model has forgotten.

#include "capture/Flow.h"
#include "monitor/speaker/Limits.h"

#include "Ldp/LdpAdj.h"
#include "Mpls/FwdEqvClass.h"

#include <deque>
#include <map>
#include <optional>
#include <set>
#include <string>

namespace LdpTool {

/// A change of what one speaker has with a peer.
struct Change {
   Arrival at;
   Ldp::LdpIdentifier speaker;
   Ldp::LdpIdentifier peer;
   std::string subject; ///< "session", or the adjacency
   std::string from;    ///< the state before; "-" for none
   std::string to;
   std::string cause;
};

/// Is told of changes as they come. The model has the change already; what is on its way out is still in it.
class JournalListener {
 public:
   virtual ~JournalListener() = default;
   /// `adjacency` is null for a change of a session.
   virtual void onChange( Change const & change, Ldp::LdpAdjId const * adjacency ) = 0;
   /// The speaker has the first label of a prefix, its own or a peer's, or has lost the last one.
   virtual void onFec( Ldp::LdpIdentifier const & speaker, Mpls::FwdEqvClass const & fec, bool bound ) = 0;
};

class Journal {
 public:
   Journal( MonitorLimits const & limits, TurnedAway & turnedAway )
        : most_( limits.changes ), turnedAway_( turnedAway ) {}

   /// The packet that the monitor has come to, and its time in seconds since the epoch.
   void arrivalIs( Arrival const & arrival ) {
      if ( !began_ ) began_ = arrival;
      arrival_ = arrival;
      now_ = double( arrival.seconds ) + double( arrival.nanoseconds ) * 1e-9;
   }
   Arrival const & arrival() const { return arrival_; }
   double now() const { return now_; }
   /// The first packet that the monitor has come to: from there on it has counted. None before there was one.
   std::optional< Arrival > const & began() const { return began_; }

   /// Notes a change at the packet in hand. When there are too many the oldest is forgotten.
   void add( Change change, Ldp::LdpAdjId const * adjacency = nullptr );
   std::deque< Change > const & changes() const { return changes_; }
   /// Who is told of each change; null for nobody. It is not owned.
   void listenerIs( JournalListener * listener ) { listener_ = listener; }
   JournalListener * listener() const { return listener_; }

   /// How a session of the speaker with the peer ended last; nothing if none did.
   struct Down {
      Arrival at;
      std::string cause;
   };
   /// The peer gave back a label that the speaker had not withdrawn.
   struct Released {
      std::uint64_t times = 0;
      std::uint64_t first = 0; ///< frame
      std::string fec;         ///< of the first
   };
   void releasedIs( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer,
                    std::string const & fec );
   Released released( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer ) const;

   void downIs( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer, std::string cause );
   /// Whether the capture has only what one of the two has said.
   void oneSidedIs( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer, bool is ) {
      if ( is ) {
         oneSided_.insert( { speaker, peer } );
      } else {
         oneSided_.erase( { speaker, peer } );
      }
   }
   bool oneSided( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer ) const {
      return oneSided_.contains( { speaker, peer } );
   }
   std::optional< Down > lastDown( Ldp::LdpIdentifier const & speaker,
                                   Ldp::LdpIdentifier const & peer ) const;

 private:
   std::size_t most_;
   TurnedAway & turnedAway_;
   Arrival arrival_;
   std::optional< Arrival > began_;
   double now_ = 0;
   JournalListener * listener_ = nullptr;
   std::deque< Change > changes_;
   std::map< std::pair< Ldp::LdpIdentifier, Ldp::LdpIdentifier >, Down > downs_;
   std::set< std::pair< Ldp::LdpIdentifier, Ldp::LdpIdentifier > > oneSided_;
   std::map< std::pair< Ldp::LdpIdentifier, Ldp::LdpIdentifier >, Released > released_;
};

} // namespace LdpTool
