#pragma once

// Label messages, element by element of their FEC TLV.

#include "monitor/speaker/Agent.h"

namespace LdpTool {

/// A good Label Mapping, Request, Withdraw, Release or Abort Request.
void onLabelMessage( Exchange const & exchange );

} // namespace LdpTool
