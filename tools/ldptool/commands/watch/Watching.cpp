// A watch, and the processes and people that it serves.
#include "commands/watch/Watching.h"

#include "commands/Commands.h"
#include "commands/Interruptible.h"
#include "commands/watch/LogFile.h"
#include "commands/watch/MetricsServer.h"
#include "commands/watch/Publisher.h"
#include "commands/watch/Replica.h"
#include "messages/Decoder.h"
#include "standards/Yang.h"
#include "text/Words.h"
#include "views/Tree.h"
#include "views/TreeWatcher.h"
#include "views/Views.h"

#include <ctime>
#include <functional>
#include <iostream>
#include <unistd.h>

namespace LdpTool {

namespace {

constexpr char const * clearScreen = "\033[H\033[J";

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

class Watching {
 public:
   Watching( WatchOptions const & options, Output & out );
   int run();

 private:
   bool live() const { return options_.input.live(); }
   void read( WatchSink & sink );
   void readFrom( Capture & capture, WatchSink & sink );
   void carry();
   void print();
   int printReplica();
   void serveOthers();
   std::string metricsOf( Capture & capture );

   WatchOptions const & options_;
   Output & out_;
   Vorn::Ptr< Network > const network_ = networkFactory( Vorn::Name( "network" ) );
   Monitor monitor_;
   std::unique_ptr< Replica > replica_;
   std::optional< Interruptible > ending_;
   std::optional< Publisher > publisher_;
   std::optional< LogFile > log_;
   std::unique_ptr< MetricsServer > server_;
   JsonWriter followed_;
   CaptureCounters counters_; ///< at the end
   std::string failure_;      ///< of the input
};

/// Whether somebody looks at each change, or at the model's own objects.
Monitor::Bindings keptBy( WatchOptions const & options ) {
   bool const observed = options.tree || options.json || ( options.follow && !options.yang ) ||
                         options.replicate || !options.publish.empty() || !options.log.empty();
   return observed ? Monitor::live : Monitor::compact;
}

Watching::Watching( WatchOptions const & options, Output & out )
     : options_( options ), out_( out ), monitor_( *network_, options.input.limits.monitor,
                                                   options.input.limits.capture.flows, keptBy( options ) ),
       followed_( out ) {
   if ( options.replicate ) replica_ = std::make_unique< Replica >( *network_ );
   if ( live() || !options.publish.empty() ) ending_.emplace();
   if ( !options.publish.empty() ) publisher_.emplace( *network_, options.publish );
   if ( !options.log.empty() ) log_.emplace( *network_, options.log );
   if ( !options.listen.empty() ) server_ = std::make_unique< MetricsServer >( options.listen );
}

int Watching::run() {
   std::optional< TreeWatcher > watcher;
   std::optional< YangEvents > events;
   if ( options_.follow && options_.yang ) {
      events.emplace( out_, *network_, monitor_, options_.input.peer );
   } else if ( options_.follow ) {
      std::string const speaker =
           options_.input.peer ? std::string( options_.input.peer->stringValue().view() ) : "";
      watcher.emplace( *network_, [this, speaker]( TreeChange const & change ) {
         if ( !isOf( change, speaker ) ) return;
         Arrival const & at = monitor_.journal().arrival();
         if ( options_.json ) return writeChange( followed_, at, change );
         out_ << timeText( at ) << ' ' << changeText( change ) << '\n';
      } );
   }
   WatchSink sink( monitor_, options_.input.selection, out_ );
   read( sink );
   server_.reset();
   watcher.reset();
   events.reset();
   print();
   int const result = replica_ ? printReplica() : exitGood;
   out_.flush();
   if ( !failure_.empty() ) std::cerr << "ldptool: " << failure_ << '\n';
   serveOthers();
   return failure_.empty() ? result : exitUsage;
}

void Watching::read( WatchSink & sink ) {
   try {
      Capture capture = options_.input.open();
      readFrom( capture, sink );
      tellInput( counters_, monitor_.turnedAway() );
      if ( capture.endTime() ) monitor_.timeIs( *capture.endTime() );
   } catch ( InputError const & error ) {
      if ( !ending_ || !ending_->interrupted() )
         failure_ = error.what(); // a read that a signal ended is none
   }
}

void Watching::readFrom( Capture & capture, WatchSink & sink ) {
   Interruptible::Ends const ends( ending_ ? &capture : nullptr );
   if ( replica_ || publisher_ || log_ ) sink.carry = [this] { carry(); };
   bool const table = !options_.follow && !options_.json && !options_.replicate && !options_.yang &&
                      !options_.metrics && !options_.silent();
   if ( live() && table && isatty( STDOUT_FILENO ) )
      sink.refresh = [this, last = std::time( nullptr )]() mutable {
         std::time_t const now = std::time( nullptr );
         if ( now == last ) return;
         last = now;
         out_ << clearScreen;
         printViews( out_, *network_, options_, monitor_ );
      };
   if ( server_ ) {
      sink.metrics = [&] { return metricsOf( capture ); };
      sink.server = server_.get();
      std::cerr << "ldptool: metrics at " << server_->url() << '\n';
   }
   try {
      capture.run( sink, options_.input.range );
   } catch ( InputError const & ) {
      counters_ = capture.counters();
      throw;
   }
   counters_ = capture.counters();
}

std::string Watching::metricsOf( Capture & capture ) {
   std::string text;
   Output out( text );
   writeMetrics( out, *network_, monitor_, capture.counters(), options_.input.peer,
                 bindingsToTell( options_ ) );
   out.flush();
   return text;
}

void Watching::carry() {
   if ( replica_ ) replica_->flush();
   if ( publisher_ ) publisher_->serve();
   if ( log_ ) log_->flush();
}

void Watching::print() {
   if ( options_.json ) return writeViews( out_, *network_, options_, monitor_.journal() );
   printViews( out_, *network_, options_, monitor_ );
   if ( options_.metrics && options_.listen.empty() )
      writeMetrics( out_, *network_, monitor_, counters_, options_.input.peer, bindingsToTell( options_ ) );
}

int Watching::printReplica() {
   std::string const copy = replica_->finish( options_.json );
   if ( !options_.check ) {
      out_ << copy;
      return exitGood;
   }
   std::string const difference = firstDifference( *network_, replica_->logged() );
   if ( difference.empty() ) {
      out_ << "the replica agrees\n";
      return exitGood;
   }
   out_ << "the replica differs: " << difference << '\n';
   return exitBadMessage;
}

void Watching::serveOthers() {
   if ( log_ ) log_->flush();
   if ( !publisher_ ) return;
   if ( !live() ) publisher_->serveUntil( *ending_ ); // who reads a file is done before anyone has connected
   publisher_->finish();
}

} // namespace

int watch( WatchOptions const & options ) {
   try {
      Output out( stdout );
      return Watching( options, out ).run();
   } catch ( OutputError const & error ) {
      std::cerr << "ldptool: " << error.what() << '\n';
   } catch ( InputError const & error ) { // of the copies
      std::cerr << "ldptool: " << error.what() << '\n';
   }
   return exitUsage;
}

} // namespace LdpTool
