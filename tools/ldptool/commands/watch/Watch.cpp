// `ldptool watch`: the passive monitor, its tree and its changes.

#include "capture/Capture.h"
#include "commands/Commands.h"
#include "commands/Interruptible.h"
#include "commands/watch/Replica.h"
#include "messages/Decoder.h"
#include "monitor/Monitor.h"
#include "text/Words.h"
#include "views/Tree.h"
#include "views/Views.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <iostream>
#include <memory>
#include <optional>

namespace LdpTool {

namespace {

constexpr char const * examples = R"(
Examples:
  ldptool watch session.pcap                        all that is known of each speaker at the end
  ldptool watch --json session.pcap | jq .speaker   the same for programs
  ldptool watch --neighbors session.pcap            the neighbours of each speaker, as a router shows them
  ldptool watch --bindings=10.0.0.0/8 session.pcap  the labels of the FECs within a prefix
  ldptool watch --dot session.pcap | dot -Tsvg      a picture of the network
  ldptool watch --follow -i eth0                    each change as it comes
  ldptool watch --replicate --check session.pcap    a second process agrees on all that is replicated

Exit status: 0, 1 when --check found a difference, 2 for wrong arguments or an input that
cannot be read.)";

struct WatchOptions {
   std::string file;
   std::string interface;
   bool json = false;
   bool tree = false;
   bool neighbors = false;
   std::optional< std::string > bindings; // a prefix, or "all"
   bool pseudowires = false;
   bool dot = false;
   bool follow = false;
   bool replicate = false;
   bool check = false;
};

/// A PDU's worth of messages at a time: what the monitor wrote is taken along before the next PDU.
class WatchSink : public Decoder {
 public:
   WatchSink( Monitor & monitor, Output & out, Replica * replica )
        : Decoder( monitor, Selection(), out ), replica_( replica ) {}

   void onPdu( Origin const & origin, Ldp::LdpPdu const & pdu ) override {
      Decoder::onPdu( origin, pdu );
      if ( replica_ ) replica_->flush();
   }

 private:
   Replica * replica_;
};

void printTree( Output & out, Network const & network, WatchOptions const & options ) {
   if ( options.json ) {
      out << treeJson( network, TreeContent::stored ).dump( 2 ) << '\n';
   } else {
      out << treeText( network, TreeContent::stored );
   }
}

std::optional< Lumo::IpGenPrefix > prefixOf( std::string const & text ) {
   if ( text == "all" ) return {};
   try {
      Lumo::IpGenPrefix prefix;
      Vorn::strepToValue( text.c_str(), &prefix );
      return prefix;
   } catch ( Vorn::RangeException const & ) {
      throw CLI::ValidationError( "--bindings", text + " is not a prefix" );
   }
}

/// The views that were asked for; the tree if nothing was.
void printViews( Output & out, Network const & network, WatchOptions const & options, double now ) {
   bool const others = options.follow || options.check || options.neighbors || options.bindings ||
                       options.pseudowires || options.dot;
   if ( !others || options.tree || options.json ) printTree( out, network, options );
   if ( options.neighbors ) printNeighbors( out, network, now );
   if ( options.bindings ) printBindings( out, network, prefixOf( *options.bindings ) );
   if ( options.pseudowires ) printPseudowires( out, network );
   if ( options.dot ) printDot( out, network );
}

int watch( WatchOptions const & options ) {
   try {
      Output out( stdout );
      auto const network = networkFactory( Vorn::Name( "network" ) );
      Monitor monitor( *network );
      std::unique_ptr< Replica > replica;
      if ( options.replicate ) replica = std::make_unique< Replica >( *network );
      std::optional< TreeWatcher > watcher;
      if ( options.follow ) {
         watcher.emplace( *network, [&]( TreeChange const & change ) {
            out << timeText( monitor.arrival() ) << ' ' << change.path << ' ' << change.attribute << " = "
                << change.value << '\n';
         } );
      }
      WatchSink sink( monitor, out, replica.get() );
      std::string failure;
      try {
         Capture capture =
              options.file.empty() ? Capture::interface( options.interface ) : Capture::file( options.file );
         std::optional< Interruptible > ending;
         if ( options.file.empty() ) ending.emplace( capture );
         capture.run( sink );
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      watcher.reset();
      if ( monitor.refused() ) {
         std::cerr << "ldptool: more than " << Agents::mostAgents << " speakers, or "
                   << Discovery::mostOfSpeaker << " adjacencies of one, or " << Discovery::mostInAll
                   << " of all: " << monitor.refused() << " times something was not kept\n";
      }
      printViews( out, *network, options, monitor.now() );
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
      if ( failure.empty() ) return result;
      std::cerr << "ldptool: " << failure << '\n';
   } catch ( OutputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
   }
   return exitUsage;
}

} // namespace

void addWatchCommand( CLI::App & app ) {
   auto const options = std::make_shared< WatchOptions >();
   CLI::App & command = *app.add_subcommand( "watch", "Keep the state of the speakers in a capture." );
   command.add_option( "FILE", options->file, "capture to read, pcap or pcapng; - is standard input" );
   command.add_option( "-i,--interface", options->interface, "listen on this interface" )
        ->type_name( "IFACE" );
   auto * const tree = command.add_flag( "--tree", options->tree, "print the tree at the end (the default)" );
   command.add_flag( "--json", options->json, "print the tree as JSON" )->excludes( tree );
   command.add_flag( "--neighbors", options->neighbors,
                     "print a table of neighbours: adjacencies, sessions" );
   command.add_flag( "--bindings{all}", options->bindings,
                     "print a table of label bindings; =PREFIX limits it" );
   command.add_flag( "--pseudowires", options->pseudowires, "print a table of pseudowires" );
   command.add_flag( "--dot", options->dot, "print speakers, adjacencies and sessions as a graph for dot" );
   command.add_flag( "--follow", options->follow, "print each change as it comes" );
   auto * const replicate = command.add_flag( "--replicate", options->replicate,
                                              "keep a copy in a second process, fed by the attribute log" );
   command.add_flag( "--check", options->check, "compare the copy instead of printing it" )
        ->needs( replicate );
   command.footer( examples );
   command.callback( [options] {
      if ( options->file.empty() == options->interface.empty() )
         throw CLI::ValidationError( "watch", "needs one of FILE and -i IFACE" );
      if ( options->bindings ) prefixOf( *options->bindings ); // wrong ones are told at once
      throw CLI::RuntimeError( watch( *options ) );
   } );
}

} // namespace LdpTool
