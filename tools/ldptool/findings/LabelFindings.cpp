// What is odd about labels and pseudowires.
#include "findings/Findings.h"

#include "monitor/speaker/Network.h"
#include "text/Words.h"

#include <iterator>
#include <map>
#include <set>

namespace LdpTool {

using namespace Ldp;

namespace {

std::string textOf( auto const & value ) { return std::string( value.stringValue().view() ); }

/// Some of many: how many there are, and the first.
struct Several {
   std::uint64_t times = 0;
   std::string first;

   void add( std::string const & text ) {
      if ( !times++ || text < first ) first = text;
   }
   void tell( std::vector< Finding > & found, std::string const & what, char const * look ) const {
      if ( !times ) return;
      std::string const more = times > 1 ? " and " + std::to_string( times - 1 ) + " more" : "";
      found.push_back( { what + ": " + first + more, {}, look } );
   }
};

void prefixes( std::vector< Finding > & found, Status const & status, std::string const & pair,
               LdpSessionId const & id ) {
   auto const view = status.ldpFecSessionStatusColl()->fecSessionStatusBySessionColl( id );
   if ( !view ) return;
   Several withdrawn, replaced, shared;
   std::map< U32, std::set< std::string > > users;
   for ( auto const & node : view->fecSessionStatusColl() ) {
      LdpFecSessionStatus const & fec = *node.value();
      std::string const name = textOf( node.key().fwdEqvClass() );
      for ( auto const & label : fec.localLabelStateColl() ) {
         std::string const text = name + " label " + std::to_string( label.key().value() );
         if ( label.value() == withdrawSent ) withdrawn.add( text );
         if ( label.value() == noneSent ) replaced.add( text );
         constexpr U32 firstFree = 16; // those below mean the same for every FEC (RFC 3032, 2.1)
         if ( label.value() != mappingSent || label.key().value() < firstFree ) continue;
         users[label.key().value()].insert( name );
      }
   }
   for ( auto const & [label, names] : users )
      if ( names.size() > 1 )
         shared.add( *std::next( names.begin() ) + " label " + std::to_string( label ) + ", which " +
                     *names.begin() + " has too" );
   withdrawn.tell( found, pair + ": withdrawn and never released",
                   "why the peer has not answered the withdraw" );
   replaced.tell( found, pair + ": mapped twice, the first label never released",
                  "whether the peer releases a label that a new mapping replaces (RFC 5036, A.1.2)" );
   shared.tell( found, pair + ": one label for two FECs", "whether both FECs go the same way" );
}

void pseudowires( std::vector< Finding > & found, Status const & status, std::string const & pair,
                  LdpSessionId const & id ) {
   struct Ends {
      Vorn::Ptr< PwFecSessionConfig > local, remote;
   };
   std::map< U32, Ends > byId;
   for ( auto & config : status.localPwFecSessionConfigColl()->fecSessionConfigColl() )
      if ( config.pwFecSessionId().ldpSessionId() == id )
         byId[config.pwFecSessionId().pwFwdEqvClass().pwId().value()].local =
              status.localPwFecSessionConfigColl()->fecSessionConfig( config.pwFecSessionId() );
   for ( auto & config : status.remotePwFecSessionConfigColl()->fecSessionConfigColl() )
      if ( config.pwFecSessionId().ldpSessionId() == id )
         byId[config.pwFecSessionId().pwFwdEqvClass().pwId().value()].remote =
              status.remotePwFecSessionConfigColl()->fecSessionConfig( config.pwFecSessionId() );
   for ( auto const & [number, ends] : byId ) {
      std::string const name = pair + ": pseudowire " + std::to_string( number ) + ": ";
      auto const & [local, remote] = ends;
      auto const tell = [&]( std::string const & what ) {
         found.push_back( { name + what, {}, "the configuration of the pseudowire at both ends" } );
      };
      if ( !local || !remote ) {
         tell( local ? "only this end has mapped it" : "only the peer has mapped it" );
         continue;
      }
      auto const & mine = local->pwFecSessionId().pwFwdEqvClass();
      auto const & theirs = remote->pwFecSessionId().pwFwdEqvClass();
      if ( mine.pwType() != theirs.pwType() )
         tell( "types differ, " + std::string( valueToStrep( mine.pwType() ).view() ) + " here and " +
               std::string( valueToStrep( theirs.pwType() ).view() ) + " there" );
      if ( local->preferControlWord() != remote->preferControlWord() )
         tell( std::string( "control word differs: " ) +
               ( local->preferControlWord() ? "this end" : "the peer" ) + " wants one, the other does not" );
      if ( local->fecParams().mtu() != remote->fecParams().mtu() )
         tell( "MTU differs, " + std::to_string( local->fecParams().mtu() ) + " here and " +
               std::to_string( remote->fecParams().mtu() ) + " there" );
      if ( !( local->fecParams().requestedVlanId() == remote->fecParams().requestedVlanId() ) )
         tell( "requested VLANs differ" );
      for ( auto const & [end, config] : { std::pair( "this end", local ), std::pair( "the peer", remote ) } )
         if ( U32 const flags = config->pwStatusFlags().value() )
            tell( std::string( end ) + " reports: " + pwStatusText( flags ) );
   }
}

} // namespace

std::vector< Finding > labelFindings( Status const & status, LdpIdentifier const & speaker,
                                      LdpIdentifier const & peer ) {
   std::vector< Finding > found;
   LdpSessionId const id( peer );
   std::string const pair = textOf( speaker ) + " to " + textOf( peer );
   prefixes( found, status, pair, id );
   pseudowires( found, status, pair, id );
   return found;
}

} // namespace LdpTool
