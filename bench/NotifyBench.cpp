// What it costs to write an attribute: unobserved, beside a compare and a store by hand, and with observers,
// beside virtual calls by hand and, where they are installed, sigc++ and boost::signals2.

#include "Ldp/LdpAdj.h"
#include "MallocCount.h"

#include <benchmark/benchmark.h>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

#if defined( LDP_BENCH_SIGC )
#include <sigc++/sigc++.h>
#endif
#if defined( LDP_BENCH_BOOST )
#include <boost/signals2.hpp>
#endif

namespace {

using Vorn::Ptr;

Ptr< Ldp::LdpAdjStatus > adjacency() {
   return Ldp::ldpAdjStatusFactory(
        Ldp::LdpAdjId( Ldp::LdpIdentifier( 0x0a000001, 0 ), Lumo::IntfId( "Ethernet1" ) ) );
}

// Writes another value each time.
template< class Write >
void writes( benchmark::State & state, Write const & write ) {
   U32 value = 0;
   U64 const mallocs = mallocCalls;
   for ( auto _ : state ) {
      benchmark::DoNotOptimize( ++value );
      write( value );
      benchmark::ClobberMemory();
   }
   // The library that measures asks a few times itself at the end of a run.
   state.counters["allocations"] =
        std::floor( double( mallocCalls - mallocs ) / double( state.iterations() ) );
}

// An attribute that nobody can observe.

struct Plain {
   void msgIdIs( U32 value ) {
      if ( value == msgId ) return;
      msgId = value;
   }
   U32 msgId = 0;
};

void unobservedByHand( benchmark::State & state ) {
   auto const plain = std::make_unique< Plain >();
   benchmark::DoNotOptimize( plain.get() );
   writes( state, [&]( U32 value ) { plain->msgIdIs( value ); } );
}
BENCHMARK( unobservedByHand )->Name( "write of an unobserved attribute/by hand" );

void unobserved( benchmark::State & state ) {
   auto const status = adjacency();
   benchmark::DoNotOptimize( status.ptr() );
   writes( state, [&]( U32 value ) { status->msgIdIs( value ); } );
}
BENCHMARK( unobserved )->Name( "write of an unobserved attribute/Vorn" );

// The same, but of a thousand objects in turn.

template< class Objects >
void writesInTurn( benchmark::State & state, Objects const & objects ) {
   std::size_t at = 0;
   writes( state, [&]( U32 value ) {
      objects[at]->msgIdIs( value );
      if ( ++at == objects.size() ) at = 0;
   } );
}

void manyByHand( benchmark::State & state ) {
   std::vector< std::unique_ptr< Plain > > all( 1000 );
   for ( auto & plain : all ) {
      plain = std::make_unique< Plain >();
   }
   writesInTurn( state, all );
}
BENCHMARK( manyByHand )->Name( "write of an unobserved attribute, 1000 objects in turn/by hand" );

void many( benchmark::State & state ) {
   std::vector< Ptr< Ldp::LdpAdjStatus > > all( 1000 );
   for ( auto & status : all ) {
      status = adjacency();
   }
   writesInTurn( state, all );
}
BENCHMARK( many )->Name( "write of an unobserved attribute, 1000 objects in turn/Vorn" );

// Each observer adds up what it hears, so that no call can be left out.

} // namespace

namespace Bench {

/// Of a namespace with a name, and with two kinds: a compiler that sees all listeners there are calls none of
/// them, but does their work in its loop.
class Listener {
 public:
   virtual ~Listener() = default;
   virtual void onMsgId() = 0;
};

class Counter : public Listener {
 public:
   void onMsgId() override { ++calls_; }

 private:
   U64 calls_ = 0;
};

} // namespace Bench

namespace {

using Bench::Listener;

struct Observed {
   void msgIdIs( U32 value ) {
      if ( value == msgId ) return;
      msgId = value;
      for ( Listener * const listener : listeners ) {
         listener->onMsgId();
      }
   }
   U32 msgId = 0;
   std::vector< Listener * > listeners;
};

class Adder : public Listener {
 public:
   explicit Adder( Observed const & observed ) : observed_( observed ) {}
   void onMsgId() override { sum_ += observed_.msgId; }

 private:
   Observed const & observed_;
   U64 sum_ = 0;
};

void virtualCalls( benchmark::State & state, U32 num ) {
   Observed observed;
   std::vector< std::unique_ptr< Listener > > listeners;
   for ( U32 i = 0; i < num; ++i ) {
      listeners.push_back( std::make_unique< Adder >( observed ) );
      observed.listeners.push_back( listeners.back().get() );
   }
   // Never observes; it is made so that the loop below has to ask which kind it calls.
   listeners.push_back( std::make_unique< Bench::Counter >() );
   benchmark::DoNotOptimize( listeners.back().get() );
   writes( state, [&]( U32 value ) { observed.msgIdIs( value ); } );
}

class Observer : public Ldp::LdpAdjStatus::NotifieeConst {
 public:
   void onMsgId() override { sum_ += static_cast< Ldp::LdpAdjStatus const & >( *notifier() ).msgId(); }

 private:
   U64 sum_ = 0;
};

void observers( benchmark::State & state, U32 num ) {
   auto const status = adjacency();
   std::vector< Ptr< Observer > > all;
   for ( U32 i = 0; i < num; ++i ) {
      all.push_back( Vorn::newObject< Observer >() );
      all.back()->isRegisteredNotifieeIs( true );
      all.back()->notifierIs( status );
      all.back()->isWeakReferenceIs( true );
   }
   writes( state, [&]( U32 value ) { status->msgIdIs( value ); } );
}

/// An attribute with a signal of a library.
template< class Signal >
void signals( benchmark::State & state, U32 num ) {
   struct Signalled {
      void msgIdIs( U32 value ) {
         if ( value == msgId ) return;
         msgId = value;
         changed();
      }
      U32 msgId = 0;
      Signal changed;
   } signalled;
   std::vector< U64 > sums( num );
   for ( U64 & sum : sums ) {
      signalled.changed.connect( [&] { sum += signalled.msgId; } );
   }
   writes( state, [&]( U32 value ) { signalled.msgIdIs( value ); } );
}

int const registered = [] {
   for ( U32 const num : { 1u, 8u, 64u } ) {
      auto const enter = [&]( char const * what, void ( *run )( benchmark::State &, U32 ) ) {
         auto const name =
              "write with " + std::to_string( num ) + ( num == 1 ? " observer/" : " observers/" ) + what;
         benchmark::RegisterBenchmark( name.c_str(), run, num );
      };
      enter( "virtual calls by hand", virtualCalls );
      enter( "Vorn", observers );
#if defined( LDP_BENCH_SIGC )
      enter( "sigc++", signals< sigc::signal< void() > > );
#endif
#if defined( LDP_BENCH_BOOST )
      enter( "boost::signals2", signals< boost::signals2::signal< void() > > );
      using Unlocked = boost::signals2::signal_type<
           void(), boost::signals2::keywords::mutex_type< boost::signals2::dummy_mutex > >::type;
      enter( "boost::signals2 without a lock", signals< Unlocked > );
#endif
   }
   return 0;
}();

} // namespace
