// The ends of sessions, and which messages belong to which.
#include "monitor/speaker/Agent.h"

#include <cstring>

namespace LdpTool {

namespace {

L3::VrfName const & defaultVrf() {
   static L3::VrfName const name( "default" );
   return name;
}

} // namespace

std::string stateName( Ldp::SessionState state ) {
   constexpr std::string_view prefix = "state";
   std::string name( valueToStrep( state ).view() );
   return name.starts_with( prefix ) ? name.substr( prefix.size() ) : name;
}

std::string adjacencyText( Ldp::LdpAdjId const & id ) {
   bool const link = id.adjType() == Ldp::LdpLinkAdj;
   Vorn::String const name = link ? id.intfId().stringValue() : id.targetIpAddr().stringValue();
   return ( link ? "link " : "target " ) + std::string( name.view() );
}

Addr addressOf( std::array< std::uint8_t, 16 > const & octets, std::uint8_t size ) {
   if ( size == Lumo::IpAddr::size ) {
      Lumo::IpAddr addr;
      std::memcpy( addr.octets(), octets.data(), size );
      return addr;
   }
   Lumo::Ip6Addr addr;
   std::memcpy( addr.octets(), octets.data(), size );
   return addr;
}

// All that a message can show has its place from the beginning. The rest of the state (route and multicast
// tables, restart, label allocation) is not to be seen in messages and stays null.
Agent::Agent( Speaker & speaker, Surroundings & around ) : speaker_( speaker ), around_( around ) {
   Vorn::Name const unnamed;
   Mpls::RouterId const router = routerOf( id() );
   auto const opaqueValues = speaker.opaqueValueTableIs( unnamed );
   status_ = speaker.ldpStatusCollIs( unnamed )->statusIs( defaultVrf() );
   Ldp::Status & status = *status_;
   status.ldpLinkConfigCollIs( unnamed )->ldpLinkCommonConfigIs( unnamed )->ldpIdIs( id() );
   status.ldpLinkStatusCollIs( unnamed );
   status.ldpTargetConfigCollIs( unnamed )->ldpTargetCommonConfigIs( unnamed )->ldpIdIs( id() );
   status.ldpTargetStatusCollIs( unnamed );
   status.ldpAdjConfigCollIs( unnamed );
   status.ldpAdjStatusCollIs( unnamed );
   status.ldpPeerConfigCollIs( unnamed );
   status.ldpPeerStatusCollIs( unnamed );
   status.ldpSessionConfigCollIs( unnamed )->ldpSessionCommonConfigIs( unnamed );
   status.ldpSessionStatusCollIs( unnamed );
   status.ldpFecConfigCollIs( unnamed );
   status.ldpFecSessionStatusCollIs( unnamed );
   status.ldpTcpConnConfigCollIs( unnamed );
   status.ldpTcpConnStatusCollIs( unnamed );
   status.ldpTcpServerStatusIs( unnamed );
   status.localLabelBindingTableIs( router );
   status.peerLabelBindingTableCollIs( unnamed );
   status.indexIs( unnamed );
   status.pwConfigCollIs( unnamed );
   status.pwStatusCollIs( unnamed );
   status.localPwFecSessionConfigCollIs( unnamed );
   status.remotePwFecSessionConfigCollIs( unnamed );
   status.localPwFecSessionStatusCollIs( unnamed );
   status.remotePwFecSessionStatusCollIs( unnamed );
   status.p2mpOpaqueTableIs( unnamed )->tableIs( opaqueValues );
   status.p2mpFecStateCollIs( unnamed );
   status.p2mpFecSessionLocalStateCollIs( unnamed );
   status.p2mpFecSessionRemoteStateCollIs( unnamed );
   status.p2mpLocalLabelBindingTableIs( router );
   status.p2mpPeerLabelBindingTableCollIs( unnamed );
   status.statisticsIs( unnamed )->sessionStatisticsCollIs( unnamed );
}

bool SessionEnd::live() const {
   Ldp::SessionState const state = status->sessionState();
   return state == Ldp::stateInitialized || state == Ldp::stateOpenSent || state == Ldp::stateOpenRecv ||
          state == Ldp::stateOperational;
}

SessionEnd & Agent::sessionEnd( Ldp::LdpIdentifier const & peer ) {
   auto const known = sessionEnds_.find( peer );
   if ( known != sessionEnds_.end() ) return known->second;
   Ldp::LdpSessionId const sessionId( peer );
   auto const session = status_->ldpSessionStatusColl()->sessionStatusIs( sessionId );
   session->checkInit();
   session->localLdpIdentifierIs( id() );
   ++around_.sessionEnds;
   auto const statistics = status_->statistics()->sessionStatisticsColl()->sessionStatisticsIs( sessionId );
   return sessionEnds_.try_emplace( peer, *this, sessionId, session, statistics ).first->second;
}

Agent * Agents::agentIs( Ldp::LdpIdentifier const & id ) {
   if ( auto const known = agents_.find( id ); known != agents_.end() ) return known->second.get();
   if ( agents_.size() >= around_.limits.speakers ) {
      ++around_.turnedAway.speakers;
      return nullptr;
   }
   return agents_.try_emplace( id, std::make_unique< Agent >( *network_.speakerIs( id ), around_ ) )
        .first->second.get();
}

// One transport address can be that of several label spaces (RFC 5036, 2.2.2), whose sessions differ in their
// connections only.
void Agents::seen( Addr const & address, Ldp::LdpIdentifier const & id ) {
   constexpr double notLongAgo = 600.0;
   constexpr std::size_t most = 4 * MonitorLimits::adjacenciesInAll;
   auto known = at_.find( address );
   if ( known == at_.end() ) {
      if ( at_.size() >= most ) return;
      known = at_.emplace( address, Seen{ id, {}, 0.0 } ).first;
   }
   Seen & seen = known->second;
   if ( seen.id == id ) return;
   seen.other = seen.id.lsrId() == id.lsrId() ? seen.id : Ldp::LdpIdentifier();
   seen.otherUntil = journal().now() + notLongAgo;
   seen.id = id;
}

Ldp::LdpIdentifier Agents::at( Addr const & address ) const {
   auto const known = at_.find( address );
   if ( known == at_.end() ) return {};
   bool const several = !!known->second.other && journal().now() < known->second.otherUntil;
   return several ? Ldp::LdpIdentifier() : known->second.id;
}

} // namespace LdpTool
