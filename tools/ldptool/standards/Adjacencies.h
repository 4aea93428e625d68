#pragma once

// Adjacencies with what the model of one speaker alone does not have: its own address on each, which those
// know that hear it.

#include "views/Rows.h"

#include <optional>
#include <string>
#include <vector>

namespace LdpTool {

struct AdjacencyFacts {
   Ldp::LdpAdjId id;
   Ldp::LdpAdjStatus const * status;
   std::string interface; ///< of a link adjacency
   Lumo::IpGenAddr remote;
   std::optional< Lumo::IpGenAddr > local; ///< none where nothing shows it

   bool targeted() const { return id.adjType() != Ldp::LdpLinkAdj; }
   Lumo::AddressFamily family() const { return remote.family(); }
};

/// What a speaker has, of which the network has the rest; null for one that is not there.
Ldp::Status const * statusOf( Network const & network, Ldp::LdpIdentifier const & speaker );

/// All of the speaker, in order: links first.
std::vector< AdjacencyFacts > adjacenciesOf( Network const & network, Ldp::LdpIdentifier const & speaker,
                                             Ldp::Status const & status );

/// A link as its interface is called: both families of an interface that the capture names are links of their
/// own in the model.
std::string interfaceOf( Lumo::IntfId const & link );
/// The family of the hellos that the speaker sends on the link.
Lumo::AddressFamily familyOf( Ldp::Status const & status, Lumo::IntfId const & link );

/// The transport address of that family, from what the speaker and its neighbours have; none where nothing
/// shows it.
std::optional< Lumo::IpGenAddr > transportOf( Network const & network, Ldp::LdpIdentifier const & speaker,
                                              Ldp::Status const & status, Lumo::AddressFamily family );

} // namespace LdpTool
