// Decoding, from the octets of a PDU to the parsers of all its messages, beside a bare walk over the same
// headers: what a user would write who only wants to know where each TLV stands.

#include "BenchRing.h"
#include "Ldp/LdpFec.h"
#include "Ldp/LdpPduStream.h"
#include "MallocCount.h"
#include "Vorn/Memory.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <unordered_map>
#include <vector>

namespace {

using Octets = std::vector< U8 >;

Octets operator+( Octets a, Octets const & b ) {
   a.insert( a.end(), b.begin(), b.end() );
   return a;
}
Octets u16( std::size_t value ) { return { U8( value >> 8 ), U8( value ) }; }
Octets u32( std::size_t value ) { return u16( value >> 16 ) + u16( value & 0xffff ); }
Octets tlv( U16 type, Octets const & value ) { return u16( type ) + u16( value.size() ) + value; }
Octets message( U16 type, Octets const & tlvs ) { return tlv( type, u32( 1 ) + tlvs ); }
// Version, length, LSR id 10.0.0.1, label space 0.
Octets pdu( Octets const & messages ) {
   return u16( 1 ) + u16( messages.size() + 6 ) + u32( 0x0a000001 ) + u16( 0 ) + messages;
}

Octets labelMappings( U32 num ) {
   Octets all;
   for ( U32 i = 0; i < num; ++i ) {
      Octets const prefix{ 2, 0, 1, 24, 10, U8( i >> 8 ), U8( i ) };
      all = all + message( 0x0400, tlv( 0x0100, prefix ) + tlv( 0x0200, u32( 16 + i ) ) );
   }
   return pdu( all );
}

Octets hello() {
   return pdu( message( 0x0100, tlv( 0x0400, u16( 15 ) + u16( 0 ) ) + tlv( 0x0401, u32( 0x0a000001 ) ) +
                                     tlv( 0x0402, u32( 7 ) ) ) );
}

Octets initialization() {
   Octets const parameters = u16( 1 ) + u16( 180 ) + u16( 0 ) + u16( 4096 ) + u32( 0x0a000002 ) + u16( 0 );
   Octets const capability{ 0x80 };
   return pdu( message( 0x0200, tlv( 0x0500, parameters ) + tlv( 0x8506, capability ) +
                                     tlv( 0x850b, capability ) + tlv( 0x8603, capability ) ) );
}

Octets addresses( U32 num ) {
   Octets list = u16( 1 );
   for ( U32 i = 0; i < num; ++i )
      list = list + u32( 0x0a000001 + i );
   return pdu( message( 0x0300, tlv( 0x0101, list ) ) );
}

struct Input {
   char const * name;
   Octets octets;
};
std::vector< Input > const inputs{
   { "PDU of 1 Label Mapping", labelMappings( 1 ) },
   { "PDU of 30 Label Mappings", labelMappings( 30 ) },
   { "Hello", hello() },
   { "Initialization, 3 capabilities", initialization() },
   { "Address, 200 addresses", addresses( 200 ) },
};

U32 at16( U8 const * octets ) { return U32( octets[0] << 8 | octets[1] ); }

// Goes over all message and TLV headers, judging no more than that each lies in what holds it. Returns a sum,
// so that it is not optimized away.
[[gnu::noinline]] U32 bareWalk( U8 const * octets, std::size_t size ) {
   if ( size < 10 || at16( octets + 2 ) + 4 > size ) return 0;
   U32 sum = 0;
   U8 const * const end = octets + at16( octets + 2 ) + 4;
   for ( U8 const * message = octets + 10; message != end; ) {
      if ( end - message < 8 ) return 0;
      U8 const * const messageEnd = message + 4 + at16( message + 2 );
      if ( messageEnd > end ) return 0;
      sum += at16( message );
      for ( U8 const * tlv = message + 8; tlv != messageEnd; ) {
         if ( messageEnd - tlv < 4 ) return 0;
         U32 const total = at16( tlv + 2 ) + 4;
         if ( std::ptrdiff_t( total ) > messageEnd - tlv ) return 0;
         sum += at16( tlv );
         tlv += total;
      }
      message = messageEnd;
   }
   return sum;
}

using Parsers = std::vector< Vorn::Ptr< Ldp::LdpMsgParser > >;

// Decodes the whole PDU, as an agent does, but keeps the parsers so that they can be counted.
void keepDecoded( Vorn::Ptr< Lumo::Pkt > const & pkt, Vorn::Ptr< Ldp::LdpPduParser > & pdu,
                  Parsers & messages ) {
   pdu = Ldp::ldpPduParserFactory( pkt, 0 );
   for ( U32 i = 0; i < pdu->messageNum(); ++i )
      messages.push_back( Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( i ) ) );
}

