// The tables that an operator knows from a router.
#include "views/Views.h"

#include "text/Table.h"
#include "text/Words.h"

#include <algorithm>
#include <cmath>

namespace LdpTool {

using namespace Ldp;

namespace {

/// hh:mm:ss, behind the days if there are any.
std::string durationText( double seconds ) {
   constexpr std::int64_t secondsOfDay = 86400;
   auto const whole = std::int64_t( std::max( seconds, 0.0 ) );
   char text[48];
   std::snprintf( text, sizeof text, "%02d:%02d:%02d", int( whole % secondsOfDay / 3600 ),
                  int( whole / 60 % 60 ), int( whole % 60 ) );
   std::string const days = whole < secondsOfDay ? "" : std::to_string( whole / secondsOfDay ) + "d ";
   return days + text;
}

/// Labels with commas between them.
std::string labelsText( std::set< U32 > const & labels ) {
   std::string text;
   for ( U32 label : labels )
      text.append( text.empty() ? "" : "," ).append( labelText( label ) );
   return text.empty() ? "-" : text;
}

std::string yes( bool is, char const * otherwise = "no" ) { return is ? "yes" : otherwise; }

/// What two ends say, once if they say the same.
std::string both( std::string const & local, std::string const & remote ) {
   return local == remote ? local : local + "/" + remote;
}

/// `empty` says what it means that the table has no rows.
void printTable( Output & out, LdpIdentifier const & speaker, Table const & table, char const * empty ) {
   out << "speaker " << textOf( speaker ) << '\n';
   if ( table.empty() ) {
      out << "  " << empty << '\n';
   } else {
      table.print( out, 2 );
   }
}

void tellIfNobody( Output & out, Network const & network ) {
   if ( network.speakers() == 0 ) out << "no speaker: no good hello or session message was seen\n";
}

void addNeighbor( Table & table, NeighborRow const & neighbor, Journal const & journal ) {
   Colour const colour = neighbor.session == "Operational" ? Colour::plain : Colour::bad;
   Table::Row row{ textOf( neighbor.peer ), "-", "-", "-", "-", "-", "-", "-" };
   if ( !neighbor.session.empty() )
      row[4] = neighbor.session + ( neighbor.oneSided ? ", one side seen" : "" );
   if ( neighbor.since ) row[5] = durationText( journal.now() - *neighbor.since );
   if ( neighbor.role ) row[6] = neighbor.role;
   if ( neighbor.lastDown ) row[7] = secondText( neighbor.lastDown->at ) + " " + neighbor.lastDown->cause;
   for ( AdjacencyRow const & adj : neighbor.adjacencies ) {
      row[1] = ( adj.targeted ? "target " : "" ) + adj.link;
      row[2] = textOf( adj.helloFrom );
      row[3] =
           adj.holdLeft ? std::to_string( std::int64_t( std::ceil( *adj.holdLeft ) ) ) + " s" : "infinite";
      table.add( row, colour );
      row.assign( row.size(), "" );
   }
   if ( neighbor.adjacencies.empty() ) table.add( row, colour );
}

} // namespace

void printSummary( Output & out, Network const & network, Journal const & journal ) {
   std::size_t adjacencies = 0, fecs = 0, pseudowires = 0;
   std::map< std::pair< LdpIdentifier, LdpIdentifier >, bool > sessions; // whether it is up
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      adjacencies += status.ldpAdjStatusColl()->adjStatusColl().members();
      fecs += status.ldpFecConfigColl()->fecConfigs();
      pseudowires += pseudowiresOf( status ).size();
      for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() ) {
         LdpIdentifier const peer = session.ldpSessionId().peerLdpId();
         bool & up = sessions[speaker < peer ? std::pair( speaker, peer ) : std::pair( peer, speaker )];
         up = up || session.sessionState() == stateOperational;
      }
   } );
   auto const up = std::size_t( std::count_if( sessions.begin(), sessions.end(),
                                               []( auto const & session ) { return session.second; } ) );
   out << network.speakers() << " speakers; sessions: " << up << " operational, " << sessions.size() - up
       << " not; " << adjacencies << " adjacencies, " << fecs << " FECs, " << pseudowires
       << " ends of pseudowires; at frame " << journal.arrival().frame << ", "
       << timeText( journal.arrival() ) << '\n';
}

