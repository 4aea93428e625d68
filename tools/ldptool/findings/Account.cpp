// Accounts of pairs.
#include "findings/Account.h"

#include "text/Words.h"

#include "Ldp/LdpStatus.h"

namespace LdpTool {

using namespace Ldp;

namespace {

using Pair = Evidence::Pair;

std::string textOf( auto const & value ) { return std::string( value.stringValue().view() ); }

std::string frameText( std::uint64_t frame ) { return "frame " + std::to_string( frame ); }

Pair ordered( LdpIdentifier const & a, LdpIdentifier const & b ) {
   return a < b ? Pair( a, b ) : Pair( b, a );
}

void tell( Output & out, std::string const & topic, std::string const & text ) {
   std::string line = "  " + topic;
   line.resize( std::max< std::size_t >( line.size() + 1, 16 ), ' ' );
   out.escaped( line + text ) << '\n';
}

/// What both, one or none of two have done.
std::string sides( Seen const & a, Seen const & b, Pair const & pair ) {
   if ( a && b )
      return "both ways (frames " + std::to_string( a.first ) + " and " + std::to_string( b.first ) + ")";
   if ( !a && !b ) return "none";
   return "of " + textOf( a ? pair.first : pair.second ) + " only (" + frameText( ( a ? a : b ).first ) + ")";
}

void tellHellos( Output & out, Pair const & pair, Changes const & changes ) {
   Seen heard[2];
   std::string present[2];
   for ( Change const * change : changes ) {
      if ( change->subject == "session" ) continue;
      int const side = change->speaker == pair.first ? 0 : 1;
      if ( change->to == "hears" ) heard[side].at( change->at.frame );
      present[side] = change->to == "hears" ? ""
                                            : "; lost at " + timeText( change->at ) + " (" +
                                                   frameText( change->at.frame ) + "): " + change->cause;
   }
   std::string const last = present[0].empty() ? present[1] : present[0];
   // Who hears is the other one of who was heard.
   tell( out, "hellos", sides( heard[1], heard[0], pair ) + last );
}

void tellConnection( Output & out, Evidence const & evidence, Pair const & pair ) {
   bool any = false;
   for ( auto const & [own, peer] : { pair, Pair( pair.second, pair.first ) } ) {
      Sent const & sent = evidence.sentTo( own, peer );
      if ( !sent.syns ) continue;
      any = true;
      std::string text = textOf( own ) + " connects: " + std::to_string( sent.syns.times ) +
                         ( sent.syns.times == 1 ? " SYN, " : " SYNs, " );
      text += sent.established ? "established in " + frameText( sent.established.last ) : "never established";
      tell( out, "connection", text );
   }
   bool const works = evidence.sentTo( pair.first, pair.second ).keepAlives ||
                      evidence.sentTo( pair.second, pair.first ).keepAlives;
   if ( !any ) tell( out, "connection", works ? "began before the capture" : "none was tried" );
}

void tellSession( Output & out, Evidence const & evidence, Pair const & pair, Changes const & changes ) {
   Sent const & there = evidence.sentTo( pair.first, pair.second );
   Sent const & back = evidence.sentTo( pair.second, pair.first );
   tell( out, "Initialization", sides( there.inits, back.inits, pair ) );
   tell( out, "KeepAlive", sides( there.keepAlives, back.keepAlives, pair ) );
   bool any = false;
   for ( Change const * change : changes ) {
      if ( change->subject != "session" || change->speaker != pair.first ) continue;
      if ( change->to != "Operational" && change->from != "Operational" ) continue;
      any = true;
      tell( out, "session",
            timeText( change->at ) + " " + change->to + " (" + frameText( change->at.frame ) +
                 "): " + change->cause );
   }
   if ( !any ) tell( out, "session", "never operational" );
}

/// What the sender may well mean, but nobody here knows what comes of it.
void tellUnsupported( Output & out, Evidence const & evidence, Pair const & pair ) {
   for ( auto const & [own, peer] : { pair, Pair( pair.second, pair.first ) } )
      for ( auto const & [reason, seen] : evidence.sentTo( own, peer ).unsupported )
         tell( out, "not followed",
               std::to_string( seen.times ) + " message(s) of " + textOf( own ) + ", not supported here (" +
                    frameText( seen.first ) + "): " + reason );
}

std::size_t tellFindings( Output & out, std::vector< Finding > const & findings ) {
   for ( Finding const & finding : findings ) {
      std::string frames;
      unsigned shown = 0;
      std::uint64_t before = 0;
      for ( std::uint64_t frame : finding.frames ) {
         if ( !frame || frame == before ) continue;
         frames += ( frames.empty() ? "" : ", " ) + std::to_string( frame );
         before = frame;
         ++shown;
      }
      if ( shown ) frames = ( shown == 1 ? " [frame " : " [frames " ) + frames + "]";
      out.escaped( "  ! " + finding.what + frames ) << '\n';
      out.escaped( "    look at: " + finding.look ) << '\n';
   }
   return findings.size();
}

} // namespace

std::size_t printAccounts( Output & out, Evidence const & evidence, Network const & network,
                           Monitor & monitor, std::optional< LdpIdentifier > const & about ) {
   Journal const & journal = monitor.journal();
   std::map< Pair, Changes > pairs;
   std::map< LdpIdentifier, Status const * > states;
   for ( auto const & [pair, sent] : evidence.sent() )
      pairs[ordered( pair.first, pair.second )];
   for ( Change const & change : journal.changes() )
      pairs[ordered( change.speaker, change.peer )].push_back( &change );
   for ( auto & speaker : network.speakerColl() )
      for ( auto & status : speaker.ldpStatusColl()->statusColl() )
         states[speaker.ldpIdentifier()] = &status;
   std::size_t found = 0;
   for ( auto const & [id, status] : states ) {
      if ( about && id != *about ) continue;
      auto const findings = findingsOf( evidence, id );
      if ( findings.empty() ) continue;
      out << "speaker " << textOf( id ) << '\n';
      found += tellFindings( out, findings );
   }
   std::size_t told = 0;
   for ( auto const & [pair, changes] : pairs ) {
      if ( about && pair.first != *about && pair.second != *about ) continue;
      ++told;
      out << textOf( pair.first ) << " and " << textOf( pair.second ) << '\n';
      tellHellos( out, pair, changes );
      tellConnection( out, evidence, pair );
      tellSession( out, evidence, pair, changes );
      tellUnsupported( out, evidence, pair );
      found += tellFindings( out, sessionFindings( evidence, journal, changes, pair.first, pair.second ) );
      for ( auto const & [own, peer] : { pair, Pair( pair.second, pair.first ) } )
         if ( auto const state = states.find( own ); state != states.end() )
            monitor.show( own, peer, [&, &own = own, &peer = peer] {
               found += tellFindings( out, labelFindings( *state->second, own, peer ) );
            } );
   }
   if ( !told )
      out << ( states.empty() ? "no speaker: no good hello or session message was seen\n"
                              : "no two speakers have anything to do with each other\n" );
   return found;
}

} // namespace LdpTool