U32 freeBlocks() {
   U32 all = 0;
   for ( Vorn::MemClass const & memClass : Vorn::memClasses_ )
      all += memClass.freeNum;
   return all;
}

// Counts what decoding allocates: blocks in all, and how many of them malloc had to give when others of the
// same kind had been given back before.
void countAllocations( benchmark::State & state, Vorn::Ptr< Lumo::Pkt > const & pkt ) {
   for ( int round = 0; round < 2; ++round ) {
      Parsers messages;
      messages.reserve( 64 );
      Vorn::Ptr< Ldp::LdpPduParser > pdu;
      U64 const mallocs = mallocCalls;
      U32 const blocks = freeBlocks();
      keepDecoded( pkt, pdu, messages );
      U64 const newMallocs = mallocCalls - mallocs;
      state.counters["allocations/message"] =
           double( newMallocs + blocks - freeBlocks() ) / double( messages.size() );
      state.counters["of them malloc"] = double( newMallocs ) / double( messages.size() );
      for ( auto const & message : messages )
         if ( !message->validMsg() ) state.SkipWithError( message->reason().charPtr() );
      if ( !pdu->validLdpPdu() || messages.empty() ) state.SkipWithError( "bad PDU" );
   }
}

void walk( benchmark::State & state, Octets const & octets ) {
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( octets.data() );
      benchmark::DoNotOptimize( bareWalk( octets.data(), octets.size() ) );
   }
   if ( !bareWalk( octets.data(), octets.size() ) ) state.SkipWithError( "bad PDU" );
}

void decode( benchmark::State & state, Octets const & octets, bool guard ) {
   auto const pkt = Lumo::Pkt::borrow( octets.data(), octets.size() );
   for ( auto _ : state ) {
      if ( guard && Ldp::ldpPduGuard( pkt, 0 ) ) state.SkipWithError( "refused" );
      auto const pdu = Ldp::ldpPduParserFactory( pkt, 0 );
      U32 const num = pdu->messageNum();
      for ( U32 i = 0; i < num; ++i )
         benchmark::DoNotOptimize( Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( i ) )->validMsg() );
   }
   countAllocations( state, pkt );
}

void guardOnly( benchmark::State & state, Octets const & octets ) {
   auto const pkt = Lumo::Pkt::borrow( octets.data(), octets.size() );
   for ( auto _ : state )
      benchmark::DoNotOptimize( Ldp::ldpPduGuard( pkt, 0 ) );
}

// The road of an agent: octets in pieces, each PDU past the guard and parsed, each mapping's FEC looked up in
// the model. The second one is what a user would write for IPv4 prefixes alone, bounds checked.
void wholeRoad( benchmark::State & state, Octets const & octets ) {
   auto const known = Ldp::ldpFecNexthopCollFactory( Vorn::Name( "known" ) );
   for ( U32 i = 0; i < 10'000; ++i )
      known->fecNexthopIs(
           Mpls::FwdEqvClass( Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000000 + ( i << 8 ) ), 24 ) ) );
   Ldp::LdpPduStream stream;
   U32 found = 0;
   for ( auto _ : state ) {
      found = 0;
      std::span< U8 const > const all = octets;
      for ( std::size_t at = 0; at < all.size(); at += 500 ) {
         auto piece = all.subspan( at, std::min< std::size_t >( 500, all.size() - at ) );
         while ( auto const pdu = stream.next( piece ) ) {
            for ( U32 i = 0; i < pdu.messageNum(); ++i ) {
               auto const message = pdu.message( i );
               auto const fecs = message->validMsg() ? message->ldpFecTlvParser() : nullptr;
               for ( U32 k = 0; fecs && k < fecs->fecElements(); ++k )
                  found += bool( known->fecNexthop( fecs->fecElement( k )->fwdEqvCls() ) );
            }
         }
      }
   }
   if ( found == 0 ) state.SkipWithError( "nothing found" );
}

