// However the library is linked, the type table has every type, and not only those that a program names.
#include <Vorn/VornType.h>

#include <cstdio>

int main() {
   for ( char const * name :
         { "Ldp::Status", "Ldp::LdpPwIntfParamSubTlvType", "Mpls::MldpOpaqueValueTable" } ) {
      if ( Vorn::typeNode( name ) ) continue;
      std::fprintf( stderr, "%s is not in the type table\n", name );
      return 1;
   }
}
