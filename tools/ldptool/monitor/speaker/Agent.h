#pragma once

// The monitor plays an agent without state machines for every speaker: it writes into the speaker's model
// what the messages show. A message is two facts: what its sender has said and what its receiver has heard.

#include "capture/Flow.h"
#include "monitor/speaker/Network.h"

#include "Ldp/LdpMsgParser.h"

#include <algorithm>
#include <map>
#include <memory>
#include <set>
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

/// The router that a speaker's identifier names.
inline Mpls::RouterId routerOf( Ldp::LdpIdentifier const & id ) {
   return Mpls::RouterId( Lumo::IpAddr( id.lsrId() ) );
}

class Agent;

/// What a speaker has of its session with one peer.
struct SessionEnd {
   Agent & agent; ///< of the speaker
   Ldp::LdpSessionId id;
   Vorn::Ptr< Ldp::LdpSessionStatus > status;
   Vorn::Ptr< Ldp::LdpSessionStatistics > statistics;

   Ldp::LdpIdentifier peer() const { return id.peerLdpId(); }
};

/// A message of a session on its way, good or bad.
struct Exchange {
   SessionEnd & sender;
   SessionEnd & receiver;
   Ldp::LdpMsgParser const & message;
   double now; ///< the capture's time, in seconds since the epoch
};

/// One speaker's agent.
class Agent {
 public:
   /// Makes the speaker's state, empty.
   explicit Agent( Speaker & speaker );
   Agent( Agent const & ) = delete;
   Agent & operator=( Agent const & ) = delete;

   Ldp::LdpIdentifier id() const { return speaker_.ldpIdentifier(); }
   Ldp::Status & status() { return *status_; }

   /// The speaker's end of the session with that peer, a new one if there is none.
   SessionEnd & sessionEnd( Ldp::LdpIdentifier const & peer );
   std::map< Ldp::LdpIdentifier, SessionEnd > & sessionEnds() { return sessionEnds_; }

   /// What the speaker proposed last, for negotiation with its neighbours. 0 is nothing yet.
   U16 keepAliveTime = 0;
   U16 maxPduLength = 0;
   /// Source addresses of its link hellos.
   std::set< Addr > linkAddresses;

 private:
   Speaker & speaker_;
   Vorn::Ptr< Ldp::Status > status_;
   std::map< Ldp::LdpIdentifier, SessionEnd > sessionEnds_;
};

/// The agents, and who was seen at which address.
class Agents {
 public:
   explicit Agents( Network & network ) : network_( network ) {}

   /// Most speakers whose state is kept. Who floods a link with invented ones chooses their identifiers,
   /// whose hash has no secret, so this is far below the 16383 of one hash that a map bears.
   static constexpr std::size_t mostAgents = 4096;

   /// The agent of that speaker, a new one if there is none; null for one too many.
   Agent * agentIs( Ldp::LdpIdentifier const & id );
   auto const & all() const { return agents_; }
   /// How often one was too many.
   std::uint64_t refused() const { return refused_; }

   /// The speaker at that transport or source address was seen to be this one.
   void seen( Addr const & address, Ldp::LdpIdentifier const & id ) { at_[address] = id; }
   /// Who was seen there; the zero identifier for nobody.
   Ldp::LdpIdentifier at( Addr const & address ) const;

 private:
   Network & network_;
   std::map< Ldp::LdpIdentifier, std::unique_ptr< Agent > > agents_;
   std::map< Addr, Ldp::LdpIdentifier > at_;
   std::uint64_t refused_ = 0;
};

} // namespace LdpTool
