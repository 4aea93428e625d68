#pragma once

// What keeps two speakers apart, or will: each finding names its frames and where to look.

#include "findings/Evidence.h"

#include <string>
#include <vector>

namespace LdpTool {

struct Finding {
   std::string what;                    ///< a sentence
   std::vector< std::uint64_t > frames; ///< that prove it
   std::string look;                    ///< what to look at
};

/// Of the hellos of one speaker, whoever may hear them.
std::vector< Finding > findingsOf( Evidence const & evidence, Ldp::LdpIdentifier const & speaker );
/// What has changed between two, in order.
using Changes = std::vector< Change const * >;

/// Of what two send of whom one at least has not shown that it speaks LDP. Names are for the text.
std::vector< Finding > strangerFindings( std::string const & a, Sent const & there, std::string const & b,
                                         Sent const & back );
/// Of discovery, connection and session between two.
std::vector< Finding > sessionFindings( Evidence const & evidence, Journal const & journal,
                                        Changes const & changes, Ldp::LdpIdentifier const & a,
                                        Ldp::LdpIdentifier const & b );
/// Of the labels and pseudowires that the speaker has with the peer, as its state says at the end.
std::vector< Finding > labelFindings( Ldp::Status const & status, Ldp::LdpIdentifier const & speaker,
                                      Ldp::LdpIdentifier const & peer );

} // namespace LdpTool
