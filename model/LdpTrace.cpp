// The ring trace, begun as the environment says.
#include "Ldp/LdpTrace.h"

#include "Skein/Ring.h"

#include <cstdlib>

int Ldp_skeinInitialize() {
   char const * const set = std::getenv( "SKFILE" );
   char const * const fileNameFormat = set && *set ? set : "LdpAgent-%d.sk";
   return Skein::initialize( fileNameFormat, nullptr, nullptr, 0, 24, Skein::MultiThreading::one, true, 512 );
}
