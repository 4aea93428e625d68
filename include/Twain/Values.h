/// \file
/// How addresses, prefixes and FECs are traced.
#pragma once

#include "Mpls/FwdEqvClass.h"
#include "Twain/Codec.h"

namespace Twain {

template<>
struct Codec< Lumo::IpAddr > {
   static constexpr U32 maxBytes = 4;
   static void describe( Skein::MsgFormatString & format ) { format.put( Skein::Item::ipv4 ); }
   static void put( Skein::RingBuf & record, Lumo::IpAddr const & value ) noexcept {
      record.putRaw( value.octets(), 4 );
   }
   static void text( SkeinConverter & line, Lumo::IpAddr const & value ) { line << value.stringValue(); }
};

template<>
struct Codec< Lumo::Ip6Addr > {
   static constexpr U32 maxBytes = 16;
   static void describe( Skein::MsgFormatString & format ) { format.put( Skein::Item::ipv6 ); }
   static void put( Skein::RingBuf & record, Lumo::Ip6Addr const & value ) noexcept {
      record.putRaw( value.octets(), 16 );
   }
   static void text( SkeinConverter & line, Lumo::Ip6Addr const & value ) { line << value.stringValue(); }
};

/// A tag of the family, then the octets.
template<>
struct Codec< Lumo::IpGenAddr > {
   static constexpr U32 maxBytes = 17;
   static void describe( Skein::MsgFormatString & format ) {
      format.choice( 3 );
      format.when( Lumo::noFamily );
      format.put( "none" );
      format.put( Skein::Item::end );
      format.when( Lumo::ipv4 );
      format.put( Skein::Item::ipv4 );
      format.put( Skein::Item::end );
      format.when( Lumo::ipv6 );
      format.put( Skein::Item::ipv6 );
      format.put( Skein::Item::end );
   }
   static void put( Skein::RingBuf & record, Lumo::IpGenAddr const & value ) noexcept {
      record.put( U8( value.family() ) );
      if ( value.family() == Lumo::ipv4 ) {
         record.putRaw( value.octets(), 4 );
      } else if ( value.family() == Lumo::ipv6 ) {
         record.putRaw( value.octets(), 16 );
      }
   }
   static void text( SkeinConverter & line, Lumo::IpGenAddr const & value ) { line << value.stringValue(); }
};

template<>
struct Codec< Lumo::IpGenPrefix > {
   static constexpr U32 maxBytes = 18;
   static void describe( Skein::MsgFormatString & format ) {
      Codec< Lumo::IpGenAddr >::describe( format );
      format.put( "/" );
      format.put( Skein::Item::u8 );
   }
   static void put( Skein::RingBuf & record, Lumo::IpGenPrefix const & value ) noexcept {
      Codec< Lumo::IpGenAddr >::put( record, value.address() );
      record.put( U8( value.len() ) );
   }
   static void text( SkeinConverter & line, Lumo::IpGenPrefix const & value ) { line << value.stringValue(); }
};

/// A tag of its kind, then the fields.
template<>
struct Codec< Mpls::FwdEqvClass > {
   using Fec = Mpls::FwdEqvClass;
   static constexpr U32 maxBytes = 22;
   static void describe( Skein::MsgFormatString & format ) {
      format.choice( 3 );
      format.when( Fec::prefixTag );
      Codec< Lumo::IpGenPrefix >::describe( format );
      format.put( Skein::Item::end );
      format.when( Fec::wordsTag );
      format.put( "words(" );
      format.put( Skein::Item::u32 );
      format.put( "," );
      format.put( Skein::Item::u32 );
      format.put( ")" );
      format.put( Skein::Item::end );
      format.when( Fec::p2mpTag );
      format.put( "p2mp(" );
      Codec< Lumo::IpGenAddr >::describe( format );
      format.put( "," );
      format.put( Skein::Item::u32 );
      format.put( ")" );
      format.put( Skein::Item::end );
   }
   static void put( Skein::RingBuf & record, Fec const & value ) noexcept {
      record.put( U8( value.tag() ) );
      if ( value.tag() == Fec::prefixTag ) {
         Codec< Lumo::IpGenPrefix >::put( record, value.prefix() );
      } else if ( value.tag() == Fec::wordsTag ) {
         record.put( value.first() );
         record.put( value.second() );
      } else {
         Codec< Lumo::IpGenAddr >::put( record, value.root() );
         record.put( value.first() );
      }
   }
   static void text( SkeinConverter & line, Fec const & value ) { line << value.stringValue(); }
};

} // namespace Twain
