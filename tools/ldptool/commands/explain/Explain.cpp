// `ldptool explain`: what became of each pair of speakers, and why.
#include "capture/Capture.h"
#include "commands/Commands.h"
#include "commands/LimitOptions.h"
#include "commands/SpeakerOption.h"
#include "findings/Account.h"
#include "messages/Decoder.h"

#include <CLI/CLI.hpp>

#include <iostream>
#include <memory>

namespace LdpTool {

namespace {

constexpr char const * examples = R"(
For each pair of speakers: hellos, connection, Initialization, KeepAlive and session, how far
they came and when they ended; behind each ! a finding, the frames that prove it, and what to
look at.

Examples:
  ldptool explain session.pcap
  ldptool explain --peer 10.0.0.2 session.pcap

Exit status: 0 when nothing was found, 1 when something was, 2 for wrong arguments or an
input that cannot be read.)";

struct ExplainOptions {
   std::string file;
   std::optional< Ldp::LdpIdentifier > peer;
   LimitOptions limits;
};

int explain( ExplainOptions const & options ) {
   std::string failure;
   std::size_t found = 0;
   try {
      auto const output = std::make_unique< Output >( stdout );
      auto const network = networkFactory( Vorn::Name( "network" ) );
      Monitor monitor( *network, options.limits.monitor, options.limits.capture.flows, Monitor::compact );
      Evidence evidence( monitor );
      Decoder decoder( evidence, Selection(), *output );
      CaptureCounters counters;
      try {
         Capture capture = Capture::file( options.file, options.limits.capture );
         capture.run( decoder );
         counters = capture.counters();
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      std::string const text = turnedAwayText( monitor.turnedAway(), counters );
      if ( !text.empty() ) std::cerr << "ldptool: " << text << '\n';
      found = printAccounts( *output, evidence, *network, monitor, options.peer );
      output->flush();
   } catch ( OutputError const & error ) {
      failure = error.what();
   }
   if ( failure.empty() ) return found ? exitBadMessage : exitGood;
   std::cerr << "ldptool: " << failure << '\n';
   return exitUsage;
}

} // namespace

void addExplainCommand( CLI::App & app ) {
   auto const options = std::make_shared< ExplainOptions >();
   CLI::App & command =
        *app.add_subcommand( "explain", "Say what became of each pair of speakers, and why." );
   command.add_option( "FILE", options->file, "capture to read, pcap or pcapng; - is standard input" )
        ->required();
   command
        .add_option_function< std::string >(
             "--peer", [options]( std::string const & text ) { options->peer = speakerOf( "--peer", text ); },
             "only pairs that this speaker is one of" )
        ->type_name( "ID" );
   addLimitOption( command, options->limits );
   command.footer( examples );
   command.callback( [options] { throw CLI::RuntimeError( explain( *options ) ); } );
}

} // namespace LdpTool
