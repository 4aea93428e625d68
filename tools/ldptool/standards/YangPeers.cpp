// The peers of a speaker in the shape of RFC 9070.
#include "standards/SpeakerWriter.h"
#include "standards/YangText.h"

#include "monitor/speaker/Agent.h"

#include <algorithm>

namespace LdpTool {

using namespace Ldp;

namespace {

char const * stateWord( SessionState state ) {
   switch ( state ) {
   case stateInitialized: return "initialized";
   case stateOpenSent: return "opensent";
   case stateOpenRecv: return "openrec";
   case stateOperational: return "operational";
   default: return "non-existent";
   }
}

char const * modeWord( LdpLabelAdvDspl discipline ) {
   return discipline == onDemand ? "downstream-on-demand" : "downstream-unsolicited";
}

} // namespace

void SpeakerWriter::writePeers() {
   within( "peers", [&] {
      list( "peer", [&] {
         for ( auto const & [peer, adjacencies] : peers_ )
            entry( [&, &id = peer, &all = adjacencies] {
               peerRef( id );
               within( "address-families", [&] {
                  for ( Lumo::AddressFamily const family : families ) {
                     auto const isOf = [&]( AdjacencyFacts const * each ) {
                        return each->family() == family;
                     };
                     if ( std::none_of( all.begin(), all.end(), isOf ) ) continue;
                     // A link and a target can have the same two addresses; the link goes first.
                     std::set< std::pair< Lumo::IpGenAddr, Lumo::IpGenAddr > > told;
                     within( familyName( family ), [&] {
                        within( "hello-adjacencies", [&] {
                           list( "hello-adjacency", [&] {
                              for ( AdjacencyFacts const * each : all )
                                 if ( isOf( each ) && each->local &&
                                      told.insert( { *each->local, each->remote } ).second )
                                    entry( [&] {
                                       writeAddressesOf( *each, true );
                                       writeAdjacencyState( *each );
                                       if ( !each->targeted() )
                                          json_.member( "interface", yangText( each->interface ) );
                                    } );
                           } );
                        } );
                     } );
                  }
               } );
               writeSession( id );
            } );
      } );
   } );
}

void SpeakerWriter::writeSession( LdpIdentifier const & peer ) {
   auto const session = status_.ldpSessionStatusColl()->sessionStatus( LdpSessionId( peer ) );
   json_.member( "session-state", stateWord( session ? session->sessionState() : stateNonExist ) );
   SessionState const state = session ? session->sessionState() : stateUnknown;
   bool const live = state == stateInitialized || state == stateOpenSent || state == stateOpenRecv ||
                     state == stateOperational;
   if ( live ) writeSessionTerms( *session );
   writeStatistics( peer );
}

/// What the ends have agreed on. What a past session's were, or those of one whose beginning nobody saw, is
/// not told.
void SpeakerWriter::writeSessionTerms( LdpSessionStatus const & session ) {
   SessionState const state = session.sessionState();
   bool const agreed = session.operKeepAliveTime() != 0 && state == stateOperational;
   bool const peerSpoke = agreed || state == stateOpenRecv;
   bool const ownSpoke = agreed || state == stateOpenSent;
   if ( peerSpoke || ownSpoke )
      within( "label-advertisement-mode", [&] {
         auto const common = status_.ldpSessionConfigColl()->ldpSessionCommonConfig();
         if ( ownSpoke ) json_.member( "local", modeWord( common->ldpLabelAdvDspl() ) );
         if ( peerSpoke ) json_.member( "peer", modeWord( session.peerLabelAdvDspl() ) );
         if ( agreed ) json_.member( "negotiated", modeWord( session.operLabelAdvDspl() ) );
      } );
   if ( peerSpoke ) {
      writeReceived( session );
      within( "session-holdtime", [&] {
         json_.member( "peer", session.peerKeepAliveTime() );
         if ( !agreed ) return;
         json_.member( "negotiated", session.operKeepAliveTime() );
         if ( session.sessionExpireTime() != 0.0 )
            json_.member( "remaining", secondsLeft( session.sessionExpireTime(), monitor_.journal().now() ) );
      } );
   }
   if ( session.localPort() != 0 )
      within( "tcp-connection", [&] {
         json_.member( "local-address", session.localIpAddr() );
         json_.member( "local-port", session.localPort() );
         json_.member( "remote-address", session.peerIpAddr() );
         json_.member( "remote-port", session.peerPort() );
      } );
   // One that was up before the capture began has been up for longer than anybody saw.
   if ( session.sessionUptime() != 0.0 && session.sessionStateReason() != seenAtWork ) {
      constexpr double ticks = 100.0; // in a second
      counter( "up-time",
               std::uint64_t( std::max( 0.0, monitor_.journal().now() - session.sessionUptime() ) * ticks ) );
   }
}

void SpeakerWriter::writeReceived( LdpSessionStatus const & session ) {
   within( "received-peer-state", [&] {
      within( "graceful-restart", [&] {
         constexpr U32 milliseconds = 1000;
         auto const time = [&]( char const * name, U32 sent, U32 least, U32 most ) {
            U32 const seconds = sent / milliseconds;
            if ( seconds >= least && seconds <= most )
               json_.member( name, seconds ); // the module has no others
         };
         bool const enabled = session.peerGrReconnectTimeout() != 0 || session.operGrSupported();
         json_.member( "enabled", enabled );
         if ( !enabled ) return;
         time( "reconnect-time", session.peerGrReconnectTimeout(), 10, 1800 );
         time( "recovery-time", session.peerGrRecoveryTimeout(), 30, 3600 );
      } );
      within( "capability", [&] {
         auto const capability = [&]( char const * name, LdpTlvType type ) {
            within( name, [&] { json_.member( "enabled", session.peerCapability( type ) ); } );
         };
         // End-of-LIB is what the Unrecognized Notification capability is for (RFC 5919, 4).
         capability( "end-of-lib", unrecognizedNotificationCapabilityTlv );
         capability( "typed-wildcard-fec", typedWildcardFecCapabilityTlv );
         capability( "upstream-label-assignment", upstreamLabelAssignmentCapabilityTlv );
      } );
   } );
}

void SpeakerWriter::writeStatistics( LdpIdentifier const & peer ) {
   within( "statistics", [&] {
      writeDiscontinuity( monitor_.journal().began() );
      SessionEnd const * const end = monitor_.sessionEnd( speaker_, peer );
      if ( !end ) return;
      writeCounts( "received", *end->statistics, false, end->octetsReceived );
      writeCounts( "sent", *end->statistics, true, end->octetsSent );
      json_.member( "total-addresses", end->status->peerIntfIps() );
      std::vector< U32 > & labels = learned_[peer];
      std::size_t const bindings = labels.size();
      std::sort( labels.begin(), labels.end() );
      labels.erase( std::unique( labels.begin(), labels.end() ), labels.end() );
      json_.member( "total-labels", labels.size() );
      json_.member( "total-fec-label-bindings", bindings );
   } );
}

void SpeakerWriter::writeCounts( char const * name, LdpSessionStatistics const & statistics, bool sent,
                                 std::uint64_t octets ) {
   constexpr std::pair< char const *, LdpMsgType > types[] = {
      { "address", LdpAddress },
      { "address-withdraw", LdpAddressWithdraw },
      { "initialization", LdpInit },
      { "keepalive", LdpKeepAlive },
      { "label-abort-request", LdpLabelAbortReq },
      { "label-mapping", LdpLabelMapping },
      { "label-release", LdpLabelRelease },
      { "label-request", LdpLabelRequest },
      { "label-withdraw", LdpLabelWithdraw },
      { "notification", LdpNotification },
   };
   within( name, [&] {
      std::uint64_t all = 0;
      auto const sum = [&]( auto const & counts ) {
         for ( auto const & count : counts )
            all += count.value();
      };
      if ( sent ) {
         sum( statistics.ldpMsgTxCountColl() );
      } else {
         sum( statistics.ldpMsgRxCountColl() );
      }
      counter( "total-octets", octets );
      counter( "total-messages", all );
      for ( auto const & [member, type] : types )
         counter( member, sent ? statistics.ldpMsgTxCount( type ) : statistics.ldpMsgRxCount( type ) );
   } );
}

} // namespace LdpTool
