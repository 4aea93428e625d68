/// \file
/// The words of verdicts.txt and lengths.txt: columns, TLVs, verdicts.
#pragma once

#include "Wire.h"

#include "Ldp/LdpEnums.h"
#include "Vorn/Strep.h"

#include <sstream>

namespace Wire {

/// Columns between bars, without the blanks around them; those that are not there are empty.
struct Row {
   std::string name, octets, verdict, text;

   explicit Row( std::string const & line ) {
      std::istringstream columns( line );
      for ( std::string * column : { &name, &octets, &verdict, &text } ) {
         std::getline( columns >> std::ws, *column, '|' );
         while ( column->ends_with( ' ' ) )
            column->pop_back();
      }
   }
};

/// `STATUS: REASON`; nothing is success.
struct Verdict {
   Ldp::LdpStatusCode status = Ldp::success;
   std::string reason;

   explicit Verdict( std::string const & text ) {
      if ( text.empty() ) return;
      auto const colon = text.find( ':' );
      Vorn::strepToValue( text.substr( 0, colon ).c_str(), &status );
      reason = text.substr( std::min( colon + 2, text.size() ) );
   }
};

/// Octets with their repetitions written out.
inline Hex expanded( std::string text ) {
   for ( std::size_t star; ( star = text.find( '*' ) ) != std::string::npos; ) {
      std::size_t digits = 0;
      U32 const times = U32( std::stoul( text.substr( star + 1 ), &digits ) );
      text.replace( star - 2, 3 + digits, repeat( times, octets( text.substr( star - 2, 2 ) ).at( 0 ) ) );
   }
   std::erase( text, ',' );
   return text;
}

/// A TLV as the tables have it; without a type its octets are the value.
struct Tlv {
   U32 type = 0; ///< with its flag bits
   Hex value;
   Hex hex() const { return type ? tlv( type, value ) : value; }
};

inline Tlv tlvOf( std::string const & token ) {
   auto const equals = token.find( '=' );
   Tlv read{ 0, expanded( token.substr( equals + 1 ) ) };
   if ( equals == 0 ) return read;
   std::size_t at = 0;
   for ( ; token[at] == 'U' || token[at] == 'F'; ++at )
      read.type |= token[at] == 'U' ? uBit : fBit;
   Ldp::LdpTlvType type;
   Vorn::strepToValue( token.substr( at, equals - at ).c_str(), &type );
   read.type |= type;
   return read;
}

} // namespace Wire
