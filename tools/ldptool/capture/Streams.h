#pragma once

// Puts TCP conversations together. A segment that continues its conversation goes straight to the framer, out
// of the capture's own buffer. Segments out of order wait in the data tracker of libtins, which knows about
// overlaps and wrapping sequence numbers.
//
// libtins' own StreamFollower is not used: it copies every segment into objects of its own, a segment that
// the capture lost stops a conversation until the follower's buffer is full and then ends it for good, and a
// new connection between the same ports is taken for the old one.

#include "capture/Framer.h"
#include "capture/Link.h"

#include <tins/tcp_ip/data_tracker.h>

#include <list>
#include <memory>
#include <unordered_map>
#include <vector>

namespace LdpTool {

class Streams {
 public:
   /// `mostDirections` are kept at a time.
   Streams( PduSink & sink, std::size_t mostDirections ) : sink_( sink ), mostDirections_( mostDirections ) {}

   void take( Segment const & segment, Arrival const & arrival );

   /// The capture is over: deliver what waits behind holes and tell what is left.
   void finish();

   /// Octets that came more than once.
   std::uint64_t repeatedOctets() const { return repeatedOctets_; }
   /// Segments that belong to no connection that is under way: resets outside of the window, octets far from
   /// where the conversation is.
   std::uint64_t straySegments() const { return straySegments_; }
   /// Directions given up because there were too many.
   std::uint64_t forgotten() const { return forgotten_; }

 private:
   /// The octets [begin, end) of a conversation, and the packet that brought them.
   struct Piece {
      std::uint32_t begin;
      std::uint32_t end;
      Arrival arrival;
   };

   /// What waits behind a hole.
   struct Waiting {
      Waiting( std::uint32_t next, Arrival const & arrival ) : tracker( next ), since( arrival ) {}
      Tins::TCPIP::DataTracker tracker;
      std::vector< Piece > pieces; ///< in order of arrival
      Arrival since;               ///< when the hole was seen
   };

   /// A segment far from where its conversation is: a stray one, or the first that the capture has of another
   /// connection between the same ports.
   struct Far {
      std::uint32_t begin;
      std::vector< std::uint8_t > payload;
      Arrival arrival;
      std::uint32_t end() const { return begin + std::uint32_t( payload.size() ); }
   };

   /// One direction of a conversation.
   struct Direction {
      Direction( Flow const & f, std::uint32_t n, bool syn )
           : flow( f ), first( n ), next( n ), acknowledged( n ), begun( syn ), framer( syn ) {}
      Flow flow;
      std::uint32_t first;        ///< where the connection, or what the capture has of it, began
      std::uint32_t next;         ///< sequence number of the first octet that was not delivered
      std::uint32_t acknowledged; ///< what the other side has
      std::uint32_t acking = 0;   ///< what it acknowledges of the other direction,
      bool acks = false;          ///< if it ever did
      bool begun;                 ///< its SYN was seen
      bool established = false;   ///< and answered, and the answer taken
      Direction * back = nullptr; ///< null while the other direction is not known
      Arrival last;
      Framer framer;
      std::unique_ptr< Waiting > waiting; ///< null while there is no hole
      std::unique_ptr< Far > far;         ///< null while there is none in doubt
   };
   using Directions = std::list< Direction >;

   Direction * direction( Segment const & segment, Arrival const & arrival );
   Direction & added( Segment const & segment, Arrival const & arrival );
   bool answers( Segment const & segment ) const;
   bool inDoubt( Direction & direction, Segment const & segment, Arrival const & arrival );
   void restart( Direction & direction, std::uint32_t sequence, bool syn );
   bool accepted( Direction const & direction, Segment const & segment ) const;
   void tellStep( Direction & direction, Segment const & segment );
   void acknowledge( Direction & direction, Segment const & segment, Arrival const & arrival );
   void takePayload( Direction & direction, std::uint32_t sequence, Segment const & segment );
   void wait( Direction & direction, std::uint32_t sequence, Octets payload );
   bool holeIsLost( Direction const & direction ) const;
   void passHole( Direction & direction );
   void deliverWaiting( Direction & direction );
   void close( Direction & direction );
   void forgetOldest();

   PduSink & sink_;
   Directions directions_; ///< the one that has been silent for longest stands first
   std::unordered_map< Flow, Directions::iterator, FlowHash > byFlow_;
   std::size_t waitingDirections_ = 0;
   std::size_t mostDirections_;
   std::uint64_t repeatedOctets_ = 0;
   std::uint64_t straySegments_ = 0;
   std::uint64_t forgotten_ = 0;
};

} // namespace LdpTool
