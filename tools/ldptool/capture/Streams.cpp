// TCP conversations, put together.
#include "capture/Streams.h"

#include <algorithm>

namespace LdpTool {

namespace {

// Bounds on what one capture can make the tool hold. A direction holds at most a PDU and a segment beside
// what waits behind a hole; only so many directions may have holes at once.
constexpr std::size_t mostWaitingDirections = 64;
constexpr std::size_t mostWaitingOctets = 1 << 20;
constexpr std::size_t mostWaitingPieces = 1024;
constexpr std::int64_t silentSeconds = 600; // several keep alive times, as they are in use

// A hole whose octets the other side has acknowledged is the capture's own loss. It gets this much grace,
// since a capture of several interfaces may show the acknowledgement before the data.
constexpr std::int64_t graceSeconds = 1;
constexpr std::size_t gracePieces = 16;
// One that nobody acknowledged may yet be filled by a retransmission.
constexpr std::int64_t patienceSeconds = 60;

// Sequence numbers further apart than any window belong to different connections.
constexpr std::int32_t farAway = 1 << 24;
// No LDP speaker lets more than this be under way.
constexpr std::int32_t largestWindow = 1 << 20;

std::int32_t distance( std::uint32_t from, std::uint32_t to ) { return std::int32_t( to - from ); }

} // namespace

void Streams::take( Segment const & segment, Arrival const & arrival ) {
   Direction * const known = direction( segment, arrival );
   if ( !known ) return;
   Direction & here = *known;
   here.last = arrival;
   tellStep( here, segment );
   if ( segment.ack ) {
      here.acking = segment.acknowledged;
      here.acks = true;
   }
   if ( here.back && segment.ack ) acknowledge( *here.back, segment, arrival );
   std::uint32_t const sequence = segment.sequence + segment.syn; // a SYN takes a number before the payload
   if ( !segment.payload.empty() || segment.missing ) takePayload( here, sequence, segment );
   if ( here.waiting && holeIsLost( here ) ) passHole( here );
   if ( segment.rst || ( segment.fin && !here.waiting ) ) {
      close( here );
      sink_.onClose( { here.last, &here.flow } );
   }
   if ( segment.rst && here.back ) close( *here.back );
}

void Streams::finish() {
   while ( !directions_.empty() )
      forgetOldest();
}

// The direction that a segment belongs to; null for one that belongs to no connection under way.
Streams::Direction * Streams::direction( Segment const & segment, Arrival const & arrival ) {
   auto const place = byFlow_.find( segment.flow );
   if ( place == byFlow_.end() ) {
      if ( segment.rst && !answers( segment ) ) {
         ++straySegments_;
         return nullptr;
      }
      return &added( segment, arrival );
   }
   directions_.splice( directions_.end(), directions_, place->second );
   Direction & known = directions_.back();
   if ( !segment.rst ) return inDoubt( known, segment, arrival ) ? nullptr : &known;
   if ( accepted( known, segment ) ) return &known;
   ++straySegments_;
   return nullptr;
}

// Whether a reset, the first segment of its direction, is where the other direction expects one.
bool Streams::answers( Segment const & segment ) const {
   auto const place = byFlow_.find( segment.flow.reversed() );
   if ( place == byFlow_.end() ) return true; // nothing is known that it could contradict
   Direction const & back = *place->second;
   if ( back.begun && segment.ack && segment.acknowledged == back.first ) return true;
   return !back.acks || std::abs( distance( back.acking, segment.sequence ) ) <= largestWindow;
}

Streams::Direction & Streams::added( Segment const & segment, Arrival const & arrival ) {
   directions_.emplace_back( segment.flow, segment.sequence + segment.syn, segment.syn );
   byFlow_.emplace( segment.flow, std::prev( directions_.end() ) );
   Direction & added = directions_.back();
   while ( directions_.size() > mostDirections_ ||
           secondsBetween( directions_.front().last, arrival ) > silentSeconds ) {
      if ( &directions_.front() == &added ) break;
      forgotten_ += directions_.size() > mostDirections_;
      forgetOldest();
   }
   if ( auto const back = byFlow_.find( segment.flow.reversed() ); back != byFlow_.end() ) {
      added.back = &*back->second;
      added.back->back = &added;
   }
   return added;
}

// Whether the segment is in doubt: too far from the conversation, and the first of its kind. A SYN begins
// another connection between the ports, and so do two segments in line, the first of which has waited.
bool Streams::inDoubt( Direction & known, Segment const & segment, Arrival const & arrival ) {
   std::uint32_t const sequence = segment.sequence + segment.syn;
   if ( segment.syn ) {
      if ( sequence != known.first ) restart( known, sequence, true );
      known.begun = true;
      return false;
   }
   std::int32_t const ahead = distance( known.next, sequence );
   if ( ahead <= farAway && ahead >= -farAway ) {
      if ( known.far && !segment.payload.empty() ) {
         known.far.reset();
         ++straySegments_;
      }
      return false;
   }
   if ( known.far && known.far->end() == sequence ) {
      Far const first = std::move( *known.far );
      restart( known, first.begin, false );
      known.last = first.arrival;
      known.next = first.end();
      known.framer.take( first.payload, { first.arrival, &known.flow }, sink_ );
      return false;
   }
   straySegments_ += segment.payload.empty() || known.far;
   if ( !segment.payload.empty() ) {
      known.far = std::make_unique< Far >(
           Far{ sequence, { segment.payload.begin(), segment.payload.end() }, arrival } );
   }
   return true;
}

void Streams::restart( Direction & known, std::uint32_t sequence, bool syn ) {
   known.far.reset();
   close( known );
   sink_.onClose( { known.last, &known.flow } );
   known.first = known.next = known.acknowledged = sequence;
   known.begun = syn;
   known.established = false;
   known.framer = Framer( syn );
}

// Whether who gets the reset obeys it: it stands where the next octet would, or answers the SYN (RFC 9293,
// 3.5.2 and 3.10.7.4). How far the receiver is lies between what it has acknowledged and what was sent.
bool Streams::accepted( Direction const & known, Segment const & segment ) const {
   if ( known.back && known.back->begun && segment.ack && segment.acknowledged == known.back->first )
      return true;
   return distance( known.acknowledged, segment.sequence ) >= -1 &&
          distance( known.next, segment.sequence ) <= largestWindow;
}

void Streams::tellStep( Direction & direction, Segment const & segment ) {
   Origin origin{ direction.last, &direction.flow };
   origin.authenticated = segment.authenticated;
   if ( segment.syn ) {
      sink_.onTcpStep( origin, segment.ack ? TcpStep::synAck : TcpStep::syn );
   } else if ( segment.rst && direction.back && direction.back->begun && segment.ack &&
               segment.acknowledged == direction.back->first ) {
      sink_.onTcpStep( origin, TcpStep::refused );
   } else if ( segment.ack && direction.begun && !direction.established && direction.back &&
               direction.back->begun && distance( direction.back->first, segment.acknowledged ) >= 0 ) {
      direction.established = direction.back->established = true;
      sink_.onTcpStep( origin, TcpStep::established );
   }
}

// `other` is the direction that the segment acknowledges.
void Streams::acknowledge( Direction & other, Segment const & segment, Arrival const & arrival ) {
   bool const sent = distance( other.next, segment.acknowledged ) <= largestWindow;
   if ( sent && distance( other.acknowledged, segment.acknowledged ) > 0 )
      other.acknowledged = segment.acknowledged;
   if ( !other.waiting ) return;
   other.last = arrival;
   if ( holeIsLost( other ) ) passHole( other );
}

void Streams::takePayload( Direction & direction, std::uint32_t sequence, Segment const & segment ) {
   Octets payload = segment.payload;
   std::int32_t const ahead = distance( direction.next, sequence );
   if ( ahead < 0 ) {
      // Begins with what was delivered already.
      std::size_t const known = std::min( std::size_t( -std::int64_t( ahead ) ), payload.size() );
      repeatedOctets_ += known;
      if ( known && distance( direction.acknowledged, sequence + std::uint32_t( known ) ) > 0 )
         sink_.onRepeated( { direction.last, &direction.flow }, known );
      payload = payload.subspan( known );
      sequence += std::uint32_t( known );
      if ( payload.empty() ) return;
   }
   if ( direction.waiting || ahead > 0 ) {
      wait( direction, sequence, payload );
      return;
   }
   Origin const origin{ direction.last, &direction.flow };
   direction.next += std::uint32_t( payload.size() + segment.missing );
   direction.framer.take( payload, origin, sink_ );
   if ( segment.missing ) direction.framer.lose( segment.missing, origin, sink_ );
}

void Streams::wait( Direction & direction, std::uint32_t sequence, Octets payload ) {
   if ( payload.empty() ) return;
   if ( !direction.waiting ) {
      if ( waitingDirections_ >= mostWaitingDirections ) {
         auto const oldest =
              std::find_if( directions_.begin(), directions_.end(),
                            []( Direction const & other ) { return other.waiting != nullptr; } );
         while ( oldest->waiting )
            passHole( *oldest );
      }
      direction.waiting = std::make_unique< Waiting >( direction.next, direction.last );
      ++waitingDirections_;
   }
   Waiting & waiting = *direction.waiting;
   waiting.pieces.push_back( { sequence, sequence + std::uint32_t( payload.size() ), direction.last } );
   if ( waiting.tracker.process_payload( sequence, { payload.begin(), payload.end() } ) )
      deliverWaiting( direction );
}

bool Streams::holeIsLost( Direction const & direction ) const {
   Waiting const & waiting = *direction.waiting;
   std::int64_t const seconds = secondsBetween( waiting.since, direction.last );
   bool const acknowledged = distance( direction.next, direction.acknowledged ) > 0;
   return waiting.tracker.total_buffered_bytes() > mostWaitingOctets ||
          waiting.pieces.size() > mostWaitingPieces || seconds >= patienceSeconds ||
          ( acknowledged && ( seconds >= graceSeconds || waiting.pieces.size() >= gracePieces ) );
}

// Goes on behind the hole, up to the next one.
void Streams::passHole( Direction & direction ) {
   Waiting & waiting = *direction.waiting;
   std::uint32_t first = direction.next + ( 1U << 31 ) - 1;
   for ( auto const & [sequence, payload] : waiting.tracker.buffered_payload() ) {
      if ( distance( direction.next, sequence ) < distance( direction.next, first ) ) first = sequence;
   }
   direction.framer.lose( first - direction.next, { direction.last, &direction.flow }, sink_ );
   direction.next = first;
   waiting.tracker.sequence_number( first );
   waiting.tracker.process_payload( first, {} ); // the tracker looks for what it holds from there on
   waiting.since = direction.last;
   deliverWaiting( direction );
}

// Hands to the framer what the tracker has put in order, piece by piece: each with the packet that brought
// it.
void Streams::deliverWaiting( Direction & direction ) {
   Waiting & waiting = *direction.waiting;
   auto & payload = waiting.tracker.payload();
   for ( Octets octets( payload ); !octets.empty(); ) {
      auto const piece = std::find_if( waiting.pieces.begin(), waiting.pieces.end(), [&]( Piece const & p ) {
         return distance( p.begin, direction.next ) >= 0 && distance( direction.next, p.end ) > 0;
      } );
      bool const found = piece != waiting.pieces.end(); // always: the tracker holds nothing else
      std::size_t const size =
           found ? std::min( octets.size(), std::size_t( piece->end - direction.next ) ) : octets.size();
      Origin const origin{ found ? piece->arrival : direction.last, &direction.flow };
      direction.next += std::uint32_t( size );
      direction.framer.take( octets.first( size ), origin, sink_ );
      octets = octets.subspan( size );
   }
   payload.clear();
   std::erase_if( waiting.pieces, [&]( Piece const & p ) { return distance( direction.next, p.end ) <= 0; } );
   if ( waiting.tracker.buffered_payload().empty() ) {
      direction.waiting.reset();
      --waitingDirections_;
   }
}

// The connection has ended. The direction stays for a while, so that a late repetition is known for what it
// is.
void Streams::close( Direction & direction ) {
   while ( direction.waiting )
      passHole( direction );
   direction.framer.finish( { direction.last, &direction.flow }, sink_ );
}

void Streams::forgetOldest() {
   Direction & oldest = directions_.front();
   close( oldest );
   if ( oldest.far ) { // nothing has confirmed it, but nothing has contradicted it either
      Origin const origin{ oldest.far->arrival, &oldest.flow, nullptr, true };
      Framer framer( false );
      framer.take( oldest.far->payload, origin, sink_ );
      framer.finish( origin, sink_ );
   }
   if ( oldest.back ) oldest.back->back = nullptr;
   byFlow_.erase( oldest.flow );
   directions_.pop_front();
}

} // namespace LdpTool
