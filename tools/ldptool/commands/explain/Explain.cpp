// `ldptool explain`: what became of each pair of speakers, and why.
#include "capture/Capture.h"
#include "commands/Commands.h"
#include "commands/InputOptions.h"
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
   InputOptions input;
   bool json = false;
};

int explain( ExplainOptions const & options ) {
   std::string failure;
   std::size_t found = 0;
   try {
      auto const output = std::make_unique< Output >( stdout );
      auto const network = networkFactory( Vorn::Name( "network" ) );
      Monitor monitor( *network, options.input.limits.monitor, options.input.limits.capture.flows,
                       Monitor::compact );
      Evidence evidence( monitor );
      Decoder decoder( evidence, options.input.selection, *output );
      try {
         Capture capture = options.input.open();
         capture.run( decoder, options.input.range );
         tellInput( capture.counters(), monitor.turnedAway() );
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      evidence.settle();
      if ( options.json ) {
         JsonWriter json( *output );
         found = writeAccounts( json, evidence, *network, monitor, options.input.peer );
         json.endLine();
      } else {
         found = printAccounts( *output, evidence, *network, monitor, options.input.peer );
      }
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
   addInputOptions( command, options->input, true );
   command.add_flag( "--json", options->json, "print an array of JSON, an object for each speaker and pair" );
   command.footer( examples );
   command.callback( [options] { throw CLI::RuntimeError( explain( *options ) ); } );
}

} // namespace LdpTool
