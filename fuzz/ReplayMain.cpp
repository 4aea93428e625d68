// Runs a fuzz entry point over files that are at hand, for the ordinary test run: no fuzzer, any compiler.
#include "Vorn/Api.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size );

// Named by the targets' mutators, which a replay does not call.
extern "C" std::size_t LLVMFuzzerMutate( U8 *, std::size_t, std::size_t );
extern "C" std::size_t LLVMFuzzerMutate( U8 *, std::size_t, std::size_t ) { std::abort(); }

int main( int argc, char ** argv ) {
   std::size_t inputs = 0;
   for ( int i = 1; i < argc; ++i ) {
      if ( !std::filesystem::is_directory( argv[i] ) ) continue;
      for ( auto const & entry : std::filesystem::directory_iterator( argv[i] ) ) {
         std::ifstream file( entry.path(), std::ios::binary );
         std::string const input{ std::istreambuf_iterator< char >( file ), {} };
         std::fprintf( stderr, "%s\n", entry.path().c_str() ); // the last one named is the culprit
         // In a block of exactly its size, so that a sanitizer sees the first octet read behind it.
         auto const block = std::make_unique< U8[] >( input.size() );
         std::copy( input.begin(), input.end(), block.get() );
         LLVMFuzzerTestOneInput( block.get(), input.size() );
         ++inputs;
      }
   }
   std::printf( "%zu inputs\n", inputs );
   return inputs ? EXIT_SUCCESS : EXIT_FAILURE;
}
