// The model at a router's size: one VRF of 100,000 FECs and 64 sessions, which is 6.4 million FEC session
// states, beside plain structs in a hash map; the cost of an entity from a thousand to ten million of them;
// notifiers beside an observer for each FEC; and the attribute log with a million entities.
//
// LDP_BENCH_FECS in the environment sets another number of FECs, for a machine with less than 16 GB.

#include "HeapBytes.h"
#include "Ldp/LdpStatus.h"
#include "Vorn/NboAttrLog.h"

#include <benchmark/benchmark.h>
#include <cstdlib>
#include <memory>
#include <unordered_map>
#include <vector>

namespace {

using namespace Ldp;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::NboAttrLog::Demuxer;
using Vorn::NboAttrLog::Out;

constexpr U32 sessions = 64;

U32 fecNum() {
   static U32 const num = [] {
      char const * const set = std::getenv( "LDP_BENCH_FECS" );
      return set ? U32( std::strtoul( set, nullptr, 10 ) ) : 100'000u;
   }();
   return num;
}

Mpls::FwdEqvClass fec( U32 number ) {
   return Mpls::FwdEqvClass( Lumo::IpGenPrefix( Lumo::IpAddr( 0x0a000000 + number ), 32 ) );
}

LdpSessionId session( U32 number ) { return LdpSessionId( LdpIdentifier( 0xc0a80000 + number, 0 ) ); }

LdpFecSessionId fecSession( U32 number ) {
   return LdpFecSessionId( fec( number / sessions ), session( number % sessions ) );
}

/// What somebody would write who needs only the state: a struct for each FEC on each session, owned by a hash
/// map, and an index of them by session. Labels stand in place, since there is one of each as a rule.
struct PlainStatus {
   LdpFecSessionId id;
   bool isNexthop = false;
   U32 msgIds[6] = {};
   LdpLocalLabelSessionState localState;
   LdpPeerLabelSessionState peerState;
   std::vector< std::pair< Lumo::MplsLabel, LdpLocalLabelState > > localLabels;
   std::vector< std::pair< Lumo::MplsLabel, LdpPeerLabelState > > peerLabels;
   std::vector< std::pair< Lumo::MplsLabel, double > > withdrawLabels;
   std::vector< U32 > requests;
   double acked[2] = {};
   U32 attributeVersion = 0;
   std::unordered_map< U32, U64 > rx, tx;
};
struct ById {
   std::size_t operator()( LdpFecSessionId const & id ) const { return id.hash(); }
};
struct BySession {
   std::size_t operator()( LdpSessionId const & id ) const { return id.hash(); }
};
struct Plain {
   using All = std::unordered_map< LdpFecSessionId, std::unique_ptr< PlainStatus >, ById >;

   void add( U32 number ) {
      LdpFecSessionId const id = fecSession( number );
      auto & status = all[id];
      status = std::make_unique< PlainStatus >();
      status->id = id;
      sessionView[id.ldpSessionId()][id] = status.get();
   }
   PlainStatus * find( LdpFecSessionId const & id ) const {
      auto const found = all.find( id );
      return found == all.end() ? nullptr : found->second.get();
   }
   U64 walk() const {
      U64 sum = 0;
      for ( auto const & [id, status] : all ) {
         sum += status->peerState.value();
      }
      return sum;
   }
   U32 tearDown( LdpSessionId const & id ) {
      auto const view = std::move( sessionView[id] );
      sessionView.erase( id );
      for ( auto const & [key, status] : view ) {
         all.erase( key );
      }
      return U32( view.size() );
   }

   All all;
   std::unordered_map< LdpSessionId, std::unordered_map< LdpFecSessionId, PlainStatus *, ById >, BySession >
        sessionView;
};

struct Model {
   void add( U32 number ) {
      LdpFecSessionId const id = fecSession( number );
      // The order that keeps every reader safe: the owner first, then the view.
      auto const status = all->fecSessionStatusIs( id );
      all->fecSessionStatusBySessionCollIs( id.ldpSessionId() )->fecSessionStatusIs( id, status );
   }
   Ptr< LdpFecSessionStatus > find( LdpFecSessionId const & id ) const { return all->fecSessionStatus( id ); }
   U64 walk() const {
      U64 sum = 0;
      for ( auto & status : all->fecSessionStatusColl() ) {
         sum += status.peerLabelSessionState().value();
      }
      return sum;
   }
   U32 tearDown( LdpSessionId const & id ) {
      auto const view = all->fecSessionStatusBySessionColl( id );
      U32 const num = view->fecSessionStatuss();
      for ( auto & node : view->fecSessionStatusColl() ) {
         LdpFecSessionId const key = node.key();
         view->fecSessionStatusDel( key );
         all->fecSessionStatusDel( key );
      }
      all->fecSessionStatusBySessionCollDel( id );
      return num;
   }

