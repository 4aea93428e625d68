// The notifications of RFC 9070.
#include "standards/Adjacencies.h"
#include "standards/Yang.h"
#include "standards/YangText.h"

#include "monitor/speaker/Agent.h"

namespace LdpTool {

using namespace Ldp;

YangEvents::YangEvents( Output & out, Network const & network, Monitor & monitor,
                        std::optional< LdpIdentifier > const & speaker )
     : json_( out ), network_( network ), monitor_( monitor ), speaker_( speaker ) {
   monitor.listenerIs( this );
}

YangEvents::~YangEvents() { monitor_.listenerIs( nullptr ); }

/// The envelope and what all three notifications begin with.
template< class Content >
void YangEvents::write( char const * event, bool up, Content const & content ) {
   json_.object();
   json_.key( "ietf-restconf:notification" );
   json_.object();
   json_.member( "eventTime", dateAndTime( monitor_.journal().arrival() ) );
   json_.key( event );
   json_.object();
   json_.member( "event-type", up ? "up" : "down" );
   content();
   json_.endObject();
   json_.endObject();
   json_.endObject();
   json_.endLine();
}

/// Whether another adjacency is told by the same words, which have no LDP identifier: that of another label
/// space.
bool YangEvents::isShared( LdpIdentifier const & speaker, LdpAdjId const & adjacency ) const {
   Status const * const status = statusOf( network_, speaker );
   auto const own = status ? status->ldpAdjStatusColl()->adjStatus( adjacency ) : nullptr;
   if ( !own ) return false;
   for ( auto & other : status->ldpAdjStatusColl()->adjStatusColl() ) {
      LdpAdjId const id = other.ldpAdjId();
      if ( id != adjacency && id.intfId() == adjacency.intfId() &&
           id.targetIpAddr() == adjacency.targetIpAddr() && other.peerSrcIpAddr() == own->peerSrcIpAddr() )
         return true;
   }
   return false;
}

void YangEvents::onChange( Change const & change, LdpAdjId const * adjacency ) {
   if ( !isWanted( change.speaker ) ) return;
   if ( !adjacency ) {
      static std::string const operational = stateName( stateOperational );
      if ( change.from != operational && change.to != operational ) return; // on its way
      write( "ietf-mpls-ldp:mpls-ldp-peer-event", change.to == operational, [&] {
         json_.key( "peer" );
         json_.object();
         json_.member( "protocol-name", change.speaker.stringValue() );
         json_.member( "lsr-id", Lumo::IpAddr( change.peer.lsrId() ) );
         json_.member( "label-space-id", change.peer.lblSpace() );
         json_.endObject();
      } );
      return;
   }
   if ( isShared( change.speaker, *adjacency ) ) return;
   write( "ietf-mpls-ldp:mpls-ldp-hello-adjacency-event", change.to == "hears", [&] {
      json_.member( "protocol-name", change.speaker.stringValue() );
      bool const targeted = adjacency->adjType() != LdpLinkAdj;
      json_.key( targeted ? "targeted" : "link" );
      json_.object();
      if ( targeted ) {
         json_.member( "target-address", adjacency->targetIpAddr() );
      } else {
         json_.member( "next-hop-interface", yangText( interfaceOf( adjacency->intfId() ) ) );
         Status const * const status = statusOf( network_, change.speaker );
         if ( auto const adj = status ? status->ldpAdjStatusColl()->adjStatus( *adjacency ) : nullptr )
            json_.member( "next-hop-address", adj->peerSrcIpAddr() );
      }
      json_.endObject();
   } );
}

void YangEvents::onFec( LdpIdentifier const & speaker, Mpls::FwdEqvClass const & fec, bool bound ) {
   if ( !isWanted( speaker ) ) return;
   write( "ietf-mpls-ldp:mpls-ldp-fec-event", bound, [&] {
      json_.member( "protocol-name", speaker.stringValue() );
      json_.member( "fec", fec.prefix() );
   } );
}

} // namespace LdpTool
