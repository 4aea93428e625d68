// `ldptool watch`: the passive monitor, its tree and its changes.

#include "capture/Capture.h"
#include "commands/Commands.h"
#include "commands/Interruptible.h"
#include "commands/LimitOptions.h"
#include "commands/SpeakerOption.h"
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
  ldptool watch --history=10.0.0.2 session.pcap     when its sessions came and went, and why
  ldptool watch --neighbors --at 12:30:00 s.pcap    the neighbours as they were then
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
   std::optional< std::string > history; // a peer, or "all"
   CaptureEnd end;
   bool dot = false;
   bool follow = false;
   bool replicate = false;
   bool check = false;
   LimitOptions limits;
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

std::optional< Ldp::LdpIdentifier > peerOf( std::string const & text ) {
   if ( text == "all" ) return {};
   return speakerOf( "--history", text );
}

/// Seconds since the epoch, or hh:mm:ss on the day of the first packet.
void timeIs( CaptureEnd & end, std::string const & text ) {
   unsigned hour, minute;
   double seconds;
   int read = 0;
   char const * const whole = text.c_str();
   if ( std::sscanf( whole, "%2u:%2u:%lf%n", &hour, &minute, &seconds, &read ) == 3 && !whole[read] &&
        hour < 24 && minute < 60 && seconds >= 0 && seconds < 60 ) {
      end.timeOfDay = hour * 3600.0 + minute * 60.0 + seconds;
   } else if ( std::sscanf( whole, "%lf%n", &seconds, &read ) == 1 && !whole[read] && seconds >= 0 ) {
      end.time = seconds;
   } else {
      throw CLI::ValidationError( "--at", text + " is neither hh:mm:ss nor seconds since 1970" );
   }
}

/// Whether to print the tree: nothing else was asked for, or it was.
bool wantsTree( WatchOptions const & options ) {
   bool const others = options.follow || options.check || options.neighbors || options.bindings ||
                       options.pseudowires || options.dot || options.history;
   return !others || options.tree || options.json;
}

void printViews( Output & out, Network const & network, WatchOptions const & options, Monitor & monitor ) {
   Journal const & journal = monitor.journal();
   if ( wantsTree( options ) ) printTree( out, network, options );
   if ( options.neighbors ) printNeighbors( out, network, journal );
   if ( options.history ) printHistory( out, journal, peerOf( *options.history ) );
   if ( options.bindings ) printBindings( out, network, monitor, prefixOf( *options.bindings ) );
   if ( options.pseudowires ) printPseudowires( out, network );
   if ( options.dot ) printDot( out, network );
}

int watch( WatchOptions const & options ) {
   try {
      Output out( stdout );
      auto const network = networkFactory( Vorn::Name( "network" ) );
      bool const live = wantsTree( options ) || options.follow || options.replicate;
      Monitor monitor( *network, options.limits.monitor, options.limits.capture.flows,
                       live ? Monitor::live : Monitor::compact );
      std::unique_ptr< Replica > replica;
      if ( options.replicate ) replica = std::make_unique< Replica >( *network );
      std::optional< TreeWatcher > watcher;
      if ( options.follow ) {
         watcher.emplace( *network, [&]( TreeChange const & change ) {
            out << timeText( monitor.journal().arrival() ) << ' ' << change.path << ' ' << change.attribute
                << " = " << change.value << '\n';
         } );
      }
      WatchSink sink( monitor, out, replica.get() );
      std::string failure;
      CaptureCounters counters;
      try {
         CaptureLimits const & limits = options.limits.capture;
         Capture capture = options.file.empty() ? Capture::interface( options.interface, limits )
                                                : Capture::file( options.file, limits );
         std::optional< Interruptible > ending;
         if ( options.file.empty() ) ending.emplace( capture );
         capture.run( sink, options.end );
         counters = capture.counters();
         if ( capture.endTime() != CaptureEnd::never ) monitor.timeIs( capture.endTime() );
      } catch ( InputError const & error ) {
         failure = error.what();
      }
      watcher.reset();
      if ( std::string const text = turnedAwayText( monitor.turnedAway(), counters ); !text.empty() )
         std::cerr << "ldptool: " << text << '\n';
      printViews( out, *network, options, monitor );
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
   } catch ( InputError const & error ) { // of the replica
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
   command.add_flag( "--history{all}", options->history,
                     "print each change of an adjacency or session; =PEER limits it to a speaker" );
   command
        .add_option_function< std::string >(
             "--at", [options]( std::string const & text ) { timeIs( options->end, text ); },
             "show all as it was at that time: hh:mm:ss (UTC, of the first day), or seconds since 1970" )
        ->type_name( "TIME" );
   command.add_option( "--until", options->end.frame, "show all as it was with that frame" )
        ->type_name( "FRAME" );
   command.add_flag( "--dot", options->dot, "print speakers, adjacencies and sessions as a graph for dot" );
   command.add_flag( "--follow", options->follow, "print each change as it comes" );
   auto * const replicate = command.add_flag( "--replicate", options->replicate,
                                              "keep a copy in a second process, fed by the attribute log" );
   command.add_flag( "--check", options->check, "compare the copy instead of printing it" )
        ->needs( replicate );
   addLimitOption( command, options->limits );
   command.footer( examples );
   command.callback( [options] {
      if ( options->file.empty() == options->interface.empty() )
         throw CLI::ValidationError( "watch", "needs one of FILE and -i IFACE" );
      if ( options->bindings ) prefixOf( *options->bindings ); // wrong ones are told at once
      if ( options->history ) peerOf( *options->history );
      throw CLI::RuntimeError( watch( *options ) );
   } );
}

} // namespace LdpTool
