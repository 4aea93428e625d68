#pragma once

// The monitor plays an agent without state machines for every speaker: it writes into the speaker's model
// what the messages show. A message is two facts: what its sender has said and what its receiver has heard.

#include "capture/Flow.h"
#include "monitor/speaker/Journal.h"
#include "monitor/speaker/Network.h"
#include "monitor/speaker/Waiting.h"

#include "Ldp/LdpMsgParser.h"
#include "Ldp/PwFecSession.h"

#include <algorithm>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <unordered_map>
#include <vector>

namespace LdpTool {

using Addr = Lumo::IpGenAddr;

/// The address of that many octets at the beginning of those.
Addr addressOf( std::array< std::uint8_t, 16 > const & octets, std::uint8_t size );

/// What `keyOf` says of each member of a collection, in order. The collection's own order differs from run to
/// run; what is done for each member is to be seen in the same order every time, and the list lets it delete.
template< class Collection, class KeyOf >
auto sorted( Collection const & members, KeyOf const & keyOf ) {
   std::vector< std::remove_cvref_t< decltype( keyOf( *members.begin() ) ) > > keys;
   for ( auto const & member : members )
      keys.push_back( keyOf( member ) );
   std::sort( keys.begin(), keys.end() );
   return keys;
}
template< class Collection >
auto sortedKeys( Collection const & members ) {
   return sorted( members, []( auto const & member ) { return member.key(); } );
}

/// A session's state as a word: "Operational".
std::string stateName( Ldp::SessionState state );

/// The router that a speaker's identifier names.
inline Mpls::RouterId routerOf( Ldp::LdpIdentifier const & id ) {
   return Mpls::RouterId( Lumo::IpAddr( id.lsrId() ) );
}

class Agent;

/// What one end proposed in its Initialization (RFC 5036, 3.5.3).
struct Proposal {
   bool made = false;
   U16 keepAliveTime = 0;
   U16 maxPduLength = 0;
   bool onDemand = false;
};

/// A FEC's state on a session, while the model has no object of it.
using CompactFec = std::unique_ptr< char[] >;
struct FecHash {
   std::size_t operator()( Mpls::FwdEqvClass const & fec ) const { return fec.hash(); }
};

/// What a speaker has of its session with one peer.
struct SessionEnd {
   SessionEnd( Agent & a, Ldp::LdpSessionId const & sessionId, Vorn::Ptr< Ldp::LdpSessionStatus > s,
               Vorn::Ptr< Ldp::LdpSessionStatistics > counts )
        : agent( a ), id( sessionId ), status( std::move( s ) ), statistics( std::move( counts ) ) {}

   Agent & agent; ///< of the speaker
   Ldp::LdpSessionId id;
   Vorn::Ptr< Ldp::LdpSessionStatus > status;
   Vorn::Ptr< Ldp::LdpSessionStatistics > statistics;

   // All below is of the connection that the session runs on.
   Flow flow{};          ///< with the speaker as its source; without addresses before there was one
   Proposal proposed;    ///< by the speaker
   bool spoke = false;   ///< whether the capture has anything that the speaker sent
   bool watched = false; ///< its deadlines are waited for
   /// The frame at which the connection became the session's, or the session ended.
   std::uint64_t since = 0;

   // Labels that the speaker has from the peer and keeps though the session on which it got them is over,
   // because the peer restarts gracefully (RFC 3478, 3.3): until when, in seconds since the epoch; 0 for
   // none.
   double staleUntil = 0.0;
   std::set< Mpls::FwdEqvClass > stale;

   /// Prefixes that the speaker has mapped for the peer, or has got mappings of, since a wildcard took them
   /// all away: what the next one is about, each at least once. No list stands for all of the session.
   std::optional< std::vector< Mpls::FwdEqvClass > > mapped;
   std::optional< std::vector< Mpls::FwdEqvClass > > held;

   /// Prefixes for which the peer had no label to give; until it says that it has some again.
   std::set< Mpls::FwdEqvClass > refused;

   /// States of prefixes, where the model's objects are made only to be changed or shown.
   std::unordered_map< Mpls::FwdEqvClass, CompactFec, FecHash > compactFecs;

