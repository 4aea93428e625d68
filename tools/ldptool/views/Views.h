#pragma once

// The tables that an operator knows from a router, of every speaker in the network. They read the model
// alone.

#include "monitor/Monitor.h"
#include "text/Output.h"

#include <map>
#include <optional>
#include <string>

namespace LdpTool {

/// The neighbours: adjacencies with what is left of their hold times at the journal's time, and sessions.
void printNeighbors( Output & out, Network const & network, Journal const & journal );

/// What has changed between speakers, in order; of all, or of those pairs that the identifier is one of.
void printHistory( Output & out, Journal const & journal, std::optional< Ldp::LdpIdentifier > const & about );

/// The label bindings of each FEC, of all or of those within a prefix.
void printBindings( Output & out, Network const & network, Monitor & monitor,
                    std::optional< Lumo::IpGenPrefix > const & within );

/// The pseudowires, both directions of each in a row.
void printPseudowires( Output & out, Network const & network );

/// Speakers, adjacencies and sessions as a graph for Graphviz.
void printDot( Output & out, Network const & network );

/// The state of a VRF of each speaker, by speaker.
template< class Call >
void eachVrf( Network const & network, Call const & call ) {
   std::map< Ldp::LdpIdentifier, Speaker const * > speakers;
   for ( auto & speaker : network.speakerColl() )
      speakers[speaker.ldpIdentifier()] = &speaker;
   for ( auto const & [id, speaker] : speakers )
      for ( auto & status : speaker->ldpStatusColl()->statusColl() )
         call( id, status );
}

/// A value's text as a string of the standard library.
template< class Value >
std::string textOf( Value const & value ) {
   return std::string( value.stringValue().view() );
}

} // namespace LdpTool
