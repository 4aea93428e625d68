#pragma once

// The tables that an operator knows from a router, of every speaker in the network. They read the model
// alone.

#include "monitor/Monitor.h"
#include "text/JsonWriter.h"
#include "views/Rows.h"

#include <optional>

namespace LdpTool {

/// The speaker that rows are limited to: it is the one that has them, or the peer.
using About = std::optional< Ldp::LdpIdentifier >;

/// How many there are of what, in a line.
void printSummary( Output & out, Network const & network, Journal const & journal );

/// The neighbours: adjacencies with what is left of their hold times at the journal's time, and sessions.
void printNeighbors( Output & out, Network const & network, Journal const & journal, About const & about );

/// What has changed between speakers, in order.
void printHistory( Output & out, Journal const & journal, About const & about );

/// The label bindings of each FEC, of all or of those within a prefix.
void printBindings( Output & out, Network const & network, Monitor & monitor,
                    std::optional< Lumo::IpGenPrefix > const & within, About const & about );

/// The pseudowires, both directions of each in a row.
void printPseudowires( Output & out, Network const & network, About const & about );

/// The same as JSON, an array of rows each.
void writeNeighbors( JsonWriter & json, Network const & network, Journal const & journal,
                     About const & about );
void writeHistory( JsonWriter & json, Journal const & journal, About const & about );
void writeBindings( JsonWriter & json, Network const & network,
                    std::optional< Lumo::IpGenPrefix > const & within, About const & about );
void writePseudowires( JsonWriter & json, Network const & network, About const & about );

/// Whether rows of the speaker about the peer are wanted.
inline bool isAbout( About const & about, Ldp::LdpIdentifier const & speaker,
                     Ldp::LdpIdentifier const & peer ) {
   return !about || speaker == *about || peer == *about;
}

/// Whether an entity of the network is wanted in its tree.
inline bool isAbout( About const & about, Vorn::Entity const & entity ) {
   auto const * const speaker = dynamic_cast< Speaker const * >( &entity );
   return !about || !speaker || speaker->ldpIdentifier() == *about;
}

/// Speakers, adjacencies and sessions as a graph for Graphviz.
void printDot( Output & out, Network const & network );

} // namespace LdpTool
