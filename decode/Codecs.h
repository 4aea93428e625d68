/// \file
/// How the values of the wire are traced by the decoders.
#pragma once

#include "Ldp/LdpHdr.h"
#include "Lumo/Ip.h"
#include "Twain/Trace.h"
#include "Twain/Values.h"

namespace Twain {

template<>
struct Codec< Ldp::LdpIdentifier > {
   static constexpr U32 maxBytes = 6;
   static void describe( Skein::MsgFormatString & format ) {
      format.put( Skein::Item::ipv4 );
      format.put( ":" );
      format.put( Skein::Item::u16 );
   }
   static void put( Skein::RingBuf & record, Ldp::LdpIdentifier const & value ) noexcept {
      Codec< Lumo::IpAddr >::put( record, Lumo::IpAddr( value.lsrId() ) );
      record.put( value.lblSpace() );
   }
   static void text( SkeinConverter & line, Ldp::LdpIdentifier const & value ) {
      line << value.stringValue();
   }
};

/// Reads as `LdpPduHdr::stringValue` does.
template<>
struct Codec< Ldp::LdpPduHdr > {
   static constexpr U32 maxBytes = 4 + Codec< Ldp::LdpIdentifier >::maxBytes;
   static void describe( Skein::MsgFormatString & format ) {
      format.put( "LdpPduHdr: Ver(" );
      format.put( Skein::Item::u16 );
      format.put( "),Len(" );
      format.put( Skein::Item::u16 );
      format.put( "),LdpId: " );
      Codec< Ldp::LdpIdentifier >::describe( format );
   }
   static void put( Skein::RingBuf & record, Ldp::LdpPduHdr const & value ) noexcept {
      record.put( value.version() );
      record.put( value.length() );
      Codec< Ldp::LdpIdentifier >::put( record, value.ldpIdentifier() );
   }
   static void text( SkeinConverter & line, Ldp::LdpPduHdr const & value ) { line << value.stringValue(); }
};

} // namespace Twain
