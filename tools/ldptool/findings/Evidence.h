#pragma once

// What a capture proves about how speakers come together, or fail to: hellos, TCP's steps, Initializations,
// KeepAlives and Notifications with the frames that they are in. It stands before the monitor, which gets all
// that it gets.

#include "monitor/Monitor.h"

#include <map>
#include <set>

namespace LdpTool {

/// Something that has happened a number of times.
struct Seen {
   std::uint64_t times = 0;
   std::uint64_t first = 0; ///< frames
   std::uint64_t last = 0;

   void at( std::uint64_t frame ) {
      if ( !times++ ) first = frame;
      last = frame;
   }
   void add( Seen const & other ) {
      if ( !other ) return;
      first = times ? std::min( first, other.first ) : other.first;
      last = std::max( last, other.last );
      times += other.times;
   }
   explicit operator bool() const { return times != 0; }
};

/// The hellos that one speaker has sent from one address.
struct HelloSource {
   Addr transport;
   std::uint64_t sender = 0; ///< link-layer address
   U16 holdTime = 0;
   bool link = false;
   Seen seen;
   double last = 0.0;
   double shortest = 0.0; ///< seconds between two of them, 0 for not two
};

/// What a speaker has sent to a peer, or about it.
struct Sent {
   Seen targetedHellos;
   Seen syns;          ///< each that is repeated too
   Seen authenticated; ///< SYNs and answers with an option of TCP MD5 or TCP-AO
   Seen synAcks;
   Seen refusals;
   Seen established; ///< it was the active end
   /// When each step was last; what follows at once is a copy, captured on another interface.
   std::map< TcpStep, double > lastStep;
   Seen inits;
   Proposal proposal;
   Ldp::LdpIdentifier named; ///< whom its Initialization was for
   Seen keepAlives;
   Seen repeatedLarge; ///< segments of octets that were sent before, large ones
   Seen repeatedSmall;
   Seen notifications;
   std::map< Ldp::LdpStatusCode, Seen > fatal;  ///< Notifications that end the session
   std::map< Ldp::LdpStatusCode, Seen > others; ///< those that do not
   std::map< std::string, Seen > refused;       ///< messages that no receiver takes, by reason
   std::map< std::string, Seen > unsupported;   ///< messages that this program does not follow

   /// What was seen before anybody knew who it is of.
   void add( Sent const & earlier );
};

class Evidence : public Reporter {
 public:
   explicit Evidence( Monitor & monitor ) : monitor_( monitor ) {}

   void onPdu( Pdu const & pdu ) override;
   void onMessage( Message const & message ) override;
   void onBadPdu( Pdu const & pdu ) override;
   void onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) override;
   void onTcpStep( Origin const & origin, TcpStep step ) override;
   void onRepeated( Origin const & origin, std::size_t octets ) override;
   void onClose( Origin const & origin ) override;

   using Pair = std::pair< Ldp::LdpIdentifier, Ldp::LdpIdentifier >;
   /// By speaker and source address.
   using HelloSources = std::map< std::pair< Ldp::LdpIdentifier, Addr >, HelloSource >;

   HelloSources const & hellos() const { return hellos_; }
   /// By speaker and peer.
   std::map< Pair, Sent > const & sent() const { return sent_; }
   /// What the speaker has sent to the peer; nothing if it has not.
   Sent const & sentTo( Ldp::LdpIdentifier const & speaker, Ldp::LdpIdentifier const & peer ) const;
   /// By source and destination, what was sent where one of the two has not shown that it speaks LDP.
   std::map< std::pair< Addr, Addr >, Sent > const & strangers() const { return strangers_; }
   /// Who is at that address; the zero identifier for nobody known.
   Ldp::LdpIdentifier at( Addr const & address ) const;

   /// The capture is at its end: what strangers sent who have shown who they are since is theirs.
   void settle();

   /// Where the speaker's connections come from and go to, by what it says itself.
   std::map< Ldp::LdpIdentifier, std::set< Addr > > const & transports() const { return transports_; }

 private:
   static constexpr std::size_t most = 65536; ///< entries of each kind

   Sent * sentOn( Origin const & origin );
   void onHello( Message const & message );
   Sent * strangerSent( Addr const & source, Addr const & destination );

   Monitor & monitor_;
   Origin origin_;
   Ldp::LdpIdentifier sender_;
   std::map< Addr, Ldp::LdpIdentifier > at_;
   HelloSources hellos_;
   std::map< Pair, Sent > sent_;
   std::map< std::pair< Addr, Addr >, Sent > strangers_;
   std::map< Ldp::LdpIdentifier, std::set< Addr > > transports_;
};

} // namespace LdpTool
