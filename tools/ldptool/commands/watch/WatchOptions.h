#pragma once

// What `ldptool watch` was asked for.

#include "commands/InputOptions.h"
#include "standards/Metrics.h"

#include <optional>

namespace LdpTool {

struct WatchOptions {
   InputOptions input;
   bool json = false;
   bool tree = false;
   bool neighbors = false;
   std::optional< std::string > bindings; // a prefix, or "all"
   bool pseudowires = false;
   std::optional< std::string > history; // a peer, or "all"
   bool dot = false;
   bool yang = false;
   bool metrics = false;
   std::string listen; // where metrics are served; empty for nowhere
   bool follow = false;
   bool replicate = false;
   bool check = false;
   std::string publish; // a socket's path
   std::string log;     // a file

   bool anyView() const {
      return tree || neighbors || bindings || pseudowires || history || dot || yang || metrics || follow ||
             check;
   }
   /// Whether it is there for other processes, and nothing is to be printed.
   bool silent() const { return ( !publish.empty() || !log.empty() ) && !anyView() && !json; }
};

/// Prefixes and speakers that the options limit views to; none for all. What cannot be read is a wrong
/// command line.
std::optional< Lumo::IpGenPrefix > bindingsWithin( WatchOptions const & options );
std::optional< Ldp::LdpIdentifier > historyOf( WatchOptions const & options );
BindingsToTell bindingsToTell( WatchOptions const & options );

} // namespace LdpTool
