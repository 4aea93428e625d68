// The text trace: facilities, levels, lines.
#include "Vorn/Trace.h"

#include <chrono>
#include <ctime>
#include <iostream>
#include <map>
#include <mutex>

namespace Vorn {

std::ostream * coverageStream_ = nullptr;

namespace {

/// All facilities and the sink. Never destroyed: destructors of static objects may trace.
struct Facilities {
   std::mutex mutex;
   std::map< String, TraceFacility > byName;
   std::ostream * sink = nullptr;
};
Facilities & facilities() {
   static Facilities & all = *new Facilities;
   return all;
}

std::string timeText() {
   using namespace std::chrono;
   auto const now = system_clock::now().time_since_epoch();
   std::time_t const second = floor< seconds >( now ).count();
   std::tm parts{};
   gmtime_r( &second, &parts );
   char date[32];
   std::strftime( date, sizeof date, "%Y-%m-%dT%H:%M:%S", &parts );
   long long const micro = floor< microseconds >( now % seconds( 1 ) ).count();
   return std::string( date ) + format( ".%06lldZ", micro ).charPtr();
}

} // namespace

constinit std::atomic< bool > TraceFacility::anyEnabled_ = false;

/// The facility of that name, made with those levels if there is none.
TraceFacility & TraceFacility::facility( String const & name, U32 levels ) {
   std::scoped_lock const lock( facilities().mutex );
   auto const [at, isNew] = facilities().byName.try_emplace( name, name );
   if ( isNew && levels ) {
      at->second.levels_.store( levels, std::memory_order_relaxed );
      anyEnabled_.store( true, std::memory_order_relaxed );
   }
   return at->second;
}

void TraceFacility::levelsIs( String const & name, U32 levels ) {
   facility( name, 0 ).levels_.store( levels, std::memory_order_relaxed );
   if ( levels ) anyEnabled_.store( true, std::memory_order_relaxed );
}

void TraceFacility::sinkIs( std::ostream * sink ) {
   std::scoped_lock const lock( facilities().mutex );
   facilities().sink = sink;
}

TraceHandle::TraceHandle( String name, bool allOn )
     : facility_( &TraceFacility::facility( name, allOn ? ~0u : 0 ) ) {}

TraceHelper * TraceHelper::createIfEnabled( TraceHandle const & handle, TraceFacility::FacilityLevel level,
                                            void * where ) noexcept {
   if ( !handle.enabled( level ) && !coverageStream_ ) return nullptr;
   return new ( where ) TraceHelper( handle.facility(), level );
}

void TraceHelper::trace( char const * file, int line, char const * function ) const {
   std::string const all = timeText() + " " + facility_.name().charPtr() + "/" + std::to_string( level_ ) +
                           " " + file + ":" + std::to_string( line ) + " " + function + " " + text_ + "\n";
   std::scoped_lock const lock( facilities().mutex );
   if ( facility_.enabled( level_ ) ) {
      std::ostream & sink = facilities().sink ? *facilities().sink : std::cerr;
      sink << all << std::flush;
   }
   if ( coverageStream_ ) *coverageStream_ << all;
}

} // namespace Vorn
