// Limits by name.
#include "commands/LimitOptions.h"

#include <CLI/CLI.hpp>

#include <charconv>

namespace LdpTool {

namespace {

std::size_t * limitOf( LimitOptions & limits, std::string const & name ) {
   if ( name == "speakers" ) return &limits.monitor.speakers;
   if ( name == "adjacencies" ) return &limits.monitor.adjacencies;
   if ( name == "link" ) return &limits.monitor.linkSpeakers;
   if ( name == "fecs" ) return &limits.monitor.fecs;
   if ( name == "changes" ) return &limits.monitor.changes;
   if ( name == "flows" ) return &limits.capture.flows;
   if ( name == "fragments" ) return &limits.capture.fragmentOctets;
   return nullptr;
}

void setLimit( LimitOptions & limits, std::string const & text ) {
   std::size_t const equals = text.find( '=' );
   std::size_t * const limit = limitOf( limits, text.substr( 0, equals ) );
   char const * const end = text.data() + text.size();
   std::size_t value = 0;
   bool good = limit && equals != text.npos;
   if ( good ) {
      auto const [stop, error] = std::from_chars( text.data() + equals + 1, end, value );
      good = error == std::errc() && stop == end && value > 0;
   }
   if ( !good )
      throw CLI::ValidationError( "--limit", "'" + text +
                                                  "' is not speakers, adjacencies, link, fecs, changes, "
                                                  "flows or fragments, = and a number above 0" );
   *limit = value;
}

void append( std::string & text, std::uint64_t number, char const * what ) {
   if ( number ) text += ( text.empty() ? "" : ", " ) + std::to_string( number ) + " " + what;
}

} // namespace

void addLimitOption( CLI::App & command, LimitOptions & limits ) {
   command
        .add_option_function< std::vector< std::string > >(
             "--limit",
             [&limits]( std::vector< std::string > const & texts ) {
                for ( std::string const & text : texts )
                   setLimit( limits, text );
             },
             "keep no more than N of these: speakers, adjacencies (of a speaker), link (speakers on one), "
             "fecs "
             "(of a session), changes (of the history), flows, fragments (octets)" )
        ->type_name( "NAME=N" )
        ->allow_extra_args( false );
}

std::string turnedAwayText( TurnedAway const & turnedAway, CaptureCounters const & counters ) {
   std::string text;
   append( text, turnedAway.speakers, "messages of further speakers" );
   append( text, turnedAway.adjacencies, "further adjacencies" );
   append( text, turnedAway.fecs, "further FECs" );
   append( text, turnedAway.changes, "older changes" );
   append( text, counters.forgottenFlows, "older flows" );
   append( text, counters.lostFragments, "older fragments" );
   if ( !text.empty() ) text = "not kept (see --limit): " + text;
   if ( turnedAway.typedWildcards )
      text += ( text.empty() ? "" : "; " ) + std::string( "not followed: " ) +
              std::to_string( turnedAway.typedWildcards ) +
              " typed wildcards in requests, or of other FECs than prefixes";
   return text;
}

} // namespace LdpTool
