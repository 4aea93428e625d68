// The network as a graph for Graphviz: a node for each speaker, dashed edges for adjacencies, solid ones for
// sessions.

#include "monitor/speaker/Agent.h"
#include "views/Views.h"

#include <set>

namespace LdpTool {

using namespace Ldp;

namespace {

/// Two speakers, the smaller first.
using Pair = std::pair< LdpIdentifier, LdpIdentifier >;
Pair pairOf( LdpIdentifier const & a, LdpIdentifier const & b ) {
   return a < b ? Pair( a, b ) : Pair( b, a );
}

/// What the two ends of an edge say, either of which may not be there.
struct Edge {
   std::string first;
   std::string second;
   std::string & end( Pair const & pair, LdpIdentifier const & speaker ) {
      return speaker == pair.first ? first : second;
   }
};

std::string quoted( std::string const & text ) {
   std::string out = "\"";
   for ( char const c : text ) {
      if ( c == '"' || c == '\\' ) out += '\\';
      out += c;
   }
   return out + '"';
}

/// The link, as either end calls it. Where nothing names it, each calls it by its own address.
std::string linkText( LdpAdjStatus const & adj ) {
   std::string own = textOf( adj.ldpAdjId().intfId() );
   std::string peer = textOf( adj.peerSrcIpAddr() );
   bool const named = own.find_first_not_of( "0123456789abcdef.:" ) != own.npos;
   if ( named ) return own;
   if ( peer < own ) std::swap( own, peer );
   return own + " " + peer;
}

void printEdge( Output & out, Pair const & pair, std::string const & attributes ) {
   out << "   " << quoted( textOf( pair.first ) ) << " -- " << quoted( textOf( pair.second ) ) << " ["
       << attributes << "];\n";
}

} // namespace

void printDot( Output & out, Network const & network ) {
   std::set< LdpIdentifier > nodes;
   std::map< std::pair< Pair, std::string >, Edge > adjacencies; // by link, too
   std::map< Pair, Edge > sessions;
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      nodes.insert( speaker );
      for ( auto & adj : status.ldpAdjStatusColl()->adjStatusColl() ) {
         LdpAdjId const & id = adj.ldpAdjId();
         Pair const pair = pairOf( speaker, id.ldpIdentifier() );
         std::string const link = id.adjType() == LdpLinkAdj ? linkText( adj ) : "targeted";
         adjacencies[{ pair, link }].end( pair, speaker ) = "hears";
      }
      for ( auto & session : status.ldpSessionStatusColl()->sessionStatusColl() ) {
         Pair const pair = pairOf( speaker, session.ldpSessionId().peerLdpId() );
         sessions[pair].end( pair, speaker ) = stateName( session.sessionState() );
      }
   } );
   out << "graph ldp {\n   node [shape=box];\n";
   for ( LdpIdentifier const & node : nodes )
      out << "   " << quoted( textOf( node ) ) << ";\n";
   for ( auto const & [where, edge] : adjacencies ) {
      // An arrow where only one of the two hears the other points to it.
      char const * const dir = edge.second.empty() ? ", dir=back" : edge.first.empty() ? ", dir=forward" : "";
      printEdge( out, where.first, "style=dashed, label=" + quoted( where.second ) + dir );
   }
   for ( auto const & [pair, edge] : sessions ) {
      bool const up = edge.first == "Operational" && edge.second == "Operational";
      std::string const label = edge.first == edge.second ? edge.first : edge.first + " / " + edge.second;
      printEdge( out, pair,
                 std::string( "penwidth=2, color=" ) + ( up ? "darkgreen" : "red" ) +
                      ", label=" + quoted( label ) );
   }
   out << "}\n";
}

} // namespace LdpTool
