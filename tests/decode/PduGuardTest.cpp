// The guard against inputs that end or hang the process. Each row is not only asked about but also parsed:
// what passes in this process, what is refused in a child that must die of just that input.

#include "Expect.h"
#include "Table.h"

#include "Ldp/LdpUtils.h"

#include <fstream>
#include <map>
#include <sys/time.h>
#include <unistd.h>

using namespace Ldp;
using namespace Wire;

namespace {

using Result = LdpPduGuardResult;

// Where the PDUs are in the packets of this test.
constexpr U32 pduAt = 2;

/// Parses the PDU and each of its messages, and prints them.
void parseAll( Vorn::Ptr< Lumo::Pkt > const & packet ) {
   auto const pdu = ldpPduParserFactory( packet, pduAt );
   if ( pdu->validLdpPdu() ) {
      for ( U32 i = 0; i < pdu->messageNum(); ++i ) {
         ldpMsgParserGet( packet, pdu->messageOffset( i ) );
      }
   }
   pdu->stringValue();
}

/// The same in a process with 300 ms left.
void parseFor300ms( Vorn::Ptr< Lumo::Pkt > const & packet ) {
   itimerval left{};
   left.it_value.tv_usec = 300'000;
   setitimer( ITIMER_REAL, &left, nullptr );
   parseAll( packet );
   _exit( 0 );
}

/// A FEC TLV with a P2MP element of that many octets.
Hex p2mp( U32 octets ) {
   return tlv( fecTlv, "06 0001 04 0a000001" + u16( octets - 10 ) + repeat( octets - 10, 0 ) );
}

/// The PDUs of guard.txt.
class Reader {
 public:
   void letIs( std::string const & name, std::string const & token ) { lets_[name] = tlvOf( token ).hex(); }

   Hex pduOf( std::string const & text ) const {
      auto const begin = text.find( '>' );
      Hex const behind = begin == std::string::npos ? "" : text.substr( begin + 1 );
      std::istringstream words( text.substr( 0, begin ) );
      U32 version = 1, length = ~0u;
      Hex all, tlvs;
      LdpMsgType type{};
      U32 flags = 0;
      bool open = false;
      auto const close = [&] {
         if ( std::exchange( open, false ) ) all += msg( flags | type, 1, { std::exchange( tlvs, "" ) } );
      };
      for ( std::string word; words >> word; ) {
         if ( word.starts_with( "version=" ) ) {
            version = U32( std::stoul( word.substr( 8 ) ) );
         } else if ( word.starts_with( "length=" ) ) {
            length = U32( std::stoul( word.substr( 7 ) ) );
         } else if ( word == ";" ) {
            close();
         } else if ( word.ends_with( ':' ) ) {
            open = true;
            flags = word[0] == 'U' ? uBit : 0;
            Vorn::strepToValue( word.substr( flags ? 1 : 0, word.size() - ( flags ? 2 : 1 ) ).c_str(),
                                &type );
         } else {
            ( open ? tlvs : all ) += tokenOf( word );
         }
      }
      close();
      if ( all.empty() && length == ~0u ) return behind;
      if ( length == ~0u ) length = U32( 6 + octetNum( all ) );
      return pduLen( length, "10.0.0.1", 0, { all }, version ) + behind;
   }

 private:
   Hex tokenOf( std::string const & token ) const {
      if ( token.starts_with( "p2mp*" ) ) return p2mp( U32( std::stoul( token.substr( 5 ) ) ) );
      return token.find( '=' ) == std::string::npos ? lets_.at( token ) : tlvOf( token ).hex();
   }

   std::map< std::string, Hex > lets_;
};

void expectGuarded( Vorn::Ptr< Lumo::Pkt > const & packet, std::string const & verdict ) {
   auto const found = ldpPduGuard( packet, pduAt );
   static char const * const names[] = { "-", "wrappedUnit", "unboundedP2mpDump" };
   EXPECT_EQ( names[found.input] + ( found ? "@" + std::to_string( found.offset - pduAt ) : "" ), verdict );
   switch ( found.input ) {
   case Result::none: parseAll( packet ); break;
   case Result::wrappedUnit: EXPECT_ASSERTION( parseAll( packet ), "header->totalLength() > 0" ); break;
   case Result::unboundedP2mpDump:
      EXPECT_EXIT( parseFor300ms( packet ), testing::KilledBySignal( SIGALRM ), "" );
   }
}

TEST( PduGuard, saysWhatToAnswer ) {
   EXPECT_EQ( Result{}.statusCode(), success );
   EXPECT_EQ( Result{}.reason(), "" );
   EXPECT_EQ( ( Result{ Result::wrappedUnit, 10 } ).statusCode(), badTlvLength );
   EXPECT_EQ( ( Result{ Result::wrappedUnit, 10 } ).reason(), "Msg/Tlv length field of 65532, offset: 10" );
   EXPECT_EQ( ( Result{ Result::unboundedP2mpDump, 22 } ).statusCode(), internalError );
   EXPECT_EQ( ( Result{ Result::unboundedP2mpDump, 22 } ).reason(),
              "FEC P2MP Element with 256 octets or more of its FEC TLV, offset: 22" );
}

TEST( PduGuard, findsWhatIsFatal ) {
   std::ifstream table( LDP_TEST_EXPECTED "/../guard.txt" );
   Reader reader;
   std::size_t rows = 0;
   for ( std::string line; std::getline( table, line ); ) {
      if ( line.empty() || line[0] == '#' ) continue;
      if ( line.find( '|' ) == std::string::npos ) {
         std::istringstream words( line );
         std::string let, name, token;
         words >> let >> name >> token;
         reader.letIs( name, token );
         continue;
      }
      Row const row( line );
      SCOPED_TRACE( row.name + ": " + row.octets );
      expectGuarded( pkt( repeat( pduAt, 0xff ) + reader.pduOf( row.octets ) ), row.verdict );
      ++rows;
   }
   EXPECT_GT( rows, 90u );
}

TEST( PduGuard, assertsItsArguments ) {
   EXPECT_ASSERTION( ldpPduGuard( nullptr, 0 ), "pkt" );
   EXPECT_ASSERTION( ldpPduGuard( pkt( "00" ), 2 ), "pkt->frontBytes() >= offset" );
   EXPECT_FALSE( ldpPduGuard( pkt( "00" ), 1 ) );
}

} // namespace
