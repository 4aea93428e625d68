// `ldptool watch`: the passive monitor, its tree and its changes.

#include "capture/Capture.h"
#include "commands/Commands.h"
#include "commands/InputOptions.h"
#include "commands/Interruptible.h"
#include "commands/SpeakerOption.h"
#include "commands/watch/LogFile.h"
#include "commands/watch/MetricsServer.h"
#include "commands/watch/Publisher.h"
#include "commands/watch/Replica.h"
#include "messages/Decoder.h"
#include "monitor/Monitor.h"
#include "standards/Metrics.h"
#include "standards/Yang.h"
#include "text/Words.h"
#include "views/Tree.h"
#include "views/TreeWatcher.h"
#include "views/Views.h"

#include <CLI/CLI.hpp>

#include <ctime>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <tuple>
#include <unistd.h>

namespace LdpTool {

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

constexpr char const * clearScreen = "\033[H\033[J";

struct WatchOptions {
   InputOptions input;
   bool json = false;
   bool tree = false;
   bool neighbors = false;
   std::optional< std::string > bindings; // a prefix, or "all"
   bool pseudowires = false;
   std::optional< std::string > history; // a peer, or "all"
   bool dot = false;
   bool yang = false;
   bool metrics = false;
   std::string listen; // where metrics are served; empty for nowhere
   bool follow = false;
   bool replicate = false;
   bool check = false;
   std::string publish; // a socket's path
   std::string log;     // a file

   bool anyView() const {
      return tree || neighbors || bindings || pseudowires || history || dot || yang || metrics || follow ||
             check;
   }
   /// Whether it is there for other processes, and nothing is to be printed.
   bool silent() const { return ( !publish.empty() || !log.empty() ) && !anyView() && !json; }
};

/// A silent interface is no reason for a hold time to last. What was captured a moment ago may still come.
void timeGoesOn( Monitor & monitor ) {
   constexpr double underWay = 2.0;
   timespec now{};
   ::clock_gettime( CLOCK_REALTIME, &now );
   monitor.timeIs( double( now.tv_sec ) - underWay );
}

/// Takes what the monitor wrote to the copies in other processes, some PDUs at a time: what changes twice
/// meanwhile, as every counter does, is sent once.
class WatchSink : public Decoder {
 public:
   WatchSink( Monitor & monitor, Selection const & selection, Output & out )
        : Decoder( monitor, selection, out ), monitor_( monitor ) {}

   MetricsServer * server = nullptr;
   /// What the server is given when somebody asks.
   std::function< std::string() > metrics;

   void onPdu( Origin const & origin, Ldp::LdpPdu const & pdu ) override {
      constexpr unsigned atOnce = 1024;
      Decoder::onPdu( origin, pdu );
      if ( carry && ++waiting_ >= atOnce ) flush();
      if ( server && server->wanted() ) server->textIs( metrics() );
   }

   /// Called whenever a live capture waits.
   std::function< void() > refresh;
   /// Carries changes to the copies.
   std::function< void() > carry;
   void onIdle() override {
      timeGoesOn( monitor_ );
      if ( refresh ) refresh();
      if ( server && server->wanted() ) server->textIs( metrics() );
      if ( carry ) flush();
      Decoder::onIdle();
   }

 private:
   void flush() {
      carry();
      waiting_ = 0;
   }

