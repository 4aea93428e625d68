// The verdicts of verdicts.txt, each held against what the parser of the message or of the FEC TLV says.

#include "Expect.h"
#include "Reflected.h"
#include "Table.h"

#include "Ldp/LdpUtils.h"
#include "Vorn/GenericIf.h"

#include <fstream>
#include <iterator>
#include <map>

using namespace Ldp;
using Test::Reflected;
using namespace Wire;

namespace {

using Made = Vorn::Ptr< LdpMsgParser >;

template< auto factory >
Made make( Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset ) {
   return factory( pkt, offset );
}

std::map< LdpMsgType, Made ( * )( Vorn::Ptr< Lumo::Pkt > const &, U32 ) > const factories{
   { LdpNotification, make< ldpNotificationMsgParserFactory > },
   { LdpHello, make< ldpHelloMsgParserFactory > },
   { LdpInit, make< ldpInitMsgParserFactory > },
   { LdpCapability, make< ldpCapabilityMsgParserFactory > },
   { LdpAddress, make< ldpAddressMsgParserFactory > },
   { LdpAddressWithdraw, make< ldpAddressWithdrawMsgParserFactory > },
   { LdpLabelMapping, make< ldpLabelMappingMsgParserFactory > },
   { LdpLabelRequest, make< ldpLabelRequestMsgParserFactory > },
   { LdpLabelWithdraw, make< ldpLabelWithdrawMsgParserFactory > },
   { LdpLabelRelease, make< ldpLabelReleaseMsgParserFactory > },
   { LdpLabelAbortReq, make< ldpLabelAbortReqMsgParserFactory > },
};

void expectMessage( LdpMsgType type, std::string const & prefix, Hex const & tlvs, Row const & row ) {
   SCOPED_TRACE( valueToStrep( type ) );
   auto const parser = factories.at( type )( msgPkt( msg( type, 7, { tlvs } ) ), msgOffset );
   bool const good = row.verdict.empty();
   EXPECT_EQ( parser->statusCode(), Verdict( row.verdict ).status );
   EXPECT_EQ( parser->reason(), good && type == LdpInit ? "success" : Verdict( row.verdict ).reason.c_str() );
   EXPECT_EQ( parser->validMsg(), good );
   auto const & initialized = *parser->fwkType()->attribute( "initialized" );
   EXPECT_EQ( Vorn::GenericIf::attributeText( parser.ptr(), *parser->fwkType(), initialized ), "True" );
   if ( good ) return;
   EXPECT_EQ( parser->stringValue(), ( prefix + " " + Verdict( row.verdict ).reason ).c_str() );
}

/// The views that a parser has, in the order of its record, each at its offset from the message; also its FEC
/// parser.
std::string viewsOf( LdpMsgParser const & parser ) {
   std::string views;
   auto const add = [&]( char const * name, std::ptrdiff_t at ) {
      views += ( views.empty() ? "" : " " ) + std::string( name ) + "@" + std::to_string( at );
   };
   Reflected const record( Reflected::Object( const_cast< LdpMsgParser * >( &parser ) ) );
   for ( Vorn::VornAttr const * attr = parser.fwkType()->attributes; attr->name; ++attr ) {
      if ( !attr->type->isOverlay() || attr->keyed() || attr->name == std::string( "msgHdr" ) ) continue;
      if ( auto const * const view = record.view( attr->name ).address() )
         add( attr->name, static_cast< U8 const * >( view ) - parser.pkt()->front() - msgOffset );
   }
   if ( auto const fec = parser.ldpFecTlvParser() ) add( "ldpFecTlvParser", fec->offset() - msgOffset );
   return views;
}

void expectViews( LdpMsgType type, U32 id, Hex const & tlvs, Row const & row ) {
   auto const parser = factories.at( type )( msgPkt( msg( type, id, { tlvs } ) ), msgOffset );
   std::string text( parser->stringValue().view() );
   for ( std::size_t at; ( at = text.find( '\n' ) ) != std::string::npos; )
      text.replace( at, 1, "\\n" );
   EXPECT_EQ( viewsOf( *parser ), row.verdict );
   EXPECT_EQ( text, row.text );
}

void expectFec( Row const & row ) {
   auto const parser =
        ldpFecTlvParserFactory( pkt( "ffffff" + tlv( fecTlv, expanded( row.octets ) ) ), 3, nullptr );
   EXPECT_EQ( parser->statusCode(), Verdict( row.verdict ).status );
   EXPECT_EQ( parser->valid(), row.verdict.empty() );
   EXPECT_EQ( parser->reason(), Verdict( row.verdict ).reason.c_str() );
   EXPECT_EQ( parser->stringValue(), row.text.c_str() );
   EXPECT_EQ( parser->hasWildcardFecElement(), row.text.find( "Wildcard" ) != std::string::npos );
}

/// The same FEC in all five label messages; a peer is answered by how they differ.
void expectAttitudes( Row const & row ) {
   struct Message {
      LdpMsgType type;
      char const * wildcard; ///< the reason of the three that allow none
      Hex rest;              ///< what it needs besides the FEC
   };
   static Message const messages[] = {
      { LdpLabelMapping, "LDP Mapping Msg can not have Wildcard FEC TLV", tlv( genLabelTlv, "00000064" ) },
      { LdpLabelRequest, "LDP Request Msg can not have Wildcard FEC TLV", "" },
      { LdpLabelAbortReq, "LDP Abort Msg can not have Wildcard FEC TLV",
        tlv( labelReqMsgIdTlv, "00000009" ) },
      { LdpLabelWithdraw, nullptr, "" },
      { LdpLabelRelease, nullptr, "" },
   };
   Verdict const own( row.verdict );
   std::istringstream words( row.text );
   std::string wildcard, status;
   words >> wildcard;
   for ( Message const & message : messages ) {
      SCOPED_TRACE( valueToStrep( message.type ) );
      Hex const tlvs = tlv( fecTlv, expanded( row.octets ) ) + message.rest;
      auto const parser = ldpMsgParserGet( msgPkt( msg( message.type, 7, { tlvs } ) ), msgOffset );
      LdpFecTlvParser const & fec = *parser->ldpFecTlvParser();
      EXPECT_EQ( fec.statusCode(), own.status );
      EXPECT_EQ( fec.valid(), own.status == success );
      EXPECT_EQ( fec.reason(), own.reason.c_str() );
      EXPECT_EQ( fec.hasWildcardFecElement(), wildcard == "wildcard" );
      words >> status;
      EXPECT_EQ( valueToStrep( parser->statusCode() ), status.c_str() );
      EXPECT_EQ( parser->reason(), status == "success"     ? ""
                                   : own.status == success ? message.wildcard
                                                           : own.reason.c_str() );
      EXPECT_TRUE( parser->msgFecTlv() ); // stored in any case
   }
}

void expectAnyMessage( Row const & row ) {
   auto const parser = parse( ldpMsgParserFactory, expanded( row.octets ) );
   EXPECT_EQ( parser->statusCode(), Verdict( row.verdict ).status );
   EXPECT_EQ( parser->reason(), Verdict( row.verdict ).reason.c_str() );
   EXPECT_EQ( parser->validMsg(), row.verdict.empty() );
   EXPECT_EQ( parser->tlvNum(), std::stoul( row.text ) );
   if ( parser->validMsg() ) return;
   EXPECT_EQ( parser->stringValue(), ( "Message Error: " + Verdict( row.verdict ).reason ).c_str() );
}

/// The octets in front of `>` and those behind it.
std::pair< Hex, Hex > cutAt( std::string const & text ) {
   auto const begin = text.find( '>' );
   if ( begin == std::string::npos ) return { "", expanded( text ) };
   return { text.substr( 0, begin ), expanded( text.substr( begin + 1 ) ) };
}

void expectPdu( Row const & row ) {
   auto const [before, rest] = cutAt( row.octets );
   auto const parser = ldpPduParserFactory( pkt( before + rest ), U32( octetNum( before ) ) );
   EXPECT_EQ( parser->statusCode(), Verdict( row.verdict ).status );
   EXPECT_EQ( parser->reason(), Verdict( row.verdict ).reason.c_str() );
   EXPECT_EQ( parser->validLdpPdu(), row.verdict.empty() );
   EXPECT_EQ( parser->messageNum(), std::stoul( row.text ) );
   EXPECT_FALSE( parser->initialized() ); // nothing sets it
   if ( parser->validLdpPdu() ) return;
   EXPECT_EQ( parser->stringValue(), ( "Error LDP PDU: " + Verdict( row.verdict ).reason ).c_str() );
}

void expectWalk( Row const & row ) {
   auto const [before, rest] = cutAt( row.octets );
   std::istringstream numbers( row.text );
   char colon;
   U32 size;
   numbers >> size >> colon;
   auto const group = Vorn::newObject< LdpTlvGroupParser >( Vorn::Name() );
   group->pktIs( pkt( before + rest ) );
   group->offsetIs( U32( octetNum( before ) ) );
   group->sizeIs( size );
   EXPECT_TRUE( group->parseTlvGroup() ); // in every case
   EXPECT_EQ( group->valid(), row.verdict.empty() );
   EXPECT_EQ( group->statusCode(), row.verdict.empty() ? success : badTlvLength );
   EXPECT_EQ( group->reason(), row.verdict.c_str() );
   std::vector< U32 > const units( std::istream_iterator< U32 >( numbers ), {} );
   EXPECT_EQ( group->tlvNum(), units.size() );
   for ( U32 i = 0; i < units.size(); ++i )
      EXPECT_EQ( group->tlvOffset( i ), units[i] );
}

void expectBody( Row const & row ) {
   Octets laid = octets( "00" + row.octets ); // at an odd address, with nothing behind it
   auto * const view = reinterpret_cast< Vorn::NrcPtrInterface * >( laid.data() + 1 );
   Reflected const body( view, Test::typeOf( "Ldp::" + row.name ) );
   LdpStatusCode status = internalError;
   EXPECT_EQ( body.op( "validate", Vorn::GenericIf::write, &status, nullptr, nullptr ),
              Vorn::GenericIf::done );
   EXPECT_EQ( status, Verdict( row.verdict ).status );
   EXPECT_EQ( body.text( "stringValue" ), "'" + row.text + "'" );
}

TEST( Verdicts, AreAsWrittenDown ) {
   std::ifstream lines( LDP_TEST_EXPECTED "/../verdicts.txt" );
   std::map< std::string, Hex > lets;
   std::map< LdpMsgType, std::string > messages; // those that the rows are for, with the text of a refusal
   std::string section, last;
   std::size_t rows = 0;
   for ( std::string line; std::getline( lines, line ); ) {
      if ( line.empty() || line[0] == '#' ) continue;
      if ( line.find( '|' ) != std::string::npos ) {
         last = "row";
         ++rows;
         Row const row( line );
         SCOPED_TRACE( section + ": " + row.name );
         if ( section == "fec" ) expectFec( row );
         if ( section == "attitudes" ) expectAttitudes( row );
         if ( section == "any" ) expectAnyMessage( row );
         if ( section == "pdu" ) expectPdu( row );
         if ( section == "walk" ) expectWalk( row );
         if ( section == "body" ) expectBody( row );
         if ( section != "message" && section != "views" ) continue;
         Hex tlvs;
         U32 id = 7;
         std::istringstream tokens( row.octets );
         for ( std::string token; tokens >> token; )
            if ( token[0] == '#' ) {
               id = U32( std::stoul( token.substr( 1 ) ) );
            } else {
               tlvs += token.find( '=' ) == std::string::npos ? lets.at( token ) : tlvOf( token ).hex();
            }
         for ( auto const & [type, prefix] : messages ) {
            if ( section == "views" ) {
               expectViews( type, id, tlvs, row );
            } else {
               expectMessage( type, prefix, tlvs, row );
            }
         }
         continue;
      }
      std::istringstream words( line );
      std::string name, rest;
      words >> section >> name;
      std::getline( words >> std::ws, rest );
      if ( section == "let" ) lets[name] = tlvOf( rest ).hex();
      if ( section != "message" && section != "views" ) continue;
      if ( std::exchange( last, section ) != section ) messages.clear(); // else they share their rows
      LdpMsgType type;
      Vorn::strepToValue( name.c_str(), &type );
      messages[type] = rest;
   }
   EXPECT_GT( rows, 420u );
}

} // namespace
