// A FEC TLV, read by the default rules and with the wildcard rule on and off. The first octet of the input
// says where in the packet the TLV begins, and whether its length is made to fit.
#include "UnitMutator.h"
#include "support/FatalOracle.h"
#include "support/ReadAll.h"

#include <vector>

using namespace Ldp;

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 2 ) return 0;
   std::vector< U8 > octets( data + 1, data + size );
   U32 const offset = std::min( U32( octets.size() ), data[0] & 0x1fu );
   std::size_t const left = octets.size() - offset;
   if ( data[0] & 0x40 && left >= 4 ) Fuzz::lengthIs( std::span( octets ).subspan( offset ), left - 4 );
   if ( Fuzz::fatalInputOfFecTlv( octets, offset ) ) return 0;

   Vorn::Ptr< Lumo::Pkt > const pkt = Lumo::pktFactory( octets.data(), octets.size() );
   Vorn::Ptr< LdpProtoParam > const param = ldpProtoParamFactory( "fuzz" );
   auto const byDefault = ldpFecTlvParserFactory( pkt, offset, nullptr );
   auto const strict = ldpFecTlvParserFactory( pkt, offset, param );
   param->fecTlvStrictPrefixWildcardOnlyElementIs( false );
   auto const lenient = ldpFecTlvParserFactory( pkt, offset, param );
   Fuzz::Sink sink;
   for ( LdpFecTlvParser const * parser : { byDefault.ptr(), strict.ptr(), lenient.ptr() } ) {
      Fuzz::readFecTlv( sink, *parser );
   }
   VORN_ASSERT( byDefault->statusCode() == strict->statusCode() );
   VORN_ASSERT( byDefault->stringValue() == strict->stringValue() );
   VORN_ASSERT( lenient->fecElements() >= strict->fecElements() );
   if ( strict->valid() ) VORN_ASSERT( lenient->stringValue() == strict->stringValue() );
   return 0;
}
