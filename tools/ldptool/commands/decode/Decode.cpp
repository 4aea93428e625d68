// `ldptool decode`: arguments, and what they put together.

#include "capture/Capture.h"
#include "capture/HexInput.h"
#include "commands/Commands.h"
#include "commands/Interruptible.h"
#include "commands/LimitOptions.h"
#include "messages/Decoder.h"
#include "reporters/Full.h"
#include "reporters/Json.h"
#include "reporters/Lines.h"
#include "reporters/Stats.h"
#include "text/Words.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <iostream>
#include <optional>

namespace LdpTool {

namespace {

constexpr char const * examples = R"(
Examples:
  ldptool decode session.pcap                       one line for each message
  ldptool decode --full session.pcapng              all that each message holds
  ldptool decode --json session.pcap | jq .fec      one JSON object for each message
  ldptool decode --filter LabelMapping,LabelWithdraw session.pcap
  ldptool decode --stats session.pcap               who sent what, what was bad and why
  ldptool decode -i eth0                            listen
  echo 0001000e 0a000001 0000 0201 0004 00000007 | ldptool decode --hex -

Exit status: 0 when all was good, 1 when a message was bad, 2 for wrong arguments or
an input that cannot be read, 3 when nothing was bad but something is not supported here.)";

struct Options {
   std::string file;
   std::string interface;
   std::string hexFile;
   bool full = false;
   bool json = false;
   bool count = false;
   bool stats = false;
   Selection selection;
   LimitOptions limits;
};

/// Prints nothing: the messages are only counted.
class Counter : public Reporter {
 public:
   void onMessage( Message const & ) override {}
   void onBadPdu( Pdu const & ) override {}
   void onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & ) override {}
};

std::string lowerCase( std::string text ) {
   std::transform( text.begin(), text.end(), text.begin(),
                   []( unsigned char c ) { return char( std::tolower( c ) ); } );
   return text;
}

// A message type by its name, with or without the Ldp in front, in any case; or by its number.
std::uint32_t messageType( std::string const & text ) {
   std::string const wanted = lowerCase( text );
   Vorn::VornType const & record = *vornTypeOf( Ldp::LdpMsgType() );
   for ( U32 i = 0; i < record.attributeNum; ++i ) {
      std::string const name = lowerCase( record.attributes[i].name );
      if ( wanted == name || "ldp" + wanted == name ) return record.attributes[i].id();
   }
   constexpr std::uint32_t largestType = 0x7fff;
   bool const hex = wanted.starts_with( "0x" );
   char const * const end = wanted.data() + wanted.size();
   std::uint32_t value = 0;
   auto const [stop, error] = std::from_chars( wanted.data() + ( hex ? 2 : 0 ), end, value, hex ? 16 : 10 );
   if ( error != std::errc() || stop != end || value > largestType ) {
      throw CLI::ValidationError( "--filter", "no message type is called '" + text + "'" );
   }
   return value;
}

std::unique_ptr< Reporter > makeReporter( Options const & options, Output & out ) {
   if ( options.json ) return std::make_unique< JsonReporter >( out, options.full );
   if ( options.full ) return std::make_unique< FullReporter >( out );
   if ( options.count ) return std::make_unique< Counter >();
   return std::make_unique< LineReporter >( out );
}

void decodeHex( std::string const & name, Decoder & decoder ) {
   if ( name == "-" ) return readHex( std::cin, "standard input", decoder );
   std::ifstream file( name );
   if ( !file ) throw InputError( name + ": " + std::strerror( errno ) );
   readHex( file, name, decoder );
}

int decode( Options const & options ) {
   try {
      Output out( stdout );
      StatsReporter stats;
      std::unique_ptr< Reporter > const other = options.stats ? nullptr : makeReporter( options, out );
      Decoder decoder( options.stats ? stats : *other, options.selection, out );
      std::optional< Capture > capture;
      std::string failure; // what was read before it counts
      try {
         if ( !options.hexFile.empty() ) {
            decodeHex( options.hexFile, decoder );
         } else {
            capture = options.file.empty() ? Capture::interface( options.interface, options.limits.capture )
                                           : Capture::file( options.file, options.limits.capture );
            std::optional< Interruptible > ending;
            if ( options.file.empty() ) ending.emplace( *capture );
            capture->run( decoder );
         }
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      if ( options.stats ) stats.print( out, capture ? &capture->counters() : nullptr, decoder.gaps() );
      if ( options.count ) out << decoder.messages() << '\n';
      out.flush();
      if ( capture && capture->counters().fragments ) {
         std::cerr << "ldptool: " << capture->counters().fragments << " IP fragments, "
                   << capture->counters().reassembled << " packets put together\n";
      }
      if ( capture ) {
         std::string const text = turnedAwayText( {}, capture->counters() );
         if ( !text.empty() ) std::cerr << "ldptool: " << text << '\n';
      }
      if ( !failure.empty() ) {
         std::cerr << "ldptool: " << failure << '\n';
         return exitUsage;
      }
      return decoder.wrong() ? exitBadMessage : decoder.unsupported() ? exitUnsupported : exitGood;
   } catch ( OutputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
      return exitUsage;
   }
}

} // namespace

void addDecodeCommand( CLI::App & app ) {
   auto const options = std::make_shared< Options >();
   auto const types = std::make_shared< std::vector< std::string > >();
   CLI::App & command = *app.add_subcommand( "decode", "Print the LDP messages of a capture." );
   command.add_option( "FILE", options->file, "capture to read, pcap or pcapng; - is standard input" );
   command.add_option( "-i,--interface", options->interface, "listen on this interface" )
        ->type_name( "IFACE" );
   command
        .add_option( "--hex", options->hexFile,
                     "read a packet in hexadecimal from each line; - is standard input" )
        ->type_name( "FILE" );
   auto * const full = command.add_flag( "--full", options->full, "print all that each message holds" );
   auto * const json = command.add_flag( "--json", options->json, "print a JSON object for each message" );
   auto * const count = command.add_flag( "--count", options->count, "print only the number of messages" );
   auto * const stats = command.add_flag( "--stats", options->stats, "print only tables of what there was" );
   count->excludes( full )->excludes( json );
   stats->excludes( full )->excludes( json )->excludes( count );
   command.add_option( "--filter", *types, "look at messages of these types only, and at bad PDUs" )
        ->type_name( "TYPE,..." )
        ->delimiter( ',' )
        ->allow_extra_args( false );
   command.add_flag( "--bad", options->selection.badOnly, "print only what is bad or not supported here" );
   addLimitOption( command, options->limits );
   command.footer( examples );
   command.callback( [options, types] {
      int const inputs = !options->file.empty() + !options->interface.empty() + !options->hexFile.empty();
      if ( inputs != 1 ) throw CLI::ValidationError( "decode", "needs one of FILE, -i IFACE and --hex FILE" );
      for ( std::string const & type : *types )
         options->selection.types.insert( messageType( type ) );
      throw CLI::RuntimeError( decode( *options ) );
   } );
}

} // namespace LdpTool
