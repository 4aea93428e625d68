// Decodes the PDUs given on the command line, each an argument in hexadecimal, and prints what the library
// makes of them. The exit status is 0 if all was good, 1 if something was bad, 2 for an argument that is no
// hexadecimal.
//
//     decode_hex "0001 001e 0a000001 0000  0100 0014 00000001  0400 0004 000f 0000  0401 0004 0a000001"

#include <Ldp/LdpUtils.h>

#include <cstdio>
#include <string_view>
#include <vector>

namespace {

int digitValue( char digit ) {
   std::string_view const digits = "0123456789abcdef";
   char const lower = digit >= 'A' && digit <= 'F' ? char( digit + ( 'a' - 'A' ) ) : digit;
   auto const at = digits.find( lower );
   return at == digits.npos ? -1 : int( at );
}

/// The octets of a text of digit pairs with blanks among them; false if it is anything else.
bool octetsOf( std::string_view text, std::vector< U8 > & octets ) {
   for ( std::size_t i = 0; i < text.size(); ++i ) {
      if ( text[i] == ' ' ) continue;
      if ( i + 1 == text.size() ) return false;
      int const high = digitValue( text[i] );
      int const low = digitValue( text[++i] );
      if ( high < 0 || low < 0 ) return false;
      octets.push_back( U8( high << 4 | low ) );
   }
   return true;
}

/// Prints the verdict and the text of a PDU and of each message in it; true if all of it is good.
bool decode( Vorn::Ptr< Lumo::Pkt > const & pkt ) {
   // Two kinds of input end or hang the process that parses them. Octets from elsewhere are never parsed
   // unseen.
   if ( auto const fatal = Ldp::ldpPduGuard( pkt, 0 ) ) {
      std::printf( "fatal: %s: %s\n", valueToStrep( fatal.statusCode() ).charPtr(),
                   fatal.reason().charPtr() );
      return false;
   }

   auto const pdu = Ldp::ldpPduParserFactory( pkt, 0 );
   if ( !pdu->validLdpPdu() ) {
      std::printf( "bad PDU: %s: %s\n", valueToStrep( pdu->statusCode() ).charPtr(),
                   pdu->reason().charPtr() );
      return false;
   }

   std::printf( "PDU of %s, %u message(s)\n", pdu->ldpIdentifier().stringValue().charPtr(),
                pdu->messageNum() );
   bool good = true;
   for ( U32 i = 0; i < pdu->messageNum(); ++i ) {
      auto const msg = Ldp::ldpMsgParserGet( pkt, pdu->messageOffset( i ) );
      std::printf( "%s: %s\n", valueToStrep( msg->statusCode() ).charPtr(), msg->stringValue().charPtr() );
      good = good && msg->validMsg();
   }
   return good;
}

} // namespace

int main( int argc, char ** argv ) {
   if ( argc < 2 ) {
      std::fprintf( stderr, "usage: %s HEX...\n", argv[0] );
      return 2;
   }
   bool good = true;
   for ( int i = 1; i < argc; ++i ) {
      std::vector< U8 > octets;
      if ( !octetsOf( argv[i], octets ) ) {
         std::fprintf( stderr, "%s: not pairs of hexadecimal digits: %s\n", argv[0], argv[i] );
         return 2;
      }
      good = decode( Vorn::newObject< Lumo::Pkt >( octets.data(), octets.size() ) ) && good;
   }
   return good ? 0 : 1;
}
