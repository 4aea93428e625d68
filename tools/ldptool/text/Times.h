#pragma once

// Times of packets, in the forms that users of other tools know.

#include "capture/Flow.h"

#include <string>

namespace LdpTool {

enum class TimeStyle {
   local,     ///< time of day; with date and zone from the first midnight on that the capture crosses
   localDate, ///< with them on each line
   universal, ///< the same two in UTC
   universalDate,
   epoch,    ///< seconds since 1970, with nanoseconds
   relative, ///< seconds since the first one shown
   delta,    ///< seconds since the one shown before
};

/// Of all that the program prints from now on.
void timeStyleIs( TimeStyle style );
TimeStyle timeStyle();

/// Time of a packet: `12:26:40.000012`.
std::string timeText( Arrival const & arrival );
/// Seconds since the epoch, with all nine digits behind the point.
std::string epochText( std::int64_t seconds, std::int64_t nanoseconds );
/// Date and time in UTC as RFC 3339 has it: `2026-11-22T12:26:40.000012Z`.
std::string dateAndTime( Arrival const & arrival );
/// The same as `timeText` to whole seconds.
std::string secondText( Arrival const & arrival );

} // namespace LdpTool