   Ptr< Status > status = statusFactory( L3::VrfName( "default" ) );
   Ptr< LdpFecSessionStatusColl > all = status->ldpFecSessionStatusCollIs( Name() );
};

/// The state of `num` FEC sessions, made anew for another kind or number: a bench works on what the one
/// before it has left, since making it takes longest.
template< class World >
World & worldOf( U32 num ) {
   static std::unique_ptr< World > world;
   static U32 holds = 0;
   if ( !num || holds != num ) {
      world.reset();
      holds = num;
      if ( num ) world = std::make_unique< World >();
      for ( U32 i = 0; i < num; ++i ) {
         world->add( i );
      }
   }
   if ( !world ) world = std::make_unique< World >();
   return *world;
}

U32 scattered( U32 i, U32 num ) { return U32( U64( i ) * 2'654'435'761u % num ); }

template< class World >
void create( benchmark::State & state, U32 num ) {
   worldOf< World >( 0 );
   malloc_trim( 0 );
   double const before = heapBytes();
   World world;
   U32 i = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      world.add( i++ );
   }
   state.counters["bytes each"] = ( heapBytes() - before ) / num;
}

template< class World >
void find( benchmark::State & state, U32 num ) {
   World & world = worldOf< World >( num );
   U32 i = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      benchmark::DoNotOptimize( world.find( fecSession( scattered( i++, num ) ) ) );
   }
}

template< class World >
void walk( benchmark::State & state, U32 num ) {
   World & world = worldOf< World >( num );
   while ( state.KeepRunningBatch( num ) ) {
      benchmark::DoNotOptimize( world.walk() );
   }
}

template< class World >
void tearDownSession( benchmark::State & state, U32 num ) {
   World & world = worldOf< World >( num );
   while ( state.KeepRunningBatch( num / sessions ) ) {
      benchmark::DoNotOptimize( world.tearDown( session( 7 ) ) );
   }
}

template< class World >
void tearDownAll( benchmark::State & state, U32 num ) {
   worldOf< World >( num );
   while ( state.KeepRunningBatch( num ) ) {
      worldOf< World >( 0 );
   }
}

template< class World >
void atFullSize( std::string const & world ) {
   U32 const num = fecNum() * sessions;
   auto const bench = [&]( std::string const & what, auto function, U32 iterations ) {
      benchmark::RegisterBenchmark( ( what + "/" + world ).c_str(), function, num )->Iterations( iterations );
   };
   bench( "create a FEC session", create< World >, num );
   bench( "find a FEC session", find< World >, num );
   bench( "walk the FEC sessions", walk< World >, num );
   bench( "tear down a session, per FEC", tearDownSession< World >, num / sessions );
   bench( "tear down all, per FEC session", tearDownAll< World >, num - num / sessions );
}

void growth() {
   for ( U32 num = 1000; num <= fecNum() * 100; num *= 10 ) {
      std::string const size = std::to_string( num );
      benchmark::RegisterBenchmark( ( "growth, create/" + size ).c_str(), create< Model >, num )
           ->Iterations( num );
   }
   for ( U32 num = 1000; num <= fecNum() * 100; num *= 10 ) {
      std::string const size = std::to_string( num );
      benchmark::RegisterBenchmark( ( "growth, find/" + size ).c_str(), find< Model >, num );
      benchmark::RegisterBenchmark( ( "growth, walk/" + size ).c_str(), walk< Model >, num );
   }
}

// Notifiers: how the observers of all FECs learn of a change of one.

constexpr U32 watchedFecs = 10'000;

struct Watched {
   Watched() {
      for ( U32 i = 0; i < watchedFecs; ++i ) {
         fecs.push_back( coll->fecConfigIs( fec( i ) ) );
      }
   }
   Ptr< LdpFecConfigColl > coll = ldpFecConfigCollFactory( Name( "default" ) );
   std::vector< Ptr< LdpFecConfig > > fecs;
};

class FecObserver : public LdpFecConfig::NotifieeConst {
 public:
   explicit FecObserver( U64 & calls ) : calls_( calls ) {}
   void onVia( Via const & ) override { ++calls_; }

 private:
   U64 & calls_;
};

class NotifierObserver : public LdpFecConfigNotifier::NotifieeConst {
 public:
   explicit NotifierObserver( LdpFecConfigNotifier & notifier, U64 & calls )
        : notifier_( notifier ), calls_( calls ) {}
   void onViaChangeCnt() override { calls_ += notifier_.lastFwdEqvClass().tag() == 0; }