   Monitor & monitor_;
   unsigned waiting_ = 0; ///< PDUs since the last flush
};

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

/// The metrics as they are now.
std::string metricsNow( WatchOptions const & options, Network const & network, Monitor & monitor,
                        Capture & capture ) {
   std::string text;
   auto const out = std::make_unique< Output >( text );
   writeMetrics( *out, network, monitor, capture.counters(), options.input.peer, bindingsToTell( options ) );
   out->flush();
   return text;
}

Wanted wantedBy( WatchOptions const & options ) {
   return [&about = options.input.peer]( Vorn::Entity const & entity ) { return isAbout( about, entity ); };
}

/// Whether the change is in that speaker's part of the tree; of all if it is empty.
bool isOf( TreeChange const & change, std::string const & speaker ) {
   if ( speaker.empty() ) return true;
   if ( change.steps.size() > 1 ) return change.steps[1] == speaker;
   return change.key && plainText( *change.attr.keyType, change.key ) == speaker;
}

/// The views that were asked for; a summary and the neighbours if nothing was.
void printViews( Output & out, Network const & network, WatchOptions const & options, Monitor & monitor ) {
   if ( options.silent() ) return;
   Journal const & journal = monitor.journal();
   About const about = options.input.peer;
   if ( !options.anyView() ) printSummary( out, network, journal );
   if ( options.tree ) out << treeText( network, TreeContent::stored, wantedBy( options ) );
   if ( options.neighbors || !options.anyView() ) printNeighbors( out, network, journal, about );
   if ( options.history ) printHistory( out, journal, historyOf( options ) );
   if ( options.bindings && !options.metrics )
      printBindings( out, network, monitor, bindingsWithin( options ), about );
   if ( options.pseudowires ) printPseudowires( out, network, about );
   if ( options.dot ) printDot( out, network );
   if ( options.yang && !options.follow ) writeYang( out, network, monitor, about );
}

/// The same as JSON: the tree alone, or an object with a member for each view.
void writeViews( Output & out, Network const & network, WatchOptions const & options,
                 Journal const & journal ) {
   if ( options.follow || options.check ) return;
   About const about = options.input.peer;
   JsonWriter json( out );
   if ( !options.anyView() ) {
      writeTree( json, network, TreeContent::stored, wantedBy( options ) );
      return json.endLine();
   }
   json.object();
   auto const view = [&]( bool is, char const * name, auto const & write ) {
      if ( !is ) return;
      json.key( name );
      write();
   };
   view( options.tree, "tree",
         [&] { writeTree( json, network, TreeContent::stored, wantedBy( options ) ); } );
   view( options.neighbors, "neighbors", [&] { writeNeighbors( json, network, journal, about ); } );
   view( options.history.has_value(), "history",
         [&] { writeHistory( json, journal, historyOf( options ) ); } );
   view( options.bindings.has_value(), "bindings",
         [&] { writeBindings( json, network, bindingsWithin( options ), about ); } );
   view( options.pseudowires, "pseudowires", [&] { writePseudowires( json, network, about ); } );
   json.endObject();
   json.endLine();
}

int watch( WatchOptions const & options ) {
   try {
      Output out( stdout );
      auto const network = networkFactory( Vorn::Name( "network" ) );
      bool const observed = options.tree || options.json || ( options.follow && !options.yang ) ||
                            options.replicate || !options.publish.empty() || !options.log.empty();
      Monitor monitor( *network, options.input.limits.monitor, options.input.limits.capture.flows,
                       observed ? Monitor::live : Monitor::compact );
      std::unique_ptr< Replica > replica;
      if ( options.replicate ) replica = std::make_unique< Replica >( *network );
      bool const live = options.input.live();
      std::optional< Interruptible > ending;
      if ( live || !options.publish.empty() ) ending.emplace();
      std::optional< Publisher > publisher;
      if ( !options.publish.empty() ) publisher.emplace( *network, options.publish );
      std::optional< LogFile > log;
      if ( !options.log.empty() ) log.emplace( *network, options.log );
      JsonWriter followed( out );
      std::optional< TreeWatcher > watcher;
      std::optional< YangEvents > events;
      if ( options.follow && options.yang ) {
         events.emplace( out, *network, monitor, options.input.peer );
      } else if ( options.follow ) {
         std::string const speaker =
              options.input.peer ? std::string( options.input.peer->stringValue().view() ) : "";
         watcher.emplace( *network, [&, speaker]( TreeChange const & change ) {
            if ( !isOf( change, speaker ) ) return;
            Arrival const & at = monitor.journal().arrival();
            if ( options.json ) return writeChange( followed, at, change );
            out << timeText( at ) << ' ' << changeText( change ) << '\n';
         } );
      }
      WatchSink sink( monitor, options.input.selection, out );
      auto const carry = [&] {
         if ( replica ) replica->flush();
         if ( publisher ) publisher->serve();
         if ( log ) log->flush();
      };
      if ( replica || publisher || log ) sink.carry = carry;
      std::unique_ptr< MetricsServer > server;
      if ( !options.listen.empty() ) server = std::make_unique< MetricsServer >( options.listen );
      CaptureCounters counters;
      std::string failure;
      try {
         Capture capture = options.input.open();
         Interruptible::Ends const ends( ending ? &capture : nullptr );
         bool const table = !options.follow && !options.json && !options.replicate && !options.yang &&
                            !options.metrics && !options.silent();
         if ( live && table && isatty( STDOUT_FILENO ) )
            sink.refresh = [&, last = std::time( nullptr )]() mutable {
               std::time_t const now = std::time( nullptr );
               if ( now == last ) return;
               last = now;
               out << clearScreen;
               printViews( out, *network, options, monitor );
            };
         if ( server ) {
            sink.metrics = [&] { return metricsNow( options, *network, monitor, capture ); };
            sink.server = server.get();
            std::cerr << "ldptool: metrics at " << server->url() << '\n';
         }
         try {
            capture.run( sink, options.input.range );
         } catch ( InputError const & ) {
            counters = capture.counters();
            throw;
         }
         counters = capture.counters();
         tellInput( counters, monitor.turnedAway() );
         if ( capture.endTime() ) monitor.timeIs( *capture.endTime() );
      } catch ( InputError const & error ) {
         if ( !ending || !ending->interrupted() )
            failure = error.what(); // a read that a signal ended is none
      }
      server.reset();
      watcher.reset();
      events.reset();
      if ( options.json ) {
         writeViews( out, *network, options, monitor.journal() );
      } else {
         printViews( out, *network, options, monitor );
         if ( options.metrics && options.listen.empty() )
            writeMetrics( out, *network, monitor, counters, options.input.peer, bindingsToTell( options ) );
      }
      int result = exitGood;
      if ( replica ) {
         std::string const copy = replica->finish( options.json );
         if ( options.check ) {
            std::string const difference = firstDifference( *network, replica->logged() );
            if ( difference.empty() ) {
               out << "the replica agrees\n";
            } else {
               out << "the replica differs: " << difference << '\n';
               result = exitBadMessage;
            }
         } else {
            out << copy;
         }
      }
      out.flush();
      if ( !failure.empty() ) std::cerr << "ldptool: " << failure << '\n';
      if ( log ) log->flush();
      if ( publisher ) {
         if ( !live )
            publisher->serveUntil( *ending ); // who reads a file is done before anyone has connected
         publisher->finish();
      }
      if ( failure.empty() ) return result;
   } catch ( OutputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
   } catch ( InputError const & error ) { // of the copies
      std::cerr << "ldptool: " << error.what() << '\n';
   }
   return exitUsage;
}

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
