// Causes in hellos, TCP and the exchange that begins a session.
#include "findings/Findings.h"

#include "text/Words.h"

#include "Ldp/LdpUtils.h"

#include <algorithm>
#include <tuple>

namespace LdpTool {

using namespace Ldp;

namespace {

std::string textOf( auto const & value ) { return std::string( value.stringValue().view() ); }

std::string wordsOf( LdpStatusCode code ) {
   char number[16];
   std::snprintf( number, sizeof number, " (0x%08x)", unsigned( code ) );
   return std::string( sessionStateStrForStatusCode( code ).view() ) + number;
}

bool isLinkLocal( Addr const & address ) {
   return address.family() != Lumo::ipv6 ||
          ( address.octets()[0] == 0xfe && ( address.octets()[1] & 0xc0 ) == 0x80 );
}

using Found = std::vector< Finding >;

/// The last of the speaker's transport addresses that the peer may connect to.
Addr transportOf( Evidence const & evidence, LdpIdentifier const & speaker ) {
   auto const known = evidence.transports().find( speaker );
   return known == evidence.transports().end() || known->second.size() != 1 ? Addr() : *known->second.begin();
}

void hellosBetween( Found & found, Evidence const & evidence, LdpIdentifier const & a,
                    LdpIdentifier const & b ) {
   Sent const & there = evidence.sentTo( a, b );
   Sent const & back = evidence.sentTo( b, a );
   if ( there.targetedHellos && !back.targetedHellos && !back.inits )
      found.push_back(
           { "targeted hellos one way only: " + textOf( a ) + " sends them, " + textOf( b ) +
                  " does not answer",
             { there.targetedHellos.first, there.targetedHellos.last },
             "whether " + textOf( b ) + " accepts targeted hellos, and the route between the two" } );
}

/// What becomes of the SYNs that the first sends to the second.
void connecting( Found & found, std::string const & active, Sent const & out, std::string const & passive,
                 Sent const & back ) {
   std::string const to = " of " + active + " to " + passive;
   if ( !out.syns ) return;
   if ( back.refusals )
      found.push_back( { "the connection" + to + " is refused: a reset answers the SYN",
                         { back.refusals.first, back.refusals.last },
                         "whether LDP runs at " + passive + " and listens on that transport address" } );
   bool const later = out.established.last > out.syns.last;
   if ( back.synAcks.last > out.syns.first && back.synAcks.times > 1 && !later &&
        out.established.last < back.synAcks.last )
      found.push_back(
           { "the answer to the SYN" + to + " is not taken: SYN and SYN-ACK are repeated",
             { out.syns.last, back.synAcks.last },
             "TCP MD5 or other authentication that only one side has, and filters on the way back" } );
   else if ( !back.refusals && !later && out.syns.times > 1 && back.synAcks.last < out.syns.last )
      found.push_back(
           { "silence: " + std::to_string( out.syns.times ) + " SYNs" + to +
                  ", the last ones without an answer",
             { out.syns.first, out.syns.last },
             "the route to the transport address, filters of port 646, and TCP MD5: who has a key drops "
             "segments without one" } );
   if ( !later && bool( out.authenticated ) != bool( back.authenticated ) &&
        ( out.authenticated || back.syns || back.synAcks ) )
      found.push_back( { "TCP authentication on one side: the segments of " +
                              ( out.authenticated ? active : passive ) +
                              " have an option of TCP MD5 or TCP-AO, no segment of the other has",
                         { out.syns.first, out.syns.last },
                         "the keys of both for each other's transport address" } );
}

void roleClash( Found & found, Evidence const & evidence, LdpIdentifier const & active,
                LdpIdentifier const & passive ) {
   Sent const & out = evidence.sentTo( active, passive );
   Addr const mine = transportOf( evidence, active );
   Addr const theirs = transportOf( evidence, passive );
   if ( mine.family() == theirs.family() && !!mine && mine < theirs && out.syns )
      found.push_back(
           { "role clash: " + textOf( active ) + " connects though its transport address is the lower one",
             { out.syns.first, out.syns.last },
             "the transport addresses; the higher one is to connect (RFC 5036, 2.5.2)" } );
}

/// How many hellos a speaker has sent.
std::uint64_t hellosOf( Evidence const & evidence, LdpIdentifier const & speaker ) {
   std::uint64_t times = 0;
   for ( auto at = evidence.hellos().lower_bound( { speaker, Addr() } );
         at != evidence.hellos().end() && at->first.first == speaker; ++at )
      times += at->second.seen.times;
   return times;
}

/// Both hear each other, for two hello intervals at least, and neither begins the session.
void nobodyConnects( Found & found, Evidence const & evidence, Changes const & changes,
                     LdpIdentifier const & a, LdpIdentifier const & b ) {
   auto const begins = []( Sent const & sent ) { return sent.syns || sent.inits || sent.keepAlives; };
   if ( begins( evidence.sentTo( a, b ) ) || begins( evidence.sentTo( b, a ) ) ) return;
   if ( std::min( hellosOf( evidence, a ), hellosOf( evidence, b ) ) < 3 ) return;
   std::uint64_t heardByA = 0;
   std::uint64_t heardByB = 0;
   for ( Change const * change : changes ) {
      if ( change->subject == "session" || change->to != "hears" ) continue;
      ( change->speaker == a ? heardByA : heardByB ) = change->at.frame;
   }
   if ( !heardByA || !heardByB ) return;
   Addr const ofA = transportOf( evidence, a );
   Addr const ofB = transportOf( evidence, b );
   bool const known = ofA.family() == ofB.family() && !( ofA == ofB );
   std::string const active =
        known ? textOf( ofA < ofB ? b : a ) : "the one with the higher transport address";
   found.push_back( { "nobody connects: hellos go both ways, and " + active + " sends no SYN",
                      { heardByA, heardByB },
                      "whether the capture has TCP port 646, whether " + active +
                           " accepts the peer, and its route to the peer's transport address" } );
}

void initializing( Found & found, Evidence const & evidence, LdpIdentifier const & a,
                   LdpIdentifier const & b ) {
   Sent const & there = evidence.sentTo( a, b );
   Sent const & back = evidence.sentTo( b, a );
   for ( auto const & [code, seen] : there.fatal ) {
      bool const refuses =
           back.inits && ( !back.keepAlives || code == rejectNoHello || code == rejectParamAdvMode ||
                           code == rejectMaxPduLength || code == rejectParamLabelRange ||
                           code == sessionRejectBadKeepAliveTime );
      std::string const who = textOf( a );
      if ( code == keepAliveExpired ) {
         bool const large = back.repeatedLarge && !back.repeatedSmall;
         found.push_back(
              { who + " ends the session: " + wordsOf( code ) +
                     ( large ? "; large segments of " + textOf( b ) + " were repeated while small ones passed"
                             : "" ),
                { large ? back.repeatedLarge.first : seen.first, seen.last },
                large ? "the MTU of the path, and whether ICMP about it is filtered"
                      : "why nothing of " + textOf( b ) + " came: its load, the path, the KeepAlive time" } );
      } else if ( refuses ) {
         found.push_back( { who + " refuses the Initialization of " + textOf( b ) + ": " + wordsOf( code ),
                            { back.inits.last, seen.last },
                            code == rejectNoHello
                                 ? "whether " + who + " hears hellos of " + textOf( b ) +
                                        " with the identifier and transport address that it connects with"
                                 : "the parameters that both propose" } );
      } else {
         found.push_back( { who + " ends the session: " + wordsOf( code ),
                            { seen.first, seen.last },
                            code == holdTimerExpired ? "why no hello of " + textOf( b ) +
                                                            " came: its load, the link, multicast on it"
                                                     : "the log of " + who } );
      }
   }
   if ( there.inits && there.named != b && there.named.lsrId() == b.lsrId() )
      found.push_back( { "label space: the Initialization of " + textOf( a ) + " is for " +
                              textOf( there.named ) + ", the other end is " + textOf( b ),
                         { there.inits.last },
                         "the label spaces in the hellos of both" } );
   if ( there.inits && back.inits && a < b && there.proposal.onDemand != back.proposal.onDemand )
      found.push_back( { "advertisement mode: " + textOf( there.proposal.onDemand ? a : b ) +
                              " wants labels on demand, the other unsolicited",
                         { there.inits.last, back.inits.last },
                         "the advertisement mode of both; unsolicited is used (RFC 5036, 3.5.3)" } );
   bool const refused = !there.fatal.empty() || !back.fatal.empty();
   if ( there.inits && !back.inits && !refused && !back.keepAlives )
      found.push_back( { textOf( b ) + " does not answer the Initialization of " + textOf( a ),
                         { there.inits.last },
                         "whether the capture has both directions" } );
   for ( auto const & [reason, seen] : there.refused )
      found.push_back( { std::to_string( seen.times ) + " message(s) of " + textOf( a ) +
                              " that no receiver takes: " + reason,
                         { seen.first, seen.last },
                         "decode --bad" } );
   for ( auto const & [code, seen] : there.others ) {
      if ( code == pwStatus || code == labelResourcesAvailable ) continue;
      found.push_back( { textOf( a ) + " refuses " + std::to_string( seen.times ) + " message(s) of " +
                              textOf( b ) + ": " + wordsOf( code ),
                         { seen.first, seen.last },
                         "decode --filter Notification" } );
   }
}

} // namespace

std::vector< Finding > findingsOf( Evidence const & evidence, LdpIdentifier const & speaker ) {
   Found found;
   std::vector< std::pair< Addr, HelloSource const * > > sources;
   for ( auto at = evidence.hellos().lower_bound( { speaker, Addr() } );
         at != evidence.hellos().end() && at->first.first == speaker; ++at )
      sources.emplace_back( at->first.second, &at->second );
   bool differs = false;
   for ( auto const & [address, source] : sources ) {
      std::string const from = textOf( speaker ) + " from " + textOf( address );
      U16 const standard = source->link ? 15 : 45; // RFC 5036, 3.5.2
      U16 const hold = source->holdTime ? source->holdTime : standard;
      if ( source->shortest >= hold )
         found.push_back( { "hold time too short: hellos of " + from + " come every " +
                                 std::to_string( std::int64_t( source->shortest ) ) + " s and hold for " +
                                 std::to_string( hold ) + " s",
                            { source->seen.first, source->seen.last },
                            "hello interval and hold time" } );
      if ( source->link && !isLinkLocal( address ) )
         found.push_back(
              { "IPv6 hellos of " + from +
                     ", which is not link-local, as it must be (RFC 7552, 5.1): receivers may drop them",
                { source->seen.first },
                "the source address of IPv6 hellos" } );
      HelloSource const & first = *sources.front().second;
      differs = differs || ( source->transport != first.transport &&
                             source->transport.family() == first.transport.family() );
   }
   if ( !differs ) return found;
   std::set< std::uint64_t > senders;
   std::vector< std::uint64_t > frames;
   std::string list;
   for ( auto const & [address, source] : sources ) {
      if ( source->sender ) senders.insert( source->sender );
      frames.push_back( source->seen.first );
      list += ( list.empty() ? "" : ", " ) + textOf( source->transport ) + " from " + textOf( address );
   }
   bool const two = senders.size() > 1;
   found.push_back(
        { ( two ? "two routers may use the identifier " : "transport addresses differ between hellos of " ) +
               textOf( speaker ) + ": " + list,
          frames, two ? "whether the LSR id is unique" : "the transport address of each interface" } );
   return found;
}

std::vector< Finding > strangerFindings( std::string const & a, Sent const & there, std::string const & b,
                                         Sent const & back ) {
   Found found;
   using Side = std::tuple< std::string const &, Sent const &, std::string const &, Sent const & >;
   for ( auto const & [own, out, peer, in] : { Side( a, there, b, back ), Side( b, back, a, there ) } ) {
      connecting( found, own, out, peer, in );
      if ( out.targetedHellos && !in.targetedHellos )
         found.push_back(
              { "targeted hellos of " + own + " to " + peer + " have no answer",
                { out.targetedHellos.first, out.targetedHellos.last },
                "whether anybody is at " + peer + " and accepts targeted hellos, and the route" } );
      if ( out.established && !out.inits && !in.inits )
         found.push_back( { "the connection of " + own + " to " + peer +
                                 " is established, and nobody sends an Initialization",
                            { out.established.first, out.established.last },
                            "whether the two hear each other's hellos (RFC 5036, 2.5.3), and whether it is "
                            "LDP that connects" } );
   }
   return found;
}

std::vector< Finding > sessionFindings( Evidence const & evidence, Journal const & journal,
                                        Changes const & changes, LdpIdentifier const & a,
                                        LdpIdentifier const & b ) {
   Found found;
   for ( auto const & [own, peer] : { std::pair( a, b ), std::pair( b, a ) } ) {
      hellosBetween( found, evidence, own, peer );
      connecting( found, textOf( own ), evidence.sentTo( own, peer ), textOf( peer ),
                  evidence.sentTo( peer, own ) );
      roleClash( found, evidence, own, peer );
      initializing( found, evidence, own, peer );
      Journal::Released const released = journal.released( own, peer );
      std::string const more =
           released.times > 1 ? " and " + std::to_string( released.times - 1 ) + " more" : "";
      if ( released.times )
         found.push_back( { textOf( own ) + " to " + textOf( peer ) +
                                 ": released and never withdrawn: " + released.fec + more,
                            { released.first },
                            "the label retention mode of " + textOf( peer ) } );
   }
   nobodyConnects( found, evidence, changes, a, b );
   if ( journal.oneSided( a, b ) )
      found.push_back( { "the capture has only one side of the session", {}, "where it was taken" } );
   return found;
}

} // namespace LdpTool
