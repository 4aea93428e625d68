// The walk over a row of type-length units, and the PDU parser that begins with it.
#include "Ldp/LdpGenMsgParser.h"

#include "Codecs.h"
#include "Ldp/LdpMsgParser.h"
#include "Ldp/LdpProtoParam.h"
#include "Ldp/LdpUtils.h"

namespace Ldp {

namespace {

VORN_TRACE_FACILITY( "LdpGenMsgParser" )

} // namespace

LdpTlvGroupParser::~LdpTlvGroupParser() = default;

Vorn::Ptr< LdpTlvGroupParser > LdpTlvGroupParser::named( Vorn::Ptr< LdpTlvGroupParser > & child,
                                                         Vorn::Name const & name ) {
   if ( !child || child->name() != name ) child = Vorn::newObject< LdpTlvGroupParser >( name );
   return child;
}

void LdpTlvGroupParser::refuse( LdpStatusCode status, Vorn::String const & reason, U64 at ) {
   statusCode_ = status;
   reason_ = reason;
   faultOffset_ = U32( at );
   TWAIN_TRACE( 5, reason_ );
}

bool LdpTlvGroupParser::parseTlvGroup() {
   TWAIN_FUNCTION( "LdpTlvGroupParser::parseTlvGroup" );
   VORN_ASSERT( pkt_ );
   VORN_ASSERT( pkt_->frontBytes() >= offset_ );
   U8 const * const front = pkt_->front();
   U64 const frontBytes = pkt_->frontBytes();
   TWAIN_TRACE( 6, "Parse packet frontBytes: ", frontBytes, ", offset: ", offset_, ", size ", size_ );
   statusCode_ = success;
   faultOffset_ = 0;
   if ( size_ == 0 ) return true;
   if ( U64( offset_ ) + size_ > frontBytes ) {
      refuse( badTlvLength, Vorn::format( "Packet is too small, size: %zd", ssize_t( frontBytes ) ),
              offset_ );
      return true;
   }
   if ( U64( offset_ ) + sizeof( LdpTlvHdr ) > frontBytes ) {
      refuse( badTlvLength, "Msg/Tlv header is corrupted", offset_ );
      return true;
   }
   U64 cur = offset_;
   U64 octets = 0;
   for ( U32 index = 0;; ++index ) {
      auto const * header = reinterpret_cast< LdpTlvHdr const * >( front + cur );
      // In 16 bits, as the length field is: lengths of 65533 to 65535 move on by 1 to 3 octets, and whoever
      // gets such a unit refuses it by its length.
      U16 const total = header->totalLength();
      TWAIN_TRACE( 6, "   Msg/TLV ", index, ": offset ", U32( cur ), ", size ", total );
      // A length of 65532 would hold the walk in its place. A peer can send it: the guard is there so
      // that none comes so far, and an agent without it ends here rather than hang.
      VORN_ASSERT( header->totalLength() > 0 );
      octets += total;
      if ( octets > size_ ) {
         refuse( badTlvLength, "Msg/Tlv is corrupted/truncated", cur );
         return true;
      }
      tlvOffset_.valueIs( index, U32( cur ) );
      cur += total;
      if ( octets == size_ ) return true;
      // Against the packet, not the run: a header that the run cuts short may be completed by the octets
      // behind it, and then its total tells.
      if ( cur + sizeof( LdpTlvHdr ) > frontBytes ) {
         refuse( badTlvLength, "Msg/Tlv header is corrupted", cur );
         return true;
      }
   }
}

Vorn::Ptr< LdpPduParser > ldpPduParserFactory( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return Vorn::newObject< LdpPduParser >( pkt, offset );
}

LdpPduParser::LdpPduParser( Vorn::Ptr< Lumo::Pkt > pkt, U32 offset )
     : pkt_( std::move( pkt ) ), offset_( offset ) {
   handleHeader();
   tlvGroupParserIs( Vorn::Name() );
   handleInitialized();
}

LdpPduParser::~LdpPduParser() = default;

void LdpPduParser::handleHeader() noexcept {
   VORN_ASSERT( pkt_ );
   header_ = reinterpret_cast< LdpPduHdr const * >( pkt_->front() + offset_ );
}

Vorn::Ptr< LdpTlvGroupParser > LdpPduParser::tlvGroupParserIs( Vorn::Name const & name ) {
   return LdpTlvGroupParser::named( tlvGroupParser_, name );
}

Vorn::Ptr< LdpTlvGroupParser > LdpPduParser::tlvGroupParserDel() {
   return std::exchange( tlvGroupParser_, nullptr );
}

void LdpPduParser::refuse( LdpStatusCode status, Vorn::String const & reason ) {
   statusCode_ = status;
   reason_ = reason;
   TWAIN_TRACE( 5, reason_ );
}

void LdpPduParser::handleInitialized() {
   TWAIN_FUNCTION( "LdpPduParser::handleInitialized" );
   VORN_ASSERT( header_ );
   VORN_ASSERT( pkt_->frontBytes() >= offset_ );
   U64 const frontBytes = pkt_->frontBytes();
   if ( offset_ + minBytes > frontBytes ) {
      return refuse( badPduLength, Vorn::format( "PDU too small, size = %zd", ssize_t( frontBytes ) ) );
   }
   U16 const total = header_->totalLength();
   if ( total > LdpProtoParam::ldpPktBufferSize() ) {
      return refuse( badPduLength, Vorn::format( "PDU length field too big, length = %d", total ) );
   }
   if ( total < minTotalLength ) {
      return refuse( badPduLength, Vorn::format( "PDU length field too small, length = %d", total ) );
   }
   if ( header_->version() != LdpProtoParam::ldpProtocolVersion() ) {
      return refuse( badVersion, Vorn::format( "LDP Version %d not supported", header_->version() ) );
   }
   TWAIN_TRACE( 9, "   LdpHeader: ", *header_ );

   VORN_ASSERT( tlvGroupParser_ );
   // Whether the packet holds what the length claims is for the walk to find.
   tlvGroupParser_->pktIs( pkt_ );
   tlvGroupParser_->offsetIs( offset_ + U32( sizeof( LdpPduHdr ) ) );
   tlvGroupParser_->sizeIs( total - U32( sizeof( LdpPduHdr ) ) );
   tlvGroupParser_->parseTlvGroup();
   if ( tlvGroupParser_->valid() ) {
      statusCode_ = success;
   } else {
      // One code for any bad framing; the walker keeps its own.
      statusCode_ = malformedTlv;
      reason_ = "LDP PDU Messages are malformed";
   }
}

bool LdpPduParser::hasText() const noexcept {
   if ( !validLdpPdu() ) return true;
   U32 const num = messageNum();
   for ( U32 i = 0; i < num; ++i ) {
      if ( messageOffset( i ) > pkt_->frontBytes() ) return false;
   }
   return hasHeader();
}

Vorn::String LdpPduParser::stringValue() const {
   if ( !validLdpPdu() ) return "Error LDP PDU: " + reason_;
   std::string text( header_->stringValue().view() ); // a Vorn::String is copied by each piece
   U32 const num = messageNum();
   for ( U32 i = 0; i < num; ++i ) {
      text += Vorn::format( "\n%d: ", int( i ) ).view();
      text += ldpMsgParserGet( pkt_, messageOffset( i ) )->stringValue().view();
   }
   text += '\n';
   return Vorn::String( std::string_view( text ) );
}

} // namespace Ldp
