#pragma once

// What the monitor knows, as numbers in the text format of Prometheus (version 0.0.4).

#include "capture/Capture.h"
#include "monitor/Monitor.h"
#include "text/Output.h"

#include <optional>

namespace LdpTool {

/// Which bindings are told one by one: none, all, or those within a prefix.
struct BindingsToTell {
   bool any = false;
   std::optional< Lumo::IpGenPrefix > within;
};

/// All metrics, of all speakers or of what that one has with its peers and they with it.
void writeMetrics( Output & out, Network const & network, Monitor & monitor, CaptureCounters const & capture,
                   std::optional< Ldp::LdpIdentifier > const & about, BindingsToTell const & bindings );

} // namespace LdpTool
