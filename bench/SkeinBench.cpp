// What a trace statement costs, beside a read of the clock: the least that a record with a time could cost.

#include "BenchRing.h"
#include "Twain/Trace.h"
#include "Twain/Values.h"

#include <benchmark/benchmark.h>
#include <ctime>

namespace {

VORN_TRACE_FACILITY( "SkeinBench" )

void clockRead( benchmark::State & state ) {
   for ( auto _ : state )
      benchmark::DoNotOptimize( Skein::clock() );
}
BENCHMARK( clockRead )->Name( "trace/clock read" );

void clockGettime( benchmark::State & state ) {
   timespec now;
   for ( auto _ : state ) {
      clock_gettime( CLOCK_MONOTONIC, &now );
      benchmark::DoNotOptimize( now );
   }
}
BENCHMARK( clockGettime )->Name( "trace/clock_gettime" );

void threeNumbers( benchmark::State & state ) {
   U32 index = 0;
   std::size_t offset = 0;
   U16 size = 0;
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( index );
      TWAIN_TRACE( 6, "   Msg/TLV ", index, ": offset ", offset, ", size ", size );
   }
}
BENCHMARK( threeNumbers )->Name( "trace/statement, both traces off" );

void noArgument( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "noArgument" );
   for ( auto _ : state )
      TWAIN_TRACE( 6, "         Wildcard FEC Element" );
}
BENCHMARK( noArgument )->Name( "trace/record in a block, no argument" );

void oneNumber( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "oneNumber" );
   U32 id = 0;
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( id );
      TWAIN_TRACE( 9, "newIndex is ", id );
   }
}
BENCHMARK( oneNumber )->Name( "trace/record in a block, one number" );

void threeNumbersInBlock( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "threeNumbersInBlock" );
   threeNumbers( state );
}
BENCHMARK( threeNumbersInBlock )->Name( "trace/record in a block, three numbers" );

void fecInBlock( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "fecInBlock" );
   Mpls::FwdEqvClass const fec( Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000000 ), 8 ) );
   for ( auto _ : state )
      TWAIN_TRACE( 6, "Prefix: ", fec );
}
BENCHMARK( fecInBlock )->Name( "trace/record in a block, a FEC" );

void textInBlock( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "textInBlock" );
   Vorn::String const reason( "FEC TLV is too small, size: 64" );
   for ( auto _ : state )
      TWAIN_TRACE( 5, reason );
}
BENCHMARK( textInBlock )->Name( "trace/record in a block, a text of 30 octets" );

void threeNumbersAlone( benchmark::State & state ) {
   ringOn();
   threeNumbers( state );
}
BENCHMARK( threeNumbersAlone )->Name( "trace/record with a time, three numbers" );

[[gnu::noinline]] void function() { TWAIN_FUNCTION( "function" ); }

void functionTrace( benchmark::State & state ) {
   ringOn();
   for ( auto _ : state )
      function();
}
BENCHMARK( functionTrace )->Name( "trace/function entry and end, two records with a time" );

void functionInBlock( benchmark::State & state ) {
   ringOn();
   TWAIN_FUNCTION( "functionInBlock" );
   for ( auto _ : state )
      function();
}
BENCHMARK( functionInBlock )->Name( "trace/function within a function, one record with a time" );

} // namespace
