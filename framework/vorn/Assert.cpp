// How an assertion ends the process.
#include "Vorn/Assert.h"

// The C runtime's reporter, declared here because <cassert> hides it in builds without assertions.
extern "C" [[noreturn]] void __assert_fail( char const * text, char const * file, unsigned line,
                                            char const * function ) noexcept;

namespace Vorn {

void assertionFailed( char const * text, char const * file, unsigned line, char const * function ) noexcept {
   __assert_fail( text, file, line, function );
}

} // namespace Vorn
