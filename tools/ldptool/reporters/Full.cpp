// All that is known of a message, below its PDU.
#include "reporters/Full.h"

#include "messages/Fault.h"
#include "text/Words.h"

namespace LdpTool {

namespace {

using Json = FullReporter::Json;

/// The octets for which the code points of a JSON text stand.
std::string octetsOf( std::string const & utf8 ) {
   std::string octets;
   for ( std::size_t i = 0; i < utf8.size(); ++i ) {
      auto const lead = static_cast< unsigned char >( utf8[i] );
      if ( lead < 0x80 || i + 1 == utf8.size() ) {
         octets += utf8[i];
      } else {
         octets += char( ( lead & 0x03 ) << 6 | ( utf8[++i] & 0x3f ) );
      }
   }
   return octets;
}

/// Numbers of a registry, which everybody writes in hexadecimal.
bool isTypeNumber( std::string const & key ) {
   return key == "typeValue" || key == "refMsgType" || key == "tlv" || key == "type";
}

void print( Output & out, std::string const & key, Json const & value ) {
   char const * separator = "";
   if ( value.is_object() ) {
      for ( auto const & [name, member] : value.items() ) {
         out << separator << name << ' ';
         print( out, name, member );
         separator = ", ";
      }
   } else if ( value.is_array() ) {
      out << '[';
      for ( auto const & member : value ) {
         out << separator;
         print( out, key, member );
         separator = member.is_object() ? "; " : ", ";
      }
      out << ']';
   } else if ( value.is_string() ) {
      // Quotes show where a text ends. They are for texts alone, which may have blanks.
      std::string const text = octetsOf( value.get_ref< std::string const & >() );
      bool const quoted = text.empty() || text.find( ' ' ) != std::string::npos;
      if ( quoted ) out << '"';
      out.escaped( text );
      if ( quoted ) out << '"';
   } else if ( value.is_number_unsigned() && isTypeNumber( key ) ) {
      out.hex( value.get< std::uint64_t >(), 4 );
   } else {
      out << value.dump();
   }
}

} // namespace

/// The fields of the message or PDU in hand, as JSON.
Json FullReporter::taken() {
   jsonOut_.flush();
   Json const object = Json::parse( json_ );
   json_.clear();
   return object;
}

/// The fields but the text, which is printed for itself: those of the PDU, or of the message in it.
void FullReporter::fields( Json const & object, bool ofMessage ) {
   bool inMessage = false;
   bool begun = false; // a line
   auto const endLine = [&] {
      if ( begun ) out_ << '\n';
      begun = false;
   };
   for ( auto const & [key, value] : object.items() ) {
      inMessage = inMessage || key == "type";
      if ( key == "text" || inMessage != ofMessage ) continue;
      if ( value.is_structured() ) endLine();
      out_ << ( begun ? ", " : "   " ) << key << ' ';
      print( out_, key, value );
      begun = true;
      if ( value.is_structured() ) endLine();
   }
   endLine();
}

void FullReporter::onPdu( Pdu const & pdu ) {
   out_ << numberedOriginText( pdu.origin ) << ' ' << pdu.pdu.parser()->header()->stringValue().view()
        << '\n';
   reporter_.onPdu( pdu );
   pduPrinted_ = false;
}

void FullReporter::onMessage( Message const & message ) {
   reporter_.onMessage( message );
   Json const object = taken();
   if ( !pduPrinted_ ) fields( object, false );
   pduPrinted_ = true;
   out_.escaped( message.parser.stringValue().view(), true ) << '\n';
   if ( message.capability ) out_.escaped( message.capability->stringValue().view(), true ) << '\n';
   if ( message.verdict == Verdict::unsupported ) out_ << "   Not supported here\n";
   fields( object, true );
}

void FullReporter::onBadPdu( Pdu const & pdu ) {
   ( out_ << numberedOriginText( pdu.origin ) << ' ' ).escaped( badPduText( pdu.pdu ).view(), true )
        << faultOf( pdu ) << '\n';
   reporter_.onBadPdu( pdu );
   fields( taken(), false );
}

void FullReporter::onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) {
   out_ << numberedOriginText( pdu.origin )
        << ( verdictOf( fatal ) == Verdict::wrong ? " Fatal LDP PDU" : " LDP PDU not supported here" )
        << ", not parsed: " << fatalName( fatal ) << " at offset " << fatal.offset << '\n';
   reporter_.onFatalPdu( pdu, fatal );
   fields( taken(), false );
}

} // namespace LdpTool
