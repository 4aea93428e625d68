// ldptool: the commands and the exit status.
#include "commands/Commands.h"

#include "Ldp/Version.h"

#include <CLI/CLI.hpp>

int main( int argc, char ** argv ) {
   using namespace LdpTool;
   CLI::App app{ "Looks at the Label Distribution Protocol (LDP, RFC 5036)." };
   app.name( "ldptool" );
   app.set_version_flag( "--version", std::string( "ldptool " ) + Ldp::version() );
   app.require_subcommand( 1 );
   app.failure_message( []( CLI::App const *, CLI::Error const & error ) {
      return std::string( "ldptool: " ) + error.what() + " (see ldptool --help)\n";
   } );
   addDecodeCommand( app );
   addRingCommand( app );
   addTypesCommand( app );
   addWatchCommand( app );
   try {
      app.parse( argc, argv );
   } catch ( CLI::RuntimeError const & done ) {
      return done.get_exit_code(); // a command ran and said so
   } catch ( CLI::ParseError const & error ) {
      return app.exit( error ) == 0 ? exitGood : exitUsage; // 0 is a request for help
   }
}
