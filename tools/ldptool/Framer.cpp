#include "Framer.h"

#include <algorithm>

namespace LdpTool {

namespace {

constexpr std::size_t lengthFieldEnd = 4; // version and length: what tells where a PDU ends
constexpr std::size_t pduHeader = 10;
constexpr std::size_t smallestTotal = 14;
constexpr std::size_t largestTotal = 9600;
constexpr std::size_t judgedAtLeast = 18; // a shorter PDU is called too small whatever its length field says

std::size_t read16( Octets octets, std::size_t at ) {
   return std::size_t( octets[at] << 8 | octets[at + 1] );
}

// In 16 bits, as a receiver takes it.
std::size_t totalLength( Octets pdu ) { return std::uint16_t( read16( pdu, 2 ) + 4 ); }

bool totalInBounds( std::size_t total ) { return total >= smallestTotal && total <= largestTotal; }

bool typeCredible( std::size_t type ) {
   return type == 0x0001 || type == 0x0100 || ( type >= 0x0200 && type <= 0x0202 ) || type == 0x0300 ||
          type == 0x0301 || ( type >= 0x0400 && type <= 0x0404 ) || ( type >= 0x3e00 && type <= 0x3fff );
}

enum class Credibility { no, undecided, yes };

// Whether these octets begin with a PDU: version 1, a length in bounds, and messages of credible types whose
// lengths add up to it. Nothing less will do: label mappings are full of octets that look like a version.
Credibility judge( Octets octets ) {
   if ( octets[0] != 0 || ( octets.size() > 1 && octets[1] != 1 ) ) return Credibility::no;
   if ( octets.size() < lengthFieldEnd ) return Credibility::undecided;
   std::size_t const total = totalLength( octets );
   if ( total < judgedAtLeast || total > largestTotal ) return Credibility::no;
   for ( std::size_t at = pduHeader; at != total; ) {
      if ( octets.size() < at + lengthFieldEnd ) return Credibility::undecided;
      if ( !typeCredible( read16( octets, at ) & 0x7fff ) ) return Credibility::no;
      std::size_t const length = read16( octets, at + 2 );
      if ( length < 4 || length + 4 > total - at ) return Credibility::no;
      at += length + 4;
   }
   return octets.size() < total ? Credibility::undecided : Credibility::yes;
}

} // namespace

void Framer::take( Octets octets, Origin const & origin, PduSink & sink ) {
   // Fill up the PDU in hand with no more than it needs, so that those behind it are read in place.
   while ( !held_.empty() && !octets.empty() ) {
      std::size_t const most = searching_ ? largestTotal : wanted() - held_.size();
      std::size_t const more = std::min( most, octets.size() );
      held_.insert( held_.end(), octets.begin(), octets.begin() + std::ptrdiff_t( more ) );
      octets = octets.subspan( more );
      std::size_t const used = consume( held_, origin, sink );
      held_.erase( held_.begin(), held_.begin() + std::ptrdiff_t( used ) );
   }
   if ( octets.empty() ) return;
   std::size_t const used = consume( octets, origin, sink );
   held_.assign( octets.begin() + std::ptrdiff_t( used ), octets.end() );
}

void Framer::lose( std::uint64_t octets, Origin const & origin, PduSink & sink ) {
   abandonHeld( origin, sink );
   searching_ = true;
   gap_.missing += octets;
}

void Framer::finish( Origin const & origin, PduSink & sink ) {
   abandonHeld( origin, sink );
   gap_.atEnd = true;
   tellGap( origin, sink );
   searching_ = true;
}

// Delivers the PDUs that `run` holds whole, from its front, and returns how many octets need not be kept.
std::size_t Framer::consume( Octets run, Origin const & origin, PduSink & sink ) {
   std::size_t at = 0;
   while ( at < run.size() ) {
      Octets const rest = run.subspan( at );
      if ( searching_ ) {
         Credibility const found = judge( rest );
         if ( found == Credibility::undecided ) break;
         if ( found == Credibility::no ) {
            auto const zero = std::find( rest.begin() + 1, rest.end(), std::uint8_t( 0 ) );
            std::size_t const passed = std::size_t( zero - rest.begin() );
            gap_.skipped += passed;
            at += passed;
            continue;
         }
         tellGap( origin, sink );
         searching_ = false;
      }
      if ( rest.size() < lengthFieldEnd ) break;
      std::size_t const total = totalLength( rest );
      if ( totalInBounds( total ) ) {
         if ( rest.size() < total ) break;
         sink.onPdu( origin, rest.first( total ) );
         at += total;
      } else {
         // Nobody can tell where such a PDU ends. Have it judged, and look for a better one behind its first
         // octet.
         if ( rest.size() < judgedAtLeast ) break;
         sink.onPdu( origin, rest.first( judgedAtLeast ) );
         searching_ = true;
         gap_.skipped += 1;
         at += 1;
      }
   }
   return at;
}

// How long `held_` must be for the PDU in hand to be delivered.
std::size_t Framer::wanted() const {
   if ( held_.size() < lengthFieldEnd ) return lengthFieldEnd;
   std::size_t const total = totalLength( held_ );
   return totalInBounds( total ) ? total : judgedAtLeast;
}

// Gives up the PDU in hand, which will not be completed. What only looked like the beginning of one may hide
// others.
void Framer::abandonHeld( Origin const & origin, PduSink & sink ) {
   while ( !held_.empty() ) {
      gap_.skipped += 1;
      searching_ = true;
      std::size_t const used = 1 + consume( Octets( held_ ).subspan( 1 ), origin, sink );
      held_.erase( held_.begin(), held_.begin() + std::ptrdiff_t( used ) );
   }
}

void Framer::tellGap( Origin const & origin, PduSink & sink ) {
   if ( gap_.skipped || gap_.missing ) sink.onGap( origin, gap_ );
   gap_ = {};
}

} // namespace LdpTool
