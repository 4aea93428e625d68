/// \file
/// The text trace: lines for a person, from named facilities, each of whose levels is switched on or off by
/// itself. A facility that is off costs its callers one test. What a trace statement does never alters an
/// outcome: a line that cannot be built or written is dropped.
#pragma once

#include "Vorn/String.h"

#include <atomic>
#include <string>

namespace Vorn {

/// Where coverage runs collect every trace line, whatever the levels; null otherwise. The program that sets
/// it keeps the stream alive as long as it stands here.
VORN_API extern std::ostream * coverageStream_;

/// A named source of trace lines, one in the process for each name. A facility is known from the moment that
/// either the program switches its levels or the first handle of its name is made.
class VORN_API TraceFacility {
 public:
   /// Kind of detail, 0 to 31. Here 5 is a failure, 6 the walk over units, 8 the entry into functions, 9
   /// detail.
   using FacilityLevel = U32;

   explicit TraceFacility( String name ) : name_( std::move( name ) ) {}

   /// Switches the levels of the facility `name`: bit l stands for level l. At first all are off, but for
   /// those of the facility `Notifiee`.
   static void levelsIs( String const & name, U32 levels );
   /// False as long as nobody has switched any level of any facility on: the first thing that a statement
   /// asks.
   static bool anyEnabled() noexcept { return anyEnabled_.load( std::memory_order_relaxed ); }
   /// Where lines go from now on, by any thread, one at a time; null is standard error, as at first. The
   /// caller owns the stream.
   static void sinkIs( std::ostream * sink );

   /// Name of the facility.
   String const & name() const noexcept { return name_; }
   /// Whether that level is on.
   bool enabled( FacilityLevel level ) const noexcept {
      return levels_.load( std::memory_order_relaxed ) >> level & 1;
   }

 private:
   friend class TraceHandle;
   static TraceFacility & facility( String const & name, U32 levels );

   static std::atomic< bool > anyEnabled_;
   String name_;
   std::atomic< U32 > levels_ = 0;
};

/// What the code of a module holds of its facility. It has no destructor, so that it may be used until the
/// process is gone.
class VORN_API TraceHandle {
 public:
   /// `allOn` switches on all levels of a facility that has been neither set nor named before.
   TraceHandle( String name, bool allOn );

   /// The facility.
   TraceFacility const & facility() const noexcept { return *facility_; }
   /// Whether that level of the facility is on.
   bool enabled( TraceFacility::FacilityLevel level ) const noexcept { return facility_->enabled( level ); }

 private:
   TraceFacility * facility_;
};

/// One line on its way out.
class VORN_API TraceHelper {
 public:
   /// A helper in the storage `where` (size and alignment of a TraceHelper), if that level of the facility is
   /// on or coverage is collected; null otherwise. Whoever takes it puts it in the hands of an
   /// EnsureTraceHelperIsDestroyed.
   static TraceHelper * createIfEnabled( TraceHandle const & handle, TraceFacility::FacilityLevel level,
                                         void * where ) noexcept;

   /// What the statement has to say.
   void textIs( std::string text ) noexcept { text_ = std::move( text ); }
   /// Writes the line: time (UTC), facility and level, place, function, text. It goes to the sink if the
   /// level is on, and to the coverage stream if there is one.
   void trace( char const * file, int line, char const * function ) const;

 private:
   TraceHelper( TraceFacility const & facility, TraceFacility::FacilityLevel level ) noexcept
        : facility_( facility ), level_( level ) {}

   TraceFacility const & facility_;
   TraceFacility::FacilityLevel level_;
   std::string text_;
};

/// Destroys a TraceHelper on every way out of a scope.
class EnsureTraceHelperIsDestroyed {
 public:
   explicit EnsureTraceHelperIsDestroyed( TraceHelper * helper ) noexcept : helper_( helper ) {}
   EnsureTraceHelperIsDestroyed( EnsureTraceHelperIsDestroyed const & ) = delete;
   ~EnsureTraceHelperIsDestroyed() {
      if ( helper_ ) helper_->~TraceHelper();
   }

 private:
   TraceHelper * helper_;
};

} // namespace Vorn
