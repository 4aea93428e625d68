// ldptool: the commands and the exit status.
#include "commands/Commands.h"

#include "Ldp/Version.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <iostream>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

// Whoever starts the program without its standard streams gets what he has asked for, an error, and not a
// capture or a socket in the place of the output.
void holdStandardStreams() {
   for ( int stream : { STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO } ) {
      if ( fcntl( stream, F_GETFD ) == -1 && errno == EBADF )
         (void)!open( "/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY );
   }
}

// A file in the place of a command is to be decoded.
std::vector< std::string > argumentsOf( CLI::App const & app, int argc, char ** argv ) {
   std::vector< std::string > arguments( argv + 1, argv + argc );
   auto const isFirst = [&]( CLI::App const * command ) { return command->get_name() == arguments[0]; };
   if ( !arguments.empty() && app.get_subcommands( isFirst ).empty() &&
        ( arguments[0] == "-" || access( argv[1], F_OK ) == 0 ) )
      arguments.insert( arguments.begin(), "decode" );
   std::reverse( arguments.begin(), arguments.end() ); // the parser takes them from behind
   return arguments;
}

/// Memory can run out where nothing may throw. That is no reason to abort either; nothing here may allocate.
[[noreturn]] void onTerminate() {
   try {
      if ( auto const error = std::current_exception() ) std::rethrow_exception( error );
   } catch ( std::bad_alloc const & ) {
      constexpr std::string_view text = "ldptool: out of memory\n";
      (void)!write( STDERR_FILENO, text.data(), text.size() );
      _exit( LdpTool::exitUsage );
   } catch ( ... ) {}
   std::abort();
}

int fail( char const * why ) {
   std::fprintf( stderr, "ldptool: %s\n", why );
   return LdpTool::exitUsage;
}

} // namespace

int main( int argc, char ** argv ) {
   using namespace LdpTool;
   holdStandardStreams();
   std::set_terminate( onTerminate );
   CLI::App app{ "Looks at the Label Distribution Protocol (LDP, RFC 5036). ldptool FILE decodes the file." };
   app.name( "ldptool" );
   app.set_version_flag( "--version", std::string( "ldptool " ) + Ldp::version() );
   app.require_subcommand( 1 );
   app.failure_message( []( CLI::App const *, CLI::Error const & error ) {
      return std::string( "ldptool: " ) + error.what() + " (see ldptool --help)\n";
   } );
   addDecodeCommand( app );
   addExplainCommand( app );
   addLogCommand( app );
   addReportCommand( app );
   addRingCommand( app );
   addTypesCommand( app );
   addWatchCommand( app );
   addCompletionCommand( app );
   try {
      app.parse( argumentsOf( app, argc, argv ) );
   } catch ( CLI::RuntimeError const & done ) {
      return done.get_exit_code(); // a command ran and said so
   } catch ( CLI::ParseError const & error ) {
      if ( app.exit( error ) != 0 ) return exitUsage;
      std::cout.flush(); // help was asked for
      return std::cout ? exitGood : fail( "cannot write the output" );
   } catch ( std::bad_alloc const & ) {
      return fail( "out of memory" );
   } catch ( std::exception const & error ) {
      return fail( error.what() );
   }
}