 private:
   LdpFecConfigNotifier & notifier_;
   U64 & calls_;
};

template< class Notifiee, class Notifier >
void bind( Notifiee & notifiee, Ptr< Notifier > const & notifier ) {
   notifiee.isRegisteredNotifieeIs( true );
   notifiee.notifierIs( notifier );
   notifiee.isWeakReferenceIs( true );
}

void observerForEachFec( benchmark::State & state ) {
   Watched watched;
   U64 calls = 0;
   double const before = heapBytes();
   std::vector< Ptr< FecObserver > > observers;
   for ( auto const & each : watched.fecs ) {
      observers.push_back( Vorn::newObject< FecObserver >( calls ) );
      bind( *observers.back(), each );
   }
   state.counters["bytes of observers per FEC"] = ( heapBytes() - before ) / watchedFecs;
   Via const via( Lumo::IpAddr( 0x0a000001 ), Lumo::IntfId( "Ethernet1" ) );
   U32 i = 0;
   bool value = false;
   for ( [[maybe_unused]] auto _ : state ) {
      if ( i == watchedFecs ) i = 0;
      if ( i == 0 ) value = !value;
      watched.fecs[i++]->viaIs( via, value );
   }
   benchmark::DoNotOptimize( calls );
}
BENCHMARK( observerForEachFec )->Name( "a next hop changes/an observer on each FEC" );

void notifierForAllFecs( benchmark::State & state ) {
   Watched watched;
   U64 calls = 0;
   double const before = heapBytes();
   auto const notifier = watched.coll->fecConfigNotifier();
   auto const observer = Vorn::newObject< NotifierObserver >( *notifier, calls );
   bind( *observer, notifier );
   state.counters["bytes of observers per FEC"] = ( heapBytes() - before ) / watchedFecs;
   Via const via( Lumo::IpAddr( 0x0a000001 ), Lumo::IntfId( "Ethernet1" ) );
   U32 i = 0;
   bool value = false;
   for ( [[maybe_unused]] auto _ : state ) {
      if ( i == watchedFecs ) i = 0;
      if ( i == 0 ) value = !value;
      auto const & each = watched.fecs[i++];
      each->viaIs( via, value );
      notifier->updateVia( each );
   }
   benchmark::DoNotOptimize( calls );
}
BENCHMARK( notifierForAllFecs )->Name( "a next hop changes/the notifier" );

// The attribute log: each FEC has its set of advertised peers, an entity of its own.

void resync( benchmark::State & state, bool again ) {
   U32 const entities = fecNum() * 10;
   auto const coll = ldpFecConfigCollFactory( Name( "default" ) );
   for ( U32 i = 0; i < entities / 2; ++i ) {
      coll->fecConfigIs( fec( i ) );
   }
   double const source = heapBytes();
   Ptr< Vorn::Entity > copy;
   double octets = 0, records = 0, peak = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      auto const out = Vorn::newObject< Out >();
      auto const demuxer = Vorn::newObject< Demuxer >( Vorn::newObject< Out >() );
      if ( again && copy ) demuxer->rootIs( copy );
      coll->vornNboAttrLogSaIs( 0, 0, out );
      while ( std::size_t const ready = out->bytes() ) {
         demuxer->bytesIs( out->data(), ready );
         out->drained( ready );
         octets += double( ready );
      }
      peak = heapBytes();
      copy = demuxer->roots().at( 0 );
      records += entities;
      if ( static_cast< LdpFecConfigColl & >( *copy ).fecConfigs() != entities / 2 )
         state.SkipWithError( "lost" );
   }
   double const both = again ? 2 * source : source;
   state.counters["entities/s"] = benchmark::Counter( records, benchmark::Counter::kIsRate );
   state.counters["octets per entity"] = octets / records;
   state.counters["MB source"] = source / 1e6;
   state.counters["MB more at the peak, both ends"] = ( peak - both ) / 1e6;
}
BENCHMARK_CAPTURE( resync, fresh, false )
     ->Name( "resynchronise 1,000,000 entities/to an empty replica" )
     ->Unit( benchmark::kMillisecond )
     ->Iterations( 1 );
BENCHMARK_CAPTURE( resync, again, true )
     ->Name( "resynchronise 1,000,000 entities/to one that has them" )
     ->Unit( benchmark::kMillisecond )
     ->Iterations( 2 );

[[maybe_unused]] bool const registered = [] {
   atFullSize< Plain >( "structs in std::unordered_map" );
   atFullSize< Model >( "model" );
   growth();
   return true;
}();

} // namespace
