#pragma once

// What the tables show, row by row and typed: for tables, JSON and the report. They read the model alone.

#include "monitor/speaker/Journal.h"
#include "monitor/speaker/Network.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace LdpTool {

struct AdjacencyRow {
   bool targeted = false;
   std::string link;                 ///< interface, or the target's address
   Lumo::IpGenAddr helloFrom;        ///< source of the peer's hellos
   std::optional< double > holdLeft; ///< seconds; none for an infinite hold time
};

/// What a speaker has with a peer.
struct NeighborRow {
   Ldp::LdpIdentifier peer;
   std::vector< AdjacencyRow > adjacencies;
   std::string session;           ///< name of its state; empty without one
   bool oneSided = false;         ///< the capture has only what one of the two says
   std::optional< double > since; ///< when the session's state has changed, in seconds since the epoch
   char const * role = nullptr;   ///< "active" or "passive"; null where nobody knows
   std::optional< Journal::Down > lastDown;
};

/// A FEC's labels between a speaker and a peer.
struct BindingRow {
   std::string fec;
   std::optional< Lumo::IpGenAddr > root; ///< of a P2MP FEC, with
   std::string opaque;                    ///< its opaque value
   std::set< U32 > local;                 ///< the speaker's labels
   Ldp::LdpIdentifier peer;
   bool advertised = false;
   std::set< U32 > sent;   ///< those of the speaker's labels that this peer was told; of prefixes alone
   std::set< U32 > remote; ///< the peer's labels
   bool inUse = false;
};

/// What one end of a pseudowire signals.
struct PseudowireEnd {
   U32 label;
   bool controlWord;
   U32 mtu; ///< 0 for none
   U32 statusFlags;
};

struct PseudowireRow {
   Ldp::LdpIdentifier peer;
   U32 pwId;
   Pseudowire::PseudowireType type;
   std::optional< PseudowireEnd > local;
   std::optional< PseudowireEnd > remote;
   /// Whether it can carry traffic, and else the first thing that keeps it from it.
   std::string status() const;
};

std::vector< NeighborRow > neighborsOf( Ldp::Status const & status, Ldp::LdpIdentifier const & speaker,
                                        Journal const & journal );
/// The FECs that are prefixes, of all or of those within a prefix, in order.
std::vector< Mpls::FwdEqvClass > prefixesOf( Ldp::Status const & status,
                                             std::optional< Lumo::IpGenPrefix > const & within );
/// A row for each peer of a FEC that is a prefix.
std::vector< BindingRow > bindingsOfFec( Ldp::Status const & status, Mpls::FwdEqvClass const & fec );
/// Of all FECs, or of those within a prefix.
std::vector< BindingRow > bindingsOf( Ldp::Status const & status,
                                      std::optional< Lumo::IpGenPrefix > const & within );
/// Those whose mapping is in force in one direction at least.
std::vector< PseudowireRow > pseudowiresOf( Ldp::Status const & status );

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

/// A label as routers print it.
std::string labelText( U32 label );

} // namespace LdpTool
