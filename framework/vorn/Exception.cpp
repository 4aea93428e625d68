#include "Vorn/Exception.h"

namespace Vorn {

Exception::~Exception() = default;
RangeException::~RangeException() = default;
NameInUseException::~NameInUseException() = default;

void throwRangeException( char const * message ) { throw RangeException( message ); }

void throwNameInUseException( String const & message ) { throw NameInUseException( message ); }

} // namespace Vorn
