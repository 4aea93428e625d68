// A packet with a PDU in it, behind the guard. What the guard says must be what the independent oracle says;
// what passes is parsed and read whole.
//
// The first octet of the input says where in the packet the PDU begins, and whether so many octets follow the
// packet that even a wrapped length stays inside.
#include "UnitMutator.h"
#include "support/FatalOracle.h"
#include "support/ReadAll.h"

#include <vector>

using Ldp::LdpPduGuardResult;

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 2 ) return 0;
   std::vector< U8 > octets( data + 1, data + size );
   U32 const offset = std::min( U32( size - 1 ), data[0] & 0x1fu );
   if ( data[0] & 0x80 ) octets.resize( octets.size() + 0x11000 );

   Vorn::Ptr< Lumo::Pkt > const pkt = Lumo::pktFactory( octets.data(), octets.size() );
   LdpPduGuardResult const guard = Ldp::ldpPduGuard( pkt, offset );
   auto const fatal = Fuzz::fatalInputs( octets, offset );
   VORN_ASSERT( bool( guard ) == !fatal.empty() );
   if ( guard ) {
      VORN_ASSERT( guard.offset == fatal.front().offset );
      VORN_ASSERT( ( guard.input == LdpPduGuardResult::wrappedUnit ) ==
                   ( fatal.front().input == Fuzz::Fatal::wrappedUnit ) );
   } else {
      Fuzz::Sink sink;
      Fuzz::readPdu( sink, pkt, offset );
   }
   return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator( U8 * data, std::size_t size, std::size_t maxSize,
                                                unsigned seed ) {
   return Fuzz::mutatePdu( data, size, maxSize, seed );
}