void roadByHand( benchmark::State & state, Octets const & octets ) {
   std::unordered_map< U64, U32 > known;
   for ( U32 i = 0; i < 10'000; ++i )
      known[U64( 0x0a000000 + ( i << 8 ) ) << 8 | 24] = i;
   std::vector< U8 > held;
   U32 found = 0;
   for ( auto _ : state ) {
      found = 0;
      for ( std::size_t from = 0; from < octets.size(); from += 500 ) {
         held.insert( held.end(), octets.begin() + std::ptrdiff_t( from ),
                      octets.begin() + std::ptrdiff_t( std::min( from + 500, octets.size() ) ) );
         while ( held.size() >= 10 && held.size() >= at16( &held[2] ) + 4 ) {
            U8 const * const end = held.data() + at16( &held[2] ) + 4;
            for ( U8 const * message = held.data() + 10; end - message >= 8; ) {
               U8 const * const next = message + 4 + at16( message + 2 );
               if ( next > end ) break;
               for ( U8 const * tlv = message + 8; next - tlv >= 4; tlv += at16( tlv + 2 ) + 4 ) {
                  U32 const bytes = at16( tlv + 2 );
                  if ( std::ptrdiff_t( bytes ) > next - tlv - 4 ) break;
                  if ( at16( tlv ) != 0x0100 || bytes < 4 || tlv[4] != 2 || at16( tlv + 5 ) != 1 ) continue;
                  U32 const bits = tlv[7];
                  U32 const octetsOfPrefix = ( bits + 7 ) / 8;
                  if ( octetsOfPrefix > 4 || octetsOfPrefix + 4 > bytes ) continue;
                  U32 prefix = 0;
                  std::memcpy( &prefix, tlv + 8, octetsOfPrefix );
                  found += U32( known.count( U64( __builtin_bswap32( prefix ) ) << 8 | bits ) );
               }
               message = next;
            }
            held.erase( held.begin(), held.begin() + ( end - held.data() ) );
         }
      }
   }
   if ( found == 0 ) state.SkipWithError( "nothing found" );
}

// Those without the ring first: it stays on.
int const registered = [] {
   benchmark::RegisterBenchmark( "30 Label Mappings to the model/by hand, a hash map of IPv4 prefixes",
                                 roadByHand, labelMappings( 30 ) );
   benchmark::RegisterBenchmark( "30 Label Mappings to the model/stream, guard, parsers, map of FECs",
                                 wholeRoad, labelMappings( 30 ) );
   for ( Input const & in : inputs ) {
      std::string const name = in.name;
      benchmark::RegisterBenchmark( ( name + "/bare walk over the headers" ).c_str(), walk, in.octets );
      benchmark::RegisterBenchmark( ( name + "/guard" ).c_str(), guardOnly, in.octets );
      benchmark::RegisterBenchmark( ( name + "/decode" ).c_str(), decode, in.octets, false );
   }
   for ( Input const & in : inputs ) {
      auto const ring = []( benchmark::State & state, Octets const & octets, bool guard ) {
         ringOn();
         decode( state, octets, guard );
      };
      std::string const name = in.name;
      benchmark::RegisterBenchmark( ( name + "/decode, ring on" ).c_str(), ring, in.octets, false );
      benchmark::RegisterBenchmark( ( name + "/guard and decode, ring on" ).c_str(), ring, in.octets, true );
   }
   return 0;
}();

} // namespace
