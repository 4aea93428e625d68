// One message given to one parser class, without a PDU around it. The first octet of the input chooses the
// class, the second where the message begins; the message gets the type of its class.
#include "UnitMutator.h"
#include "support/FatalOracle.h"
#include "support/ReadAll.h"

#include <vector>

namespace {

using Ldp::LdpMsgParser;

template< auto factory >
Vorn::Ptr< LdpMsgParser > make( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return factory( pkt, offset );
}

struct MessageClass {
   U16 type; // 0: any
   Vorn::Ptr< LdpMsgParser > ( *make )( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
};

constexpr MessageClass classes[] = {
   { 0, make< Ldp::ldpMsgParserFactory > },
   { Ldp::LdpHello, make< Ldp::ldpHelloMsgParserFactory > },
   { Ldp::LdpInit, make< Ldp::ldpInitMsgParserFactory > },
   { Ldp::LdpCapability, make< Ldp::ldpCapabilityMsgParserFactory > },
   { Ldp::LdpNotification, make< Ldp::ldpNotificationMsgParserFactory > },
   { Ldp::LdpAddress, make< Ldp::ldpAddressMsgParserFactory > },
   { Ldp::LdpAddressWithdraw, make< Ldp::ldpAddressWithdrawMsgParserFactory > },
   { Ldp::LdpLabelMapping, make< Ldp::ldpLabelMappingMsgParserFactory > },
   { Ldp::LdpLabelRequest, make< Ldp::ldpLabelRequestMsgParserFactory > },
   { Ldp::LdpLabelWithdraw, make< Ldp::ldpLabelWithdrawMsgParserFactory > },
   { Ldp::LdpLabelRelease, make< Ldp::ldpLabelReleaseMsgParserFactory > },
   { Ldp::LdpLabelAbortReq, make< Ldp::ldpLabelAbortReqMsgParserFactory > },
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 3 ) return 0;
   MessageClass const & chosen = classes[data[0] % std::size( classes )];
   std::vector< U8 > octets( data + 2, data + size );
   U32 const offset = std::min( U32( octets.size() ), data[1] & 0x1fu );
   if ( chosen.type && octets.size() - offset >= 2 ) {
      octets[offset] = U8( ( octets[offset] & 0x80 ) | chosen.type >> 8 );
      octets[offset + 1] = U8( chosen.type );
   }
   // The plain parser dies of what stands in any message's framing, but reads no FEC.
   auto const fatal = Fuzz::fatalInputOfMessage( octets, offset );
   if ( fatal && ( chosen.type || fatal->input == Fuzz::Fatal::wrappedUnit ) ) return 0;

   Vorn::Ptr< Lumo::Pkt > const pkt = Lumo::pktFactory( octets.data(), octets.size() );
   Fuzz::Sink sink;
   Fuzz::readMessage( sink, *chosen.make( pkt, offset ) );
   return 0;
}

extern "C" std::size_t LLVMFuzzerCustomMutator( U8 * data, std::size_t size, std::size_t maxSize,
                                                unsigned seed ) {
   size = LLVMFuzzerMutate( data, size, maxSize );
   std::size_t const message = 2 + ( size > 1 ? data[1] & 0x1fu : 0 );
   if ( seed % 2 && size > message + 4 ) {
      Fuzz::lengthIs( { data + message, size - message }, size - message - 4 );
      Fuzz::mendMessage( { data + message, size - message } );
   }
   return size;
}
