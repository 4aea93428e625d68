// `ldptool decode`: arguments, and what they put together.

#include "capture/Capture.h"
#include "capture/HexInput.h"
#include "commands/Commands.h"
#include "commands/InputOptions.h"
#include "commands/Interruptible.h"
#include "messages/Decoder.h"
#include "reporters/Full.h"
#include "reporters/Json.h"
#include "reporters/Lines.h"
#include "reporters/Stats.h"
#include "text/Words.h"

#include <CLI/CLI.hpp>

#include <cerrno>
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
   std::string hexFile;
   bool full = false;
   bool json = false;
   bool count = false;
   bool stats = false;
   InputOptions input;
};

/// Prints nothing: the messages are only counted.
class Counter : public Reporter {
 public:
   void onMessage( Message const & ) override {}
   void onBadPdu( Pdu const & ) override {}
   void onFatalPdu( Pdu const &, Ldp::LdpPduGuardResult const & ) override {}
};

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
      Decoder decoder( options.stats ? stats : *other, options.input.selection, out );
      std::optional< Capture > capture;
      std::string failure; // what was read before it counts
      try {
         if ( !options.hexFile.empty() ) {
            decodeHex( options.hexFile, decoder );
         } else {
            capture = options.input.open();
            std::optional< Interruptible > ending;
            if ( options.input.live() ) ending.emplace();
            Interruptible::Ends const ends( ending ? &*capture : nullptr );
            capture->run( decoder, options.input.range );
         }
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      if ( options.stats ) stats.print( out, capture ? &capture->counters() : nullptr, decoder.gaps() );
      if ( options.count ) out << decoder.messages() << '\n';
      out.flush();
      if ( capture && failure.empty() ) tellInput( capture->counters(), {} );
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
   CLI::App & command = *app.add_subcommand( "decode", "Print the LDP messages of a capture." );
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
   command.add_flag( "--bad", options->input.selection.badOnly,
                     "print only what is bad or not supported here" );
   addInputOptions( command, options->input );
   command.footer( examples );
   command.callback( [options] {
      int const inputs =
           !options->input.file.empty() + !options->input.interface.empty() + !options->hexFile.empty();
      if ( inputs != 1 ) throw CLI::ValidationError( "decode", "needs one of FILE, -i IFACE and --hex FILE" );
      options->input.selection.fecsOnly = true;
      options->input.selection.speaker = options->input.peer;
      throw CLI::RuntimeError( decode( *options ) );
   } );
}

} // namespace LdpTool
