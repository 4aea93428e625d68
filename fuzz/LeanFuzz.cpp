// PduFuzz without the reading by reflection, which takes nearly all of its time: the guard against its
// oracle, every message parsed, and its texts. Meant for a build without sanitizers, where it makes some
// hundred times the executions; the library's own assertions and the oracle then are what can fail.
//
// The first octet of the input says where in the packet the PDU begins.
#include "UnitMutator.h"
#include "support/FatalOracle.h"

#include "Ldp/LdpUtils.h"

#include <algorithm>

using namespace Ldp;

namespace {

std::size_t volatile sunk; // so that no text can be left out

void readTexts( LdpMsgParser const & parser ) {
   sunk = sunk + parser.reason().bytes() + parser.stringValue().bytes();
   if ( auto const fec = parser.ldpFecTlvParser() ) sunk = sunk + fec->stringValue().bytes();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 2 ) return 0;
   Fuzz::Octets const octets( data + 1, size - 1 );
   U32 const offset = std::min( U32( octets.size() ), data[0] & 0x1fu );
   auto const pkt = Lumo::Pkt::borrow( octets.data(), octets.size() );
   LdpPduGuardResult const guard = ldpPduGuard( pkt, offset );
   auto const fatal = Fuzz::fatalInputs( octets, offset );
   VORN_ASSERT( bool( guard ) == !fatal.empty() );
   if ( guard ) {
      VORN_ASSERT( guard.offset == fatal.front().offset );
      return 0;
   }
   auto const parser = ldpPduParserFactory( pkt, offset );
   VORN_ASSERT( parser->validLdpPdu() == parser->reason().empty() );
   if ( !parser->validLdpPdu() ) return 0;
   for ( U32 i = 0; i < parser->messageNum(); ++i )
      readTexts( *ldpMsgParserGet( pkt, parser->messageOffset( i ) ) );
   return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator( U8 * data, std::size_t size, std::size_t maxSize,
                                                unsigned seed ) {
   return Fuzz::mutatePdu( data, size, maxSize, seed );
}
