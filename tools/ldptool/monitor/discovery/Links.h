#pragma once

// Which speakers share a link. A capture may name the interface or the VLAN of a packet, and then that is the
// link. Else it may hold several links put together, and what tells them apart is that a router has one
// address on each: no two addresses of one router are of one subnet.

#include "capture/Flow.h"
#include "monitor/discovery/Subnets.h"

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

   /// When the speaker counts as gone from the link; 0 for never.
   double until() const;
};

/// A subnet within which all may hear all. If it has more than two addresses and each has the partner with
/// which it would fill a /31, or each the one of a /30, then it is many links of two.
struct Crowd {
   std::size_t ports = 0;
   std::set< Addr > addresses;
   std::size_t paired[2] = {}; ///< of them, by /31 and by /30

   /// In which of the two ways all are paired; -1 for neither.
   int pairing() const {
      if ( addresses.size() <= 2 ) return -1;
      return paired[0] == addresses.size() ? 0 : paired[1] == addresses.size() ? 1 : -1;
   }
};

/// What tells the links apart that a place without a name of its own holds.
struct LinkClues {
   using Interface = std::pair< Ldp::LdpIdentifier, std::uint64_t >; ///< by its link-layer address

   std::set< std::pair< U32, Addr > > addresses; ///< of each router, by its number
   DividedSubnets ipv4;
   DividedSubnets ipv6;
   /// Link-local addresses are of one prefix on every link, which a router with two of them shows. Then the
   /// IPv4 address of the same interface tells which link it is.
   bool localsDivided = false;
   std::map< Interface, Addr > standIns;
   std::map< Interface, std::set< Addr > > locals;
   std::map< Addr, Crowd > crowds;
};

class Links {
 public:
   /// All ports that one place of the capture holds.
   struct Domain {
      bool named = false; ///< the capture itself tells this link from others
      std::string name;
      std::map< std::pair< Addr, Ldp::LdpIdentifier >, Port > ports; ///< families apart, neighbours together
      LinkClues clues;                                               ///< of one without a name
   };

   explicit Links( MonitorLimits const & limits ) : limits_( limits ) {}

   /// What that place of the capture holds; null for one too many.
   Domain * domain( Place const & place );

   using Call = std::function< void( Port & ) >;

   /// The port of that speaker, a new one if there is none; null for one too many. Calls `onMoved` with each
   /// port that may share a link with fewer others than before.
   Port * portIs( Domain & domain, Agent & agent, Addr const & source, std::uint64_t sender, double now,
                  Call const & onMoved, bool & isNew );

   /// Whether one hears the other.
   static bool together( Domain const & domain, Port const & a, Port const & b );

   /// Those that may hear that port: all others of its family on a link with a name; else its neighbours by
   /// address and those that it has a session with. No more than a link may have.
   void eachOther( Domain & domain, Port const & port, Call const & call ) const;

 private:
   static void note( Domain & domain, Port const & port, Call const & onMoved );
   bool hasRoom( Domain & domain, U32 router, Addr const & source, double now );

   MonitorLimits const & limits_;
   std::map< std::pair< std::string const *, std::uint64_t >, Domain > domains_;
   std::size_t portNum_ = 0;
   double cleanedAt_ = 0;
};

} // namespace LdpTool
