// One direction of a conversation, cut into PDUs.
#include "capture/Framer.h"

#include <algorithm>

namespace LdpTool {

namespace {

constexpr std::size_t lengthFieldEnd = 4; // version and length: what tells where a PDU ends
constexpr std::size_t pduHeader = sizeof( Ldp::LdpPduHdr );
constexpr std::size_t largestTotal = Ldp::LdpProtoParam::ldpPktBufferSize();
constexpr std::size_t judgedAtLeast =
     Ldp::LdpPduParser::minBytes; // a shorter PDU is called too small whatever its length field says

std::size_t read16( Octets octets, std::size_t at ) {
   return std::size_t( octets[at] << 8 | octets[at + 1] );
}

// In 16 bits, as a receiver takes it.
std::size_t totalLength( Octets pdu ) { return std::uint16_t( read16( pdu, 2 ) + 4 ); }

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
   while ( !octets.empty() ) {
      if ( searching_ ) {
         // No more than may be needed, so that the octets behind go the straight way again.
         std::size_t const more = std::min( largestTotal, octets.size() );
         candidate_.insert( candidate_.end(), octets.begin(), octets.begin() + std::ptrdiff_t( more ) );
         octets = octets.subspan( more );
         search( origin, sink );
      } else {
         deliver( octets, origin, sink );
      }
   }
}

void Framer::lose( std::uint64_t octets, Origin const & origin, PduSink & sink ) {
   abandonHeld( origin, sink );
   gap_.missing += octets;
}

void Framer::finish( Origin const & origin, PduSink & sink ) {
   abandonHeld( origin, sink );
   gap_.atEnd = true;
   tellGap( origin, sink );
}

// Hands on the PDUs at the front of `octets`. Behind a length that cannot be, nobody can tell where the next
// PDU begins: a better one may stand behind the first octet.
void Framer::deliver( Octets & octets, Origin const & origin, PduSink & sink ) {
   while ( Ldp::LdpPdu const pdu = stream_.next( octets ) ) {
      sink.onPdu( origin, pdu );
      if ( !stream_.broken() ) continue;
      U8 const * const front = pdu.pkt()->front();
      searchFrom( { front + 1, std::size_t( pdu.pkt()->frontBytes() ) - 1 } );
      gap_.skipped += 1;
      return;
   }
}

// From now on the beginning of a PDU is not known; these octets may hold one.
void Framer::searchFrom( Octets octets ) {
   candidate_.assign( octets.begin(), octets.end() );
   stream_.clear();
   searching_ = true;
}

// Looks for PDUs in the octets at hand, until they are used up or nobody can tell yet.
void Framer::search( Origin const & origin, PduSink & sink ) {
   std::size_t at = 0;
   while ( searching_ && at < candidate_.size() ) {
      Octets const rest = Octets( candidate_ ).subspan( at );
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
      std::vector< std::uint8_t > const known( rest.begin(), rest.end() );
      Octets left = known;
      deliver( left, origin, sink );
      at = 0;
      if ( searching_ ) {
         candidate_.insert( candidate_.end(), left.begin(), left.end() );
      } else {
         candidate_.clear();
      }
   }
   candidate_.erase( candidate_.begin(), candidate_.begin() + std::ptrdiff_t( at ) );
}

// Gives up the PDU in hand, which will not be completed. What only looked like the beginning of one may hide
// others.
void Framer::abandonHeld( Origin const & origin, PduSink & sink ) {
   if ( !searching_ ) searchFrom( stream_.held() );
   while ( !candidate_.empty() ) {
      gap_.skipped += 1;
      candidate_.erase( candidate_.begin() );
      search( origin, sink );
      if ( !searching_ ) searchFrom( stream_.held() );
   }
}

void Framer::tellGap( Origin const & origin, PduSink & sink ) {
   if ( gap_.skipped || gap_.missing ) sink.onGap( origin, gap_ );
   gap_ = {};
}

} // namespace LdpTool
