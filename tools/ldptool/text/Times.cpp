// Times of packets.
#include "text/Times.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <optional>

namespace LdpTool {

namespace {

constexpr std::int64_t secondsOfDay = 86400;
constexpr std::int64_t nanosecondsPerSecond = 1000000000;

/// Where the program stands: times are told in the order of the lines that show them.
struct Clock {
   TimeStyle style = TimeStyle::local;
   std::optional< Arrival > first;
   Arrival before;
   std::int64_t quarter = -1; ///< for which the zone is known: no zone changes within a quarter of an hour
   std::int64_t offset = 0;   ///< seconds east of Greenwich
   std::string zone;
   std::optional< std::int64_t > day; ///< of the first one shown
   bool dated = false;
} theClock;

std::int64_t floorOf( std::int64_t number, std::int64_t by ) { return number / by - ( number % by < 0 ); }

void zoneIs( std::int64_t seconds ) {
   constexpr std::int64_t quarterOfHour = 900;
   std::int64_t const quarter = floorOf( seconds, quarterOfHour );
   if ( quarter == theClock.quarter && !theClock.zone.empty() ) return;
   theClock.quarter = quarter;
   std::time_t const second = std::time_t( seconds );
   std::tm parts{};
   localtime_r( &second, &parts );
   theClock.offset = parts.tm_gmtoff;
   theClock.zone = parts.tm_zone ? parts.tm_zone : "?";
}

std::string clockText( Arrival const & arrival, bool universal, bool dated ) {
   if ( !universal ) zoneIs( arrival.seconds );
   std::int64_t const local = arrival.seconds + ( universal ? 0 : theClock.offset );
   std::int64_t const day = floorOf( local, secondsOfDay );
   if ( !theClock.day ) theClock.day = day;
   theClock.dated = theClock.dated || dated || day != *theClock.day;
   auto const second = int( local - day * secondsOfDay );
   char text[64];
   std::snprintf( text, sizeof text, "%02d:%02d:%02d.%06u", second / 3600, second / 60 % 60, second % 60,
                  arrival.nanoseconds / 1000 % 1000000 );
   if ( !theClock.dated ) return text;
   std::time_t const midnight = std::time_t( day * secondsOfDay );
   std::tm parts{};
   gmtime_r( &midnight, &parts );
   char date[32];
   std::strftime( date, sizeof date, "%Y-%m-%d ", &parts );
   return std::string( date ) + text + ( universal ? " UTC" : " " + theClock.zone );
}

std::string sinceText( Arrival const & arrival, Arrival const & earlier ) {
   return epochText( arrival.seconds - earlier.seconds,
                     std::int64_t( arrival.nanoseconds ) - std::int64_t( earlier.nanoseconds ) );
}

} // namespace

std::string epochText( std::int64_t seconds, std::int64_t nanoseconds ) {
   if ( nanoseconds < 0 ) {
      nanoseconds += nanosecondsPerSecond;
      --seconds;
   }
   bool const below = seconds < 0 && nanoseconds; // the part behind the point counts away from zero
   char text[48];
   std::snprintf( text, sizeof text, "%s%lld.%09lld", below && seconds == -1 ? "-" : "",
                  static_cast< long long >( seconds + below ),
                  static_cast< long long >( below ? nanosecondsPerSecond - nanoseconds : nanoseconds ) );
   return text;
}

void timeStyleIs( TimeStyle style ) { theClock.style = style; }
TimeStyle timeStyle() { return theClock.style; }

std::string timeText( Arrival const & arrival ) {
   if ( !theClock.first ) theClock.first = theClock.before = arrival;
   Arrival const before = theClock.before;
   theClock.before = arrival;
   switch ( theClock.style ) {
   case TimeStyle::local: return clockText( arrival, false, false );
   case TimeStyle::localDate: return clockText( arrival, false, true );
   case TimeStyle::universal: return clockText( arrival, true, false );
   case TimeStyle::universalDate: return clockText( arrival, true, true );
   case TimeStyle::epoch: return epochText( arrival.seconds, arrival.nanoseconds );
   case TimeStyle::relative: return sinceText( arrival, *theClock.first );
   case TimeStyle::delta: return sinceText( arrival, before );
   }
   return {};
}

std::string dateAndTime( Arrival const & arrival ) {
   constexpr std::int64_t last = 253402300799; // of the year 9999: the format has no more
   std::time_t const second = std::time_t( std::clamp< std::int64_t >( arrival.seconds, 0, last ) );
   std::tm parts{};
   gmtime_r( &second, &parts );
   char text[64];
   std::size_t const size = std::strftime( text, sizeof text, "%Y-%m-%dT%H:%M:%S", &parts );
   std::snprintf( text + size, sizeof text - size, ".%06uZ", arrival.nanoseconds / 1000 % 1000000 );
   return text;
}

std::string secondText( Arrival const & arrival ) {
   std::string const text = timeText( arrival );
   return text.substr( 0, text.find( '.' ) );
}

} // namespace LdpTool
