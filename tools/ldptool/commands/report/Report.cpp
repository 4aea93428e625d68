// `ldptool report`: a page of HTML that holds all it needs.
#include "commands/Commands.h"
#include "commands/InputOptions.h"
#include "commands/report/Activity.h"
#include "commands/report/Page.h"
#include "findings/Account.h"
#include "messages/Decoder.h"
#include "views/Views.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <cstring>
#include <iostream>
#include <memory>

namespace LdpTool {

using namespace Ldp;

namespace {

constexpr char const * examples = R"(
The page needs no network: findings, topology, sessions over time, bindings and pseudowires.

Example:
  ldptool report session.pcap -o report.html

Exit status: 0, 2 for wrong arguments or an input that cannot be read.)";

struct ReportOptions {
   InputOptions input;
   std::string page = "-";
};

using Pair = Evidence::Pair;

Pair ordered( LdpIdentifier const & a, LdpIdentifier const & b ) {
   return a < b ? Pair( a, b ) : Pair( b, a );
}

std::string labelsText( std::set< U32 > const & labels ) {
   std::string text;
   for ( U32 label : labels )
      text += ( text.empty() ? "" : " " ) + labelText( label );
   return text;
}

/// The data of the page. Speakers are named by their place in the list of them.
class ReportData {
 public:
   ReportData( JsonWriter & json, Network const & network, Journal const & journal, Activity const & activity,
               About const & about )
        : json_( json ), network_( network ), journal_( journal ), activity_( activity ), about_( about ) {}

   void write( std::string const & file, std::uint64_t packets );

 private:
   void writeSpeakers();
   void writeEdges();
   void writeSessions();
   void writeBindings();
   void writePseudowires();
   std::size_t place( LdpIdentifier const & id ) {
      return places_.try_emplace( id, places_.size() ).first->second;
   }
   template< class Each >
   void list( char const * name, Each const & each ) {
      json_.key( name );
      json_.array();
      each();
      json_.endArray();
   }

