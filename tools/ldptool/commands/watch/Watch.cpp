// `ldptool watch`: its command line.

#include "commands/Commands.h"
#include "commands/SpeakerOption.h"
#include "commands/watch/MetricsServer.h"
#include "commands/watch/Watching.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace LdpTool {

std::optional< Lumo::IpGenPrefix > bindingsWithin( WatchOptions const & options ) {
   if ( *options.bindings == "all" ) return options.input.selection.within;
   return prefixOf( "--bindings", *options.bindings );
}

std::optional< Ldp::LdpIdentifier > historyOf( WatchOptions const & options ) {
   return *options.history == "all" ? options.input.peer : speakerOf( "--history", *options.history );
}

BindingsToTell bindingsToTell( WatchOptions const & options ) {
   if ( !options.bindings ) return {};
   return { true, bindingsWithin( options ) };
}

namespace {

constexpr char const * examples = R"(
Examples:
  ldptool watch session.pcap                        how many there are of what, and the neighbours
  ldptool watch --tree session.pcap                 all that is known of each speaker at the end
  ldptool watch --json session.pcap | jq .speaker   the same for programs
  ldptool watch --json --neighbors --at 12:30:00 session.pcap
  ldptool watch --neighbors session.pcap            the neighbours of each speaker, as a router shows them
  ldptool watch --bindings=10.0.0.0/8 session.pcap  the labels of the FECs within a prefix
  ldptool watch --history=10.0.0.2 session.pcap     when its sessions came and went, and why
  ldptool watch --neighbors --at 12:30:00 s.pcap    the neighbours as they were then
  ldptool watch --dot session.pcap | dot -Tsvg      a picture of the network
  ldptool watch --metrics session.pcap              numbers for Prometheus
  ldptool watch --metrics --listen 127.0.0.1:9646 -i eth0
  ldptool watch --yang session.pcap                 each speaker's state as RFC 9070 has it
  ldptool watch --follow -i eth0                    each change as it comes
  ldptool watch --replicate --check session.pcap    a second process agrees on all that is replicated
  ldptool watch --publish /run/ldp.sock -i eth0     the same state for other processes
  ldptool watch --log - session.pcap | ldptool log -

Exit status: 0, 1 when --check found a difference, 2 for wrong arguments or an input that
cannot be read.)";

} // namespace

void addWatchCommand( CLI::App & app ) {
   auto const options = std::make_shared< WatchOptions >();
   CLI::App & command = *app.add_subcommand( "watch", "Keep the state of the speakers in a capture." );
   command.add_flag( "--tree", options->tree, "print the tree: all that is known of each speaker" );
   auto * const json =
        command.add_flag( "--json", options->json, "print the tree, or the views asked for, as JSON" );
   command.add_flag( "--neighbors", options->neighbors,
                     "print a table of neighbours: adjacencies, sessions" );
   command.add_flag( "--bindings{all}", options->bindings,
                     "print a table of label bindings; =PREFIX limits it" );
   command.add_flag( "--pseudowires", options->pseudowires, "print a table of pseudowires" );
   command.add_flag( "--history{all}", options->history,
                     "print each change of an adjacency or session; =PEER limits it to a speaker" );
   command
        .add_option_function< std::string >(
             "--at",
             [options]( std::string const & text ) { timeIs( options->input.range.to, "--at", text ); },
             "show all as it was at that time: hh:mm:ss on the first day, or seconds since 1970" )
        ->type_name( "TIME" );
   command.add_option( "--until", options->input.range.to.frame, "show all as it was with that frame" )
        ->type_name( "FRAME" );
   command.add_flag( "--dot", options->dot, "print speakers, adjacencies and sessions as a graph for dot" )
        ->excludes( json );
   auto * const yang =
        command.add_flag( "--yang", options->yang,
                          "print the state of each speaker as JSON of RFC 9070's YANG modules; "
                          "with --follow their notifications" );
   yang->excludes( json );
   auto * const metrics =
        command.add_flag( "--metrics", options->metrics,
                          "print numbers for Prometheus; with --bindings each label binding too" );
   metrics->excludes( json )->excludes( yang );
   command
        .add_option( "--listen", options->listen,
                     "serve the metrics there over HTTP, with -i: 127.0.0.1:9646, [::1]:9646" )
        ->type_name( "ADDRESS:PORT" )
        ->needs( metrics );
   command.add_flag( "--follow", options->follow, "print each change as it comes" );
   auto * const replicate = command.add_flag( "--replicate", options->replicate,
                                              "keep a copy in a second process, fed by the attribute log" );
   command.add_flag( "--check", options->check, "compare the copy instead of printing it" )
        ->needs( replicate );
   command
        .add_option( "--publish", options->publish,
                     "let other processes copy the state, by the attribute log at this Unix socket" )
        ->type_name( "SOCKET" );
   command
        .add_option( "--log", options->log,
                     "write the attribute log of the state to a file, - for the output" )
        ->type_name( "FILE" );
   addInputOptions( command, options->input );
   command.allow_extras(); // they are told of below
   command.footer( examples );
   command.callback( [options, &command] {
      auto const & [file, interface] = std::tie( options->input.file, options->input.interface );
      if ( !command.remaining().empty() ) {
         for ( char const * option : { "--bindings", "--history" } )
            if ( command.count( option ) && command.get_option( option )->as< std::string >() == "all" )
               throw CLI::ValidationError( option, "takes its value behind a =, as in " +
                                                        std::string( option ) + "=" + file );
         throw CLI::ExtrasError( command.remaining() );
      }
      if ( options->log == "-" && !options->silent() )
         throw CLI::ValidationError( "--log", "- leaves no room for anything else on the output" );
      if ( file.empty() == interface.empty() )
         throw CLI::ValidationError( "watch", "needs one of FILE and -i IFACE" );
      if ( !options->listen.empty() ) {
         if ( !options->input.live() ) throw CLI::ValidationError( "--listen", "needs -i IFACE" );
         if ( !MetricsServer::isAddress( options->listen ) )
            throw CLI::ValidationError( "--listen", options->listen + " is not an address with a port" );
      }
      if ( options->bindings ) bindingsWithin( *options ); // wrong ones are told at once
      if ( options->history ) historyOf( *options );
      options->tree = options->tree || ( options->replicate && !options->anyView() );
      throw CLI::RuntimeError( watch( *options ) );
   } );
}

} // namespace LdpTool
