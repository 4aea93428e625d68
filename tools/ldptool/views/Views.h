#pragma once

// The tables that an operator knows from a router, of every speaker in the network. They read the model
// alone.

#include "text/JsonWriter.h"
#include "views/Rows.h"

#include <optional>

namespace LdpTool {

/// The neighbours: adjacencies with what is left of their hold times at the journal's time, and sessions.
void printNeighbors( Output & out, Network const & network, Journal const & journal );

/// What has changed between speakers, in order; of all, or of those pairs that the identifier is one of.
void printHistory( Output & out, Journal const & journal, std::optional< Ldp::LdpIdentifier > const & about );

/// The label bindings of each FEC, of all or of those within a prefix.
void printBindings( Output & out, Network const & network,
                    std::optional< Lumo::IpGenPrefix > const & within );

/// The pseudowires, both directions of each in a row.
void printPseudowires( Output & out, Network const & network );

/// The same as JSON, an array of rows each.
void writeNeighbors( JsonWriter & json, Network const & network, Journal const & journal );
void writeHistory( JsonWriter & json, Journal const & journal,
                   std::optional< Ldp::LdpIdentifier > const & about );
void writeBindings( JsonWriter & json, Network const & network,
                    std::optional< Lumo::IpGenPrefix > const & within );
void writePseudowires( JsonWriter & json, Network const & network );

/// Speakers, adjacencies and sessions as a graph for Graphviz.
void printDot( Output & out, Network const & network );

} // namespace LdpTool
