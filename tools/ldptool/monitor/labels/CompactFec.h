#pragma once

// The state of a FEC on a session in few octets: a million of them, each as the model's object with its
// collections, would take half a gigabyte and more. Who shows the model's objects has them made from this.

#include "monitor/speaker/Agent.h"

namespace LdpTool::PrefixLabels {

/// All that the monitor writes into such an object but the numbers of messages.
CompactFec compact( Ldp::LdpFecSessionStatus const & state );
/// Writes it into a new object.
void expand( CompactFec const & compact, Ldp::LdpFecSessionStatus & state );

/// Whether the speaker has sent, or has got, that label and no other of the FEC, and it is in force.
bool hasSentOnly( CompactFec const & compact, Lumo::MplsLabel label );
bool hasGotOnly( CompactFec const & compact, Lumo::MplsLabel label );

/// Makes the model's objects of the session, until they are hidden again. Nothing is to change meanwhile.
void show( SessionEnd & end );
void hide( SessionEnd & end );

} // namespace LdpTool::PrefixLabels
