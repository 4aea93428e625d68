// The main of all benchmark programs. A benchmark's name is GROUP/CASE. At the end of the run a table
// (Markdown) shows each case beside the first of its group, and what it counted.

#include <algorithm>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <string>
#include <vector>

namespace {

class RatioReporter : public benchmark::BenchmarkReporter {
 public:
   bool ReportContext( Context const & context ) override {
      PrintBasicContext( &GetErrorStream(), context );
      return true;
   }

   // With repetitions the fastest counts: on a machine shared with others everything else is their doing.
   void ReportRuns( std::vector< Run > const & runs ) override {
      for ( Run const & run : runs ) {
         if ( run.run_type != Run::RT_Iteration || run.error_occurred ) continue;
         std::string const & name = run.run_name.function_name;
         double const time = run.GetAdjustedCPUTime();
         auto const known =
              std::find_if( rows_.begin(), rows_.end(), [&]( Row const & row ) { return row.name == name; } );
         if ( known == rows_.end() ) {
            rows_.push_back( { name, time, run.counters } );
         } else if ( time < known->time ) {
            *known = { name, time, run.counters };
         }
      }
   }

   void Finalize() override {
      std::vector< std::string > printed;
      for ( Row const & first : rows_ ) {
         std::string const group = first.group();
         if ( std::find( printed.begin(), printed.end(), group ) != printed.end() ) continue;
         printed.push_back( group );
         std::printf( "\n| %s | ns | ratio | counted |\n|---|---|---|---|\n", group.c_str() );
         for ( Row const & row : rows_ )
            if ( row.group() == group ) row.print( first.time );
      }
   }

 private:
   struct Row {
      std::string group() const { return name.substr( 0, name.find( '/' ) ); }
      void print( double base ) const {
         std::string counted;
         for ( auto const & [what, counter] : counters ) {
            char text[64];
            std::snprintf( text, sizeof text, "%.4g %s", counter.value, what.c_str() );
            counted += ( counted.empty() ? "" : ", " ) + std::string( text );
         }
         std::printf( "| %s | %.1f | %.2f | %s |\n", name.substr( name.find( '/' ) + 1 ).c_str(), time,
                      time / base, counted.c_str() );
      }

      std::string name;
      double time;
      benchmark::UserCounters counters;
   };
   std::vector< Row > rows_;
};

} // namespace

int main( int argc, char ** argv ) {
   benchmark::Initialize( &argc, argv );
   if ( benchmark::ReportUnrecognizedArguments( argc, argv ) ) return 1;
   RatioReporter reporter;
   benchmark::RunSpecifiedBenchmarks( &reporter );
}
