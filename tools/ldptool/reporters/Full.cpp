// All that is known of a message, below its PDU.
#include "reporters/Full.h"

#include "messages/Fault.h"
#include "text/Words.h"

#include <charconv>

namespace LdpTool {

namespace {

using Json = rapidjson::Value;

/// The octets for which the code points of a JSON text stand.
std::string octetsOf( std::string_view utf8 ) {
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
bool isTypeNumber( std::string_view key ) {
   return key == "typeValue" || key == "refMsgType" || key == "tlv" || key == "type";
}

std::string_view viewOf( Json const & text ) { return { text.GetString(), text.GetStringLength() }; }

// Numbers are as they were written.
void print( Output & out, std::string_view key, Json const & value ) {
   char const * separator = "";
   if ( value.IsObject() ) {
      for ( auto const & [name, member] : value.GetObject() ) {
         out << separator << viewOf( name ) << ' ';
         print( out, viewOf( name ), member );
         separator = ", ";
      }
   } else if ( value.IsArray() ) {
      out << '[';
      for ( auto const & member : value.GetArray() ) {
         out << separator;
         print( out, key, member );
         separator = member.IsObject() ? "; " : ", ";
      }
      out << ']';
   } else if ( value.IsBool() ) {
      out << ( value.GetBool() ? "true" : "false" );
   } else {
      std::string const text = octetsOf( viewOf( value ) );
      std::uint64_t number = 0;
      auto const [stop, error] = std::from_chars( text.data(), text.data() + text.size(), number );
      if ( isTypeNumber( key ) && error == std::errc() && stop == text.data() + text.size() ) {
         out.hex( number, 4 );
         return;
      }
      // Quotes show where a text ends. They are for texts alone, which may have blanks.
      bool const quoted = text.empty() || text.find( ' ' ) != std::string::npos;
      if ( quoted ) out << '"';
      out.escaped( text );
      if ( quoted ) out << '"';
   }
}

} // namespace

/// The fields of the message or PDU in hand, as JSON.
rapidjson::Document FullReporter::taken() {
   jsonOut_.flush();
   rapidjson::Document object;
   object.Parse< rapidjson::kParseNumbersAsStringsFlag >( json_.data(), json_.size() );
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
   for ( auto const & [name, value] : object.GetObject() ) {
      std::string_view const key = viewOf( name );
      inMessage = inMessage || key == "type";
      if ( key == "text" || inMessage != ofMessage ) continue;
      if ( value.IsObject() || value.IsArray() ) endLine();
      out_ << ( begun ? ", " : "   " ) << key << ' ';
      print( out_, key, value );
      begun = true;
      if ( value.IsObject() || value.IsArray() ) endLine();
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
   rapidjson::Document const object = taken();
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
