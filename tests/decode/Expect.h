/// \file
/// Expectations that the decoder tests share: assertions by their text, and messages as rows of a table.
#pragma once

#include "Wire.h"

#include "Ldp/LdpMsgParser.h"

#include <csignal>
#include <gtest/gtest.h>

namespace Wire {

/// What the C runtime prints for a failed assertion of that text, as a regular expression.
inline std::string assertionOf( std::string_view text ) {
   std::string pattern = "Assertion `";
   for ( char const c : text ) {
      if ( std::string_view( "\\^$.|?*+()[]{}" ).find( c ) != std::string_view::npos ) pattern += '\\';
      pattern += c;
   }
   return pattern + "' failed";
}

/// Offset of the messages under test: odd, so that no field is aligned, and not the packet's front, so that
/// an offset counted from anywhere else shows.
constexpr U32 msgOffset = 5;

/// The packet with that message at `msgOffset`, ending with it.
inline Vorn::Ptr< Lumo::Pkt > msgPkt( std::string_view message ) {
   return pkt( repeat( msgOffset, 0xff ) + Hex( message ) );
}

template< class Parser >
using Factory = Vorn::Ptr< Parser > ( * )( Vorn::Ptr< Lumo::Pkt > const &, U32 );

template< class Parser >
Vorn::Ptr< Parser > parse( Factory< Parser > factory, std::string_view message ) {
   return factory( msgPkt( message ), msgOffset );
}

/// Where in its packet a view lies.
inline U32 offsetOf( Ldp::LdpMsgParser const & parser, void const * view ) {
   return U32( static_cast< U8 const * >( view ) - parser.pkt()->front() );
}

} // namespace Wire

/// The statement ends the process by that assertion.
#define EXPECT_ASSERTION( statement, text )                                                                  \
   EXPECT_EXIT( statement, ::testing::KilledBySignal( SIGABRT ), ::Wire::assertionOf( text ) )