   // P2MP FECs, as the speaker numbers them, and pseudowires: those that the speaker has mapped, and those
   // that the peer has.
   FecUse< Mpls::FwdEqvClass > p2mpLocal;
   FecUse< Mpls::FwdEqvClass > p2mpRemote;
   FecUse< Ldp::PwFecSessionId > pwLocal;
   FecUse< Ldp::PwFecSessionId > pwRemote;

   /// Whether anything is kept of the session before.
   bool hasStale() const { return !stale.empty() || !p2mpRemote.stale.empty() || !pwRemote.stale.empty(); }

   Ldp::LdpIdentifier peer() const { return id.peerLdpId(); }
   /// Whether the session is on its way or up.
   bool live() const;
};

/// A message of a session on its way, good or bad.
struct Exchange {
   SessionEnd & sender;
   SessionEnd & receiver;
   Ldp::LdpMsgParser const & message;
   double now; ///< the capture's time, in seconds since the epoch
};

/// What all agents share.
struct Surroundings {
   MonitorLimits limits;
   bool compact; ///< the model's objects of prefixes on sessions are there to be shown only, not to be
                 ///< followed
   TurnedAway turnedAway;
   Journal journal{ limits, turnedAway };
   std::size_t sessionEnds = 0; ///< of all agents
};

/// One speaker's agent.
class Agent {
 public:
   /// Makes the speaker's state, empty.
   Agent( Speaker & speaker, Surroundings & around );
   Agent( Agent const & ) = delete;
   Agent & operator=( Agent const & ) = delete;

   Ldp::LdpIdentifier id() const { return speaker_.ldpIdentifier(); }
   Ldp::Status & status() { return *status_; }
   Journal & journal() { return around_.journal; }
   MonitorLimits const & limits() const { return around_.limits; }
   TurnedAway & turnedAway() { return around_.turnedAway; }
   bool compact() const { return around_.compact; }

   /// The speaker's end of the session with that peer, a new one if there is none.
   SessionEnd & sessionEnd( Ldp::LdpIdentifier const & peer );
   bool hasSession( Ldp::LdpIdentifier const & peer ) const { return sessionEnds_.contains( peer ); }
   /// Whether one more peer can have a session with the speaker.
   bool hasRoom() const {
      return sessionEnds_.size() < around_.limits.adjacencies &&
             around_.sessionEnds < MonitorLimits::adjacenciesInAll;
   }
   template< class Call >
   void eachSession( Call const & call ) {
      for ( auto & [peer, end] : sessionEnds_ )
         call( end );
   }

 private:
   Speaker & speaker_;
   Surroundings & around_;
   Vorn::Ptr< Ldp::Status > status_;
   std::map< Ldp::LdpIdentifier, SessionEnd > sessionEnds_;
};

/// The agents, and who was seen at which address.
class Agents {
 public:
   Agents( Network & network, MonitorLimits const & limits, bool compact )
        : network_( network ), around_{ limits, compact, {} } {}

   /// The agent of that speaker, a new one if there is none; null for one too many.
   Agent * agentIs( Ldp::LdpIdentifier const & id );

   /// The agent of that speaker; null if there is none.
   Agent * find( Ldp::LdpIdentifier const & id ) const {
      auto const known = agents_.find( id );
      return known == agents_.end() ? nullptr : known->second.get();
   }

   Journal & journal() { return around_.journal; }
   Journal const & journal() const { return around_.journal; }
   MonitorLimits const & limits() const { return around_.limits; }
   TurnedAway & turnedAway() { return around_.turnedAway; }
   TurnedAway const & turnedAway() const { return around_.turnedAway; }

   /// The speaker at that transport or source address was seen to be this one.
   void seen( Addr const & address, Ldp::LdpIdentifier const & id );
   /// Who was seen there; the zero identifier for nobody, and for a router with several label spaces.
   Ldp::LdpIdentifier at( Addr const & address ) const;

 private:
   struct Seen {
      Ldp::LdpIdentifier id;
      Ldp::LdpIdentifier other; ///< another of the same router, seen there not long before
      double otherUntil = 0.0;
   };

   Network & network_;
   Surroundings around_;
   std::map< Ldp::LdpIdentifier, std::unique_ptr< Agent > > agents_;
   std::map< Addr, Seen > at_;
};

} // namespace LdpTool
