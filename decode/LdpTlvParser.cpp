// Parsers of a single TLV.
#include "Ldp/LdpTlvParser.h"

#include "Vorn/VornType.h"

namespace Ldp {

LdpTlvParser::LdpTlvParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset )
     : pkt_( std::move( pkt ) ), offset_( offset ) {
   handleHeader();
}

LdpTlvParser::~LdpTlvParser() = default;

void LdpTlvParser::handleHeader() noexcept {
   VORN_ASSERT( pkt_ );
   // The view can write where the packet's owner wants that; no decoder does.
   header_ = reinterpret_cast< LdpTlvHdr * >( const_cast< U8 * >( pkt_->front() ) + offset_ );
}

Vorn::Ptr< LdpTlvParser > ldpTlvParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpTlvParser >( pkt, offset );
}

#define DEFINE_TLV_PARSER( Type, factory )                                                                   \
   Type::~Type() = default;                                                                                  \
   Vorn::Ptr< Type > factory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {                             \
      return Vorn::newObject< Type >( pkt, offset );                                                         \
   }
VORN_LDP_TLV_PARSERS( DEFINE_TLV_PARSER )
#undef DEFINE_TLV_PARSER

Lumo::IpAddr LdpPathVectorTlvParser::lsrId( U32 position ) const noexcept {
   return header2() ? header2()->lsrId( position ) : Lumo::IpAddr();
}

U32 LdpPathVectorTlvParser::lsrIdPosition( Lumo::IpAddr const & lsrId ) const noexcept {
   return header2() ? header2()->lsrIdPosition( lsrId ) : 0;
}

Lumo::IpGenAddr LdpAddressListTlvParser::address( U16 position ) const {
   VORN_ASSERT( position < numAddress() );
   return header2()->address( position );
}

} // namespace Ldp
