// However the library is linked, the type table has every type, and not only those that a program names; and
// headers and library are of one version, which is printed.
#include <Ldp/Fwd.h>

// What a header of an agent may hold without the model's headers.
class Agent {
 public:
   Agent();
   ~Agent();

 private:
   Vorn::Ptr< Ldp::Status > status_;
};

#include <Ldp/LdpStatus.h>
#include <Ldp/Version.h>
#include <Vorn/VornType.h>

#include <cstdio>
#include <cstring>

Agent::Agent() : status_( Ldp::statusFactory( L3::VrfName( "default" ) ) ) {}
Agent::~Agent() = default;

int main() {
   Agent const agent;
   for ( char const * name :
         { "Ldp::Status", "Ldp::LdpPwIntfParamSubTlvType", "Mpls::MldpOpaqueValueTable" } ) {
      if ( Vorn::typeNode( name ) ) continue;
      std::fprintf( stderr, "%s is not in the type table\n", name );
      return 1;
   }
   std::puts( Ldp::version() );
   return std::strcmp( Ldp::version(), LDP_VERSION ) != 0;
}
