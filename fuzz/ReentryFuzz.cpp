// The choices of the re-entrant scheduler, an octet each.
#include "support/Reentry.h"

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   Test::Choices choices( data, size );
   Test::meddle( choices, size );
   return 0;
}