void printNeighbors( Output & out, Network const & network, Journal const & journal, About const & about ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      Table table(
           { "peer", "adjacency", "hello from", "hold left", "session", "since", "role", "last down" } );
      for ( NeighborRow const & neighbor : neighborsOf( status, speaker, journal ) )
         if ( isAbout( about, speaker, neighbor.peer ) ) addNeighbor( table, neighbor, journal );
      if ( !table.empty() || isAbout( about, speaker, speaker ) )
         printTable( out, speaker, table,
                     "no neighbour: nobody else was heard on its links, and it has no session" );
   } );
}

void printHistory( Output & out, Journal const & journal, About const & about ) {
   Table table( { "time", "frame", "speaker", "peer", "what", "from", "to", "cause" } );
   for ( Change const & change : journal.changes() ) {
      if ( !isAbout( about, change.speaker, change.peer ) ) continue;
      table.add( { timeText( change.at ), std::to_string( change.at.frame ), textOf( change.speaker ),
                   textOf( change.peer ), change.subject, change.from, change.to, change.cause } );
   }
   if ( table.empty() ) {
      out << "no changes: no adjacency and no session came or went\n";
   } else {
      table.print( out, 0 );
   }
}

void printBindings( Output & out, Network const & network, Monitor & monitor,
                    std::optional< Lumo::IpGenPrefix > const & within, About const & about ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      Table table( { "FEC", "local", "peer", "advertised", "its label", "in use" } );
      std::string fec;
      std::vector< BindingRow > bindings;
      monitor.show( speaker, [&] { bindings = bindingsOf( status, within ); } );
      for ( BindingRow const & row : bindings ) {
         if ( !isAbout( about, speaker, row.peer ) ) continue;
         bool const same = fec == row.fec;
         table.add( { same ? "" : row.fec, same ? "" : labelsText( row.local ), textOf( row.peer ),
                      yes( row.advertised ), labelsText( row.remote ), yes( row.inUse, "-" ) } );
         fec = row.fec;
      }
      if ( !table.empty() || isAbout( about, speaker, speaker ) )
         printTable( out, speaker, table,
                     within ? "no label bindings within the prefix"
                            : "no label bindings: no label was mapped on a session that is up" );
   } );
}

void printPseudowires( Output & out, Network const & network, About const & about ) {
   tellIfNobody( out, network );
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      Table table( { "peer", "PW ID", "type", "local", "remote", "C bit", "MTU", "status" } );
      auto const label = []( auto const & end ) { return end ? labelText( end->label ) : "-"; };
      auto const cBit = []( auto const & end ) { return end ? yes( end->controlWord ) : "-"; };
      auto const mtu = []( auto const & end ) { return end && end->mtu ? std::to_string( end->mtu ) : "-"; };
      for ( PseudowireRow const & row : pseudowiresOf( status ) )
         if ( isAbout( about, speaker, row.peer ) )
            table.add( { textOf( row.peer ), std::to_string( row.pwId ),
                         std::string( valueToStrep( row.type ).view() ), label( row.local ),
                         label( row.remote ), both( cBit( row.local ), cBit( row.remote ) ),
                         both( mtu( row.local ), mtu( row.remote ) ), row.status() },
                       row.status() == "up" ? Colour::plain : Colour::bad );
      if ( !table.empty() || isAbout( about, speaker, speaker ) )
         printTable( out, speaker, table, "no pseudowires" );
   } );
}

} // namespace LdpTool
