// The input and its selection.
#include "commands/InputOptions.h"

#include "commands/SpeakerOption.h"
#include "text/Times.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <iostream>
#include <map>

namespace LdpTool {

namespace {

std::string lowerCase( std::string text ) {
   std::transform( text.begin(), text.end(), text.begin(),
                   []( unsigned char c ) { return char( std::tolower( c ) ); } );
   return text;
}

// A message type by its name, with or without the Ldp in front, in any case; or by its number.
std::uint32_t messageType( std::string const & text ) {
   std::string const wanted = lowerCase( text );
   Vorn::VornType const & record = *vornTypeOf( Ldp::LdpMsgType() );
   for ( U32 i = 0; i < record.attributeNum; ++i ) {
      std::string const name = lowerCase( record.attributes[i].name );
      if ( wanted == name || "ldp" + wanted == name ) return record.attributes[i].id();
   }
   constexpr std::uint32_t largestType = 0x7fff;
   bool const hex = wanted.starts_with( "0x" );
   char const * const end = wanted.data() + wanted.size();
   std::uint32_t value = 0;
   auto const [stop, error] = std::from_chars( wanted.data() + ( hex ? 2 : 0 ), end, value, hex ? 16 : 10 );
   if ( error != std::errc() || stop != end || value > largestType ) {
      throw CLI::ValidationError( "--filter", "no message type is called '" + text + "'" );
   }
   return value;
}

void typesAre( Selection & selection, std::vector< std::string > const & types ) {
   selection.types.clear();
   selection.butTypes = !types.empty() && types.front().starts_with( '!' );
   for ( std::string const & type : types ) {
      bool const but = type.starts_with( '!' );
      if ( but != selection.butTypes && but )
         throw CLI::ValidationError( "--filter", "a ! stands in front of the first type, or of each" );
      selection.types.insert( messageType( type.substr( but ) ) );
   }
}

/// A frame's number, or a time.
void momentIs( CaptureMoment & moment, std::string const & option, std::string const & text ) {
   constexpr std::size_t mostFrameDigits = 9; // seconds since 1970 have more
   char const * const end = text.data() + text.size();
   std::uint64_t frame = 0;
   auto const [stop, error] = std::from_chars( text.data(), end, frame );
   if ( error == std::errc() && stop == end && text.size() <= mostFrameDigits ) {
      moment.frame = frame;
   } else {
      timeIs( moment, option, text );
   }
}

std::map< std::string, TimeStyle > const timeStyles{
   { "a", TimeStyle::local },          { "ad", TimeStyle::localDate }, { "u", TimeStyle::universal },
   { "ud", TimeStyle::universalDate }, { "e", TimeStyle::epoch },      { "r", TimeStyle::relative },
   { "d", TimeStyle::delta },
};

template< class Take >
void addText( CLI::App & command, char const * name, char const * type, char const * help,
              Take const & take ) {
   command.add_option_function< std::string >( name, take, help )->type_name( type );
}

} // namespace

void timeIs( CaptureMoment & moment, std::string const & option, std::string const & text ) {
   unsigned hour, minute;
   double seconds;
   int read = 0;
   char const * const whole = text.c_str();
   if ( std::sscanf( whole, "%2u:%2u:%lf%n", &hour, &minute, &seconds, &read ) == 3 && !whole[read] &&
        hour < 24 && minute < 60 && seconds >= 0 && seconds < 60 ) {
      moment.timeOfDay = hour * 3600.0 + minute * 60.0 + seconds;
   } else if ( std::sscanf( whole, "%lf%n", &seconds, &read ) == 1 && !whole[read] && seconds >= 0 ) {
      moment.time = seconds;
   } else {
      throw CLI::ValidationError( option, text + " is neither hh:mm:ss nor seconds since 1970" );
   }
}

Capture InputOptions::open() const {
   return live() ? Capture::interface( interface, limits.capture ) : Capture::file( file, limits.capture );
}

void addInputOptions( CLI::App & command, InputOptions & options, bool files ) {
   auto * const file = command.add_option(
        "FILE", options.file,
        "capture to read, pcap or pcapng, also compressed with gzip; - is standard input" );
   if ( files ) {
      file->required();
   } else {
      command.add_option( "-i,--interface", options.interface, "listen on this interface" )
           ->type_name( "IFACE" );
   }
   addText( command, "--from", "WHEN", "begin at this frame, or time (as --to)",
            [&options]( std::string const & text ) { momentIs( options.range.from, "--from", text ); } );
   addText( command, "--to", "WHEN",
            "end at this frame, or time: hh:mm:ss on the first day, or seconds since 1970",
            [&options]( std::string const & text ) { momentIs( options.range.to, "--to", text ); } );
   addText( command, "--bpf", "EXPR", "look at packets that pass this filter (pcap-filter)",
            [&options]( std::string const & text ) {
               options.range.filter = text;
               std::string const error = Capture::filterError( text );
               if ( !error.empty() ) throw CLI::ValidationError( "--bpf", error );
            } );
   command
        .add_option_function< std::vector< std::string > >(
             "--filter",
             [&options]( std::vector< std::string > const & types ) { typesAre( options.selection, types ); },
             "look at messages of these types only, and at bad PDUs; with ! in front at all others" )
        ->type_name( "TYPE,..." )
        ->delimiter( ',' )
        ->allow_extra_args( false );
   addText(
        command, "--fec", "PREFIX", "of what is about FECs, only what is about those within the prefix",
        [&options]( std::string const & text ) { options.selection.within = prefixOf( "--fec", text ); } );
   addText( command, "--peer", "ID", "only what this speaker says or is told, has or is part of",
            [&options]( std::string const & text ) { options.peer = speakerOf( "--peer", text ); } );
   command
        .add_option_function< std::string >(
             "-t",
             [&options]( std::string const & name ) {
                TimeStyle const style = timeStyles.at( name );
                options.range.utc = style == TimeStyle::universal || style == TimeStyle::universalDate;
                timeStyleIs( style );
             },
             "times: a local (with date and zone once a capture crosses midnight), ad with date, u UTC, ud "
             "UTC with date, e since 1970, r since the first, d since the one before" )
        ->type_name( "STYLE" )
        ->check( CLI::IsMember( timeStyles ) );
   addLimitOption( command, options.limits );
}

void tellInput( CaptureCounters const & counters, TurnedAway const & turnedAway ) {
   if ( counters.fragments )
      std::cerr << "ldptool: " << counters.fragments << " IP fragments, " << counters.reassembled
                << " packets put together\n";
   if ( counters.dropped )
      std::cerr << "ldptool: " << counters.dropped
                << " packets dropped by the system, which had no room for them\n";
   if ( std::string const text = turnedAwayText( turnedAway, counters ); !text.empty() )
      std::cerr << "ldptool: " << text << '\n';
   if ( !counters.ldpPackets )
      std::cerr << "ldptool: no LDP: none of " << counters.packets << " packets is to or from port 646\n";
}

} // namespace LdpTool