   JsonWriter & json_;
   Network const & network_;
   Journal const & journal_;
   Activity const & activity_;
   About const & about_;
   std::map< LdpIdentifier, std::size_t > places_;
};

void ReportData::write( std::string const & file, std::uint64_t packets ) {
   json_.member( "file", file );
   json_.member( "packets", packets );
   list( "span", [&] {
      json_.value( activity_.first() );
      json_.value( std::max( activity_.last(), journal_.now() ) );
   } );
   list( "edges", [&] { writeEdges(); } );
   list( "sessions", [&] { writeSessions(); } );
   list( "bindings", [&] { writeBindings(); } );
   list( "pseudowires", [&] { writePseudowires(); } );
   eachVrf( network_, [&]( LdpIdentifier const & id, Status const & ) {
      if ( isAbout( about_, id, id ) ) place( id );
   } );
   std::vector< LdpIdentifier > speakers( places_.size() );
   for ( auto const & [id, at] : places_ )
      speakers[at] = id;
   list( "speakers", [&] {
      for ( LdpIdentifier const & id : speakers )
         json_.value( id.stringValue() );
   } );
}

/// Two speakers, whether one hears the other, and the state of their session.
void ReportData::writeEdges() {
   struct Edge {
      bool adjacent = false;
      std::string state;
   };
   std::map< Pair, Edge > edges;
   eachVrf( network_, [&]( LdpIdentifier const & speaker, Status const & status ) {
      for ( NeighborRow const & row : neighborsOf( status, speaker, journal_ ) ) {
         if ( !isAbout( about_, speaker, row.peer ) ) continue;
         Edge & edge = edges[ordered( speaker, row.peer )];
         edge.adjacent = edge.adjacent || !row.adjacencies.empty();
         if ( edge.state.empty() || edge.state == "Operational" ) edge.state = row.session;
      }
   } );
   for ( auto const & [pair, edge] : edges ) {
      json_.array();
      json_.value( place( pair.first ) );
      json_.value( place( pair.second ) );
      json_.value( edge.adjacent );
      json_.value( edge.state );
      json_.endArray();
   }
}

void ReportData::writeSessions() {
   std::map< Pair, std::vector< Change const * > > changes;
   for ( Change const & change : journal_.changes() )
      if ( change.subject == "session" && change.speaker < change.peer )
         changes[{ change.speaker, change.peer }].push_back( &change );
   auto const bins = activity_.sessions();
   for ( auto const & [pair, counts] : bins )
      changes[pair];
   for ( auto const & [pair, states] : changes ) {
      if ( !isAbout( about_, pair.first, pair.second ) ) continue;
      json_.object();
      list( "pair", [&, &pair = pair] {
         json_.value( pair.first.stringValue() );
         json_.value( pair.second.stringValue() );
      } );
      list( "states", [&, &states = states] {
         for ( Change const * change : states ) {
            json_.array();
            json_.time( change->at.seconds, change->at.nanoseconds );
            json_.value( change->to );
            json_.value( change->cause );
            json_.endArray();
         }
      } );
      auto const counts = bins.find( pair );
      list( "bins", [&] {
         if ( counts == bins.end() ) return;
         for ( std::uint32_t count : counts->second.counts() )
            json_.value( count );
      } );
      json_.endObject();
   }
}

void ReportData::writeBindings() {
   eachVrf( network_, [&]( LdpIdentifier const & speaker, Status const & status ) {
      for ( BindingRow const & row : bindingsOf( status, {} ) ) {
         if ( !isAbout( about_, speaker, row.peer ) ) continue;
         json_.array();
         json_.value( row.fec );
         json_.value( place( speaker ) );
         json_.value( labelsText( row.local ) );
         json_.value( place( row.peer ) );
         json_.value( unsigned( row.advertised ) );
         json_.value( labelsText( row.remote ) );
         json_.endArray();
      }
   } );
}

void ReportData::writePseudowires() {
   eachVrf( network_, [&]( LdpIdentifier const & speaker, Status const & status ) {
      for ( PseudowireRow const & row : pseudowiresOf( status ) ) {
         if ( !isAbout( about_, speaker, row.peer ) ) continue;
         json_.array();
         json_.value( place( speaker ) );
         json_.value( place( row.peer ) );
         json_.value( row.pwId );
         json_.value( row.type );
         for ( auto const & end : { row.local, row.remote } )
            json_.value( end ? labelText( end->label ) : "-" );
         json_.value( row.status() );
         json_.endArray();
      }
   } );
}

/// JSON within a script: nothing in it may end the script or begin a comment.
void writeInScript( Output & out, std::string_view json ) {
   for ( std::size_t at; ( at = json.find( '<' ) ) != json.npos; json.remove_prefix( at + 1 ) )
      out << json.substr( 0, at ) << "\\u003c";
   out << json;
}

void writePage( Output & out, std::string const & json ) {
   out << pageHead;
   writeInScript( out, json );
   out << pageTail;
   out.flush();
}

void report( ReportOptions const & options ) {
   InputOptions const & input = options.input;
   auto const network = networkFactory( Vorn::Name( "network" ) );
   Monitor monitor( *network, input.limits.monitor, input.limits.capture.flows );
   Activity activity( monitor, input.limits.capture.flows );
   auto const out = std::make_unique< Output >( stderr ); // nothing but what a live input would show
   Decoder decoder( activity, input.selection, *out );
   Capture capture = input.open();
   capture.run( decoder, input.range );
   activity.settle();
   tellInput( capture.counters(), monitor.turnedAway() );

   std::string text;
   auto const memory = std::make_unique< Output >( text );
   JsonWriter json( *memory );
   json.object();
   ReportData( json, *network, monitor.journal(), activity, input.peer )
        .write( input.file, capture.counters().packets );
   auto const sessions = activity.sessions();
   json.member( "binWidth", sessions.empty() ? 1.0 : sessions.begin()->second.width() );
   json.key( "accounts" );
   writeAccounts( json, activity, *network, monitor, input.peer );
   json.endObject();
   memory->flush();

   std::unique_ptr< std::FILE, int ( * )( std::FILE * ) > file( nullptr, std::fclose );
   if ( options.page != "-" ) {
      file.reset( std::fopen( options.page.c_str(), "wb" ) );
      if ( !file ) throw OutputError( options.page + ": " + std::strerror( errno ) );
   }
   auto const page = std::make_unique< Output >( file ? file.get() : stdout );
   writePage( *page, text );
}

} // namespace

void addReportCommand( CLI::App & app ) {
   auto const options = std::make_shared< ReportOptions >();
   CLI::App & command =
        *app.add_subcommand( "report", "Make a page of HTML: findings, topology, sessions, labels." );
   addInputOptions( command, options->input, true );
   command.add_option( "-o,--output", options->page, "where the page goes; - is standard output" )
        ->type_name( "FILE" )
        ->capture_default_str();
   command.footer( examples );
   command.callback( [options] {
      try {
         report( *options );
         throw CLI::RuntimeError( exitGood );
      } catch ( InputError const & error ) {
         std::cerr << "ldptool: " << error.what() << '\n';
      } catch ( OutputError const & error ) {
         std::cerr << "ldptool: " << error.what() << '\n';
      }
      throw CLI::RuntimeError( exitUsage );
   } );
}

} // namespace LdpTool
