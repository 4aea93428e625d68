// Runs a fuzz entry point over files that are at hand, for the ordinary test run: no fuzzer, any compiler.
#include "Vorn/Api.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <dirent.h>
#include <memory>
#include <string>

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size );

// Named by the targets' mutators, which a replay does not call.
extern "C" std::size_t LLVMFuzzerMutate( U8 *, std::size_t, std::size_t );
extern "C" std::size_t LLVMFuzzerMutate( U8 *, std::size_t, std::size_t ) { std::abort(); }

int main( int argc, char ** argv ) {
   std::size_t inputs = 0;
   for ( int i = 1; i < argc; ++i ) {
      // By what the memory sanitizer sees into, which the standard library's streams and paths are not.
      std::unique_ptr< DIR, int ( * )( DIR * ) > const folder( opendir( argv[i] ), closedir );
      while ( dirent const * const entry = folder ? readdir( folder.get() ) : nullptr ) {
         if ( entry->d_name[0] == '.' ) continue;
         std::string const path = std::string( argv[i] ) + '/' + entry->d_name;
         std::unique_ptr< std::FILE, int ( * )( std::FILE * ) > const file( std::fopen( path.c_str(), "rb" ),
                                                                            std::fclose );
         std::string input;
         char part[4096];
         while ( std::size_t const octets = file ? std::fread( part, 1, sizeof part, file.get() ) : 0 ) {
            input.append( part, octets );
         }
         std::fprintf( stderr, "%s\n", path.c_str() ); // the last one named is the culprit
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
