// Exceptions, and a scope that expects one.
#include "Vorn/Exception.h"

namespace Vorn {

Exception::~Exception() = default;
RangeException::~RangeException() = default;
NameInUseException::~NameInUseException() = default;
AttrLogRecordException::~AttrLogRecordException() = default;

thread_local Expect * Expect::innermost_ = nullptr;

bool Expect::expected( Exception::Id id ) noexcept {
   for ( Expect const * at = innermost_; at; at = at->outer_ ) {
      if ( at->id_ == id ) return true;
   }
   return false;
}

void throwRangeException( char const * message ) { throw RangeException( message ); }

void throwNameInUseException( String const & message ) { throw NameInUseException( message ); }

} // namespace Vorn
