// The rows of the tables as JSON.
#include "text/Words.h"
#include "views/Views.h"

namespace LdpTool {

using namespace Ldp;

namespace {

void writeId( JsonWriter & json, char const * name, LdpIdentifier const & id ) {
   json.member( name, id.stringValue() );
}

void writeOr( JsonWriter & json, char const * name, char const * text ) {
   json.key( name );
   text ? json.value( text ) : json.null();
}

void writeOr( JsonWriter & json, char const * name, std::optional< double > const & number ) {
   json.key( name );
   number ? json.value( *number ) : json.null();
}

void writeArrival( JsonWriter & json, Arrival const & at ) {
   json.key( "time" );
   json.time( at.seconds, at.nanoseconds );
   json.member( "frame", at.frame );
}

void writeLabels( JsonWriter & json, char const * name, std::set< U32 > const & labels ) {
   json.key( name );
   json.array();
   for ( U32 label : labels )
      json.value( label );
   json.endArray();
}

void writeNeighbor( JsonWriter & json, NeighborRow const & row ) {
   writeId( json, "peer", row.peer );
   json.key( "adjacencies" );
   json.array();
   for ( AdjacencyRow const & adj : row.adjacencies ) {
      json.object();
      json.member( adj.targeted ? "target" : "link", adj.link );
      json.member( "helloFrom", adj.helloFrom );
      writeOr( json, "holdLeft", adj.holdLeft );
      json.endObject();
   }
   json.endArray();
   writeOr( json, "session", row.session.empty() ? nullptr : row.session.c_str() );
   json.member( "oneSided", row.oneSided );
   writeOr( json, "since", row.since );
   writeOr( json, "role", row.role );
   json.key( "lastDown" );
   if ( !row.lastDown ) return json.null();
   json.object();
   writeArrival( json, row.lastDown->at );
   json.member( "cause", row.lastDown->cause );
   json.endObject();
}

void writeBinding( JsonWriter & json, BindingRow const & row ) {
   if ( row.root ) {
      json.member( "root", *row.root );
      json.member( "opaque", row.opaque );
   } else {
      json.member( "prefix", row.fec );
   }
   writeLabels( json, "local", row.local );
   writeId( json, "peer", row.peer );
   json.member( "advertised", row.advertised );
   writeLabels( json, "remote", row.remote );
   json.member( "inUse", row.inUse );
}

void writeEnd( JsonWriter & json, char const * name, std::optional< PseudowireEnd > const & end ) {
   json.key( name );
   if ( !end ) return json.null();
   json.object();
   json.member( "label", end->label );
   json.member( "controlWord", end->controlWord );
   if ( end->mtu ) json.member( "mtu", end->mtu );
   json.member( "pwStatus", end->statusFlags );
   json.endObject();
}

void writePseudowire( JsonWriter & json, PseudowireRow const & row ) {
   writeId( json, "peer", row.peer );
   json.member( "pwId", row.pwId );
   json.member( "type", row.type );
   writeEnd( json, "local", row.local );
   writeEnd( json, "remote", row.remote );
   json.member( "status", row.status() );
}

/// Of each speaker what `rows` gives, each by `write`.
template< class Rows, class Write >
void writeRows( JsonWriter & json, Network const & network, About const & about, Rows const & rows,
                Write const & write ) {
   json.array();
   eachVrf( network, [&]( LdpIdentifier const & speaker, Status const & status ) {
      for ( auto const & row : rows( speaker, status ) ) {
         if ( !isAbout( about, speaker, row.peer ) ) continue;
         json.object();
         writeId( json, "speaker", speaker );
         write( json, row );
         json.endObject();
      }
   } );
   json.endArray();
}

} // namespace

void writeNeighbors( JsonWriter & json, Network const & network, Journal const & journal,
                     About const & about ) {
   auto const rows = [&]( LdpIdentifier const & speaker, Status const & status ) {
      return neighborsOf( status, speaker, journal );
   };
   writeRows( json, network, about, rows, writeNeighbor );
}

void writeBindings( JsonWriter & json, Network const & network,
                    std::optional< Lumo::IpGenPrefix > const & within, About const & about ) {
   auto const rows = [&]( LdpIdentifier const &, Status const & status ) {
      return bindingsOf( status, within );
   };
   writeRows( json, network, about, rows, writeBinding );
}

void writePseudowires( JsonWriter & json, Network const & network, About const & about ) {
   auto const rows = []( LdpIdentifier const &, Status const & status ) { return pseudowiresOf( status ); };
   writeRows( json, network, about, rows, writePseudowire );
}

void writeHistory( JsonWriter & json, Journal const & journal, About const & about ) {
   json.array();
   for ( Change const & change : journal.changes() ) {
      if ( !isAbout( about, change.speaker, change.peer ) ) continue;
      json.object();
      writeArrival( json, change.at );
      writeId( json, "speaker", change.speaker );
      writeId( json, "peer", change.peer );
      json.member( "what", change.subject );
      json.member( "from", change.from );
      json.member( "to", change.to );
      json.member( "cause", change.cause );
      json.endObject();
   }
   json.endArray();
}

} // namespace LdpTool
