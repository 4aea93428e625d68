#pragma once

// Which speakers share a link. A capture may name the interface or the VLAN of a packet, and then that is the
// link. Else it may hold several links put together, and what tells them apart is that a router has one
// address on each: no two addresses of one router are of one subnet.

#include "capture/Flow.h"
#include "monitor/speaker/Agent.h"

#include "Lumo/IntfId.h"

#include <functional>
#include <map>
#include <vector>

namespace LdpTool {

/// What a hello says.
struct HelloFacts {
   U16 holdTime = 0; ///< seconds as proposed, 0 for the default
   U32 msgId = 0;
   Addr transport;
   bool hasConfigSeq = false;
   U32 configSeq = 0;
   double at = 0; ///< when it came
};

/// A speaker on a link: one source of its hellos.
struct Port {
   Agent * agent = nullptr;
   Addr source;
   std::uint64_t sender = 0; ///< link-layer address; 0 if none is known
   Lumo::IntfId name;        ///< of the link, as this speaker calls it
   HelloFacts last;
   int group = 0;  ///< ports with one group share a link; 0 is not known
   int before = 0; ///< that until the last port came

   /// When the speaker counts as gone from the link; 0 for never.
   double until() const;
};

class Links {
 public:
   /// All ports that one place of the capture holds.
   struct Domain {
      bool named = false; ///< the capture itself tells this link from others
      std::string name;
      std::map< std::pair< Addr, Ldp::LdpIdentifier >, Port > ports; ///< families apart, neighbours together
   };

   explicit Links( MonitorLimits const & limits ) : limits_( limits ) {}

   /// What that place of the capture holds; null for one too many.
   Domain * domain( Place const & place );

   /// Told of each two ports that turn out not to share a link.
   using OnApart = std::function< void( Port &, Port & ) >;

   /// The port of that speaker, a new one if there is none; null for one too many.
   Port * portIs( Domain & domain, Agent & agent, Addr const & source, std::uint64_t sender, double now,
                  OnApart const & onApart, bool & isNew );

   /// Whether one hears the other.
   static bool together( Domain const & domain, Port const & a, Port const & b );

   /// All other ports of the family of that one.
   template< class Call >
   static void eachOther( Domain & domain, Port const & port, Call const & call ) {
      auto const family = port.source.family();
      Addr const least = family == Lumo::ipv4 ? Addr( Lumo::IpAddr() ) : Addr( Lumo::Ip6Addr() );
      for ( auto at = domain.ports.lower_bound( { least, Ldp::LdpIdentifier() } );
            at != domain.ports.end() && at->second.source.family() == family; ++at )
         if ( &at->second != &port ) call( at->second );
   }

 private:
   using Ports = std::vector< Port * >;
   static void regroup( Domain & domain, OnApart const & onApart );
   bool hasRoom( Domain & domain, double now );
   static void split( Ports::iterator begin, Ports::iterator end, int & last );

   MonitorLimits const & limits_;
   std::map< std::pair< std::string const *, std::uint64_t >, Domain > domains_;
   std::size_t portNum_ = 0;
   double cleanedAt_ = 0;
};

} // namespace LdpTool
