// Entities made by their collection, read and destroyed, beside a map of pointers to structs of the same
// content: nanoseconds and bytes for each of them.

#include "HeapBytes.h"
#include "Ldp/LdpAdj.h"
#include "MallocCount.h"

#include <algorithm>
#include <benchmark/benchmark.h>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <vector>

namespace {

using Ldp::LdpAdjId;

struct Hash {
   std::size_t operator()( LdpAdjId const & id ) const { return id.hash(); }
};

/// What an `LdpAdjStatus` holds besides its key.
struct Adjacency {
   Ldp::LdpStatusCode adjStatusCode = Ldp::success;
   U32 msgId = 0;
   U16 peerHoldTime = 0;
   U16 operHoldTime = 0;
   double adjExpireTime = 0;
   Lumo::IpGenAddr peerIpAddr = Lumo::IpAddr();
   Lumo::IpGenAddr peerSrcIpAddr = Lumo::IpAddr();
   U32 peerConfigSeqNum = 0;
   U32 rxPktCount = 0;
   U32 errPktCount = 0;
};

// One face for both.

struct ByHand {
   std::unordered_map< LdpAdjId, std::unique_ptr< Adjacency >, Hash > map;

   void add( LdpAdjId const & id ) { map.emplace( id, std::make_unique< Adjacency >() ); }
   void del( LdpAdjId const & id ) { map.erase( id ); }
   U32 msgId( LdpAdjId const & id ) const { return map.find( id )->second->msgId; }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & [id, adjacency] : map ) {
         sum += adjacency->msgId;
      }
      return sum;
   }
};

struct ByCollection {
   Vorn::Ptr< Ldp::LdpAdjStatusColl > coll = Ldp::ldpAdjStatusCollFactory( Vorn::Name( "default" ) );

   void add( LdpAdjId const & id ) { coll->adjStatusIs( id ); }
   void del( LdpAdjId const & id ) { coll->adjStatusDel( id ); }
   U32 msgId( LdpAdjId const & id ) const { return coll->adjStatus( id )->msgId(); }
   U32 sum() const {
      U32 sum = 0;
      for ( auto const & status : coll->adjStatusColl() ) {
         sum += status.msgId();
      }
      return sum;
   }
};

/// Different peers on one interface, in an order that no map can guess.
std::vector< LdpAdjId > shuffledIds( std::size_t num ) {
   Lumo::IntfId const intfId( "Ethernet1" );
   std::vector< LdpAdjId > ids;
   for ( U32 i = 0; i < num; ++i ) {
      ids.emplace_back( Ldp::LdpIdentifier( 0x0a000000 + i, 0 ), intfId );
   }
   std::shuffle( ids.begin(), ids.end(), std::mt19937( 1 ) );
   return ids;
}

template< class Coll >
void addAll( Coll & coll, std::vector< LdpAdjId > const & ids ) {
   for ( LdpAdjId const & id : ids ) {
      coll.add( id );
   }
}

template< class Coll >
void create( benchmark::State & state, std::size_t num ) {
   auto const ids = shuffledIds( num );
   std::unique_ptr< Coll > coll;
   double bytes = 0;
   U64 mallocs = 0;
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      state.PauseTiming();
      coll.reset();
      coll = std::make_unique< Coll >();
      double const before = heapBytes();
      U64 const mallocsBefore = mallocCalls;
      state.ResumeTiming();
      addAll( *coll, ids );
      state.PauseTiming();
      bytes = std::max( bytes, heapBytes() - before );
      mallocs = std::max( mallocs, mallocCalls - mallocsBefore );
      state.ResumeTiming();
   }
   if ( num < 100'000 ) return; // the library's free lists hold as many as that from an earlier run
   state.counters["bytes each"] = bytes / double( num );
   state.counters["calls of malloc each"] = double( mallocs ) / double( num );
}

/// All at once, as the destructor of their owner does.
template< class Coll >
void destroy( benchmark::State & state, std::size_t num ) {
   auto const ids = shuffledIds( num );
   std::unique_ptr< Coll > coll;
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      state.PauseTiming();
      coll = std::make_unique< Coll >();
      addAll( *coll, ids );
      state.ResumeTiming();
      coll.reset();
   }
}

/// One goes and comes back, among the others.
template< class Coll >
void replace( benchmark::State & state, std::size_t num ) {
   auto const ids = shuffledIds( num );
   Coll coll;
   addAll( coll, ids );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      for ( LdpAdjId const & id : ids ) {
         coll.del( id );
         coll.add( id );
      }
   }
}

template< class Coll >
void read( benchmark::State & state, std::size_t num ) {
   auto ids = shuffledIds( num );
   Coll coll;
   addAll( coll, ids );
   std::shuffle( ids.begin(), ids.end(), std::mt19937( 2 ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      for ( LdpAdjId const & id : ids ) {
         benchmark::DoNotOptimize( coll.msgId( id ) );
      }
   }
}

template< class Coll >
void walk( benchmark::State & state, std::size_t num ) {
   Coll coll;
   addAll( coll, shuffledIds( num ) );
   while ( state.KeepRunningBatch( std::ptrdiff_t( num ) ) ) {
      benchmark::DoNotOptimize( coll.sum() );
   }
}

int const registered = [] {
   for ( std::size_t const num : { 10u, 1000u, 100'000u, 1'000'000u } ) {
      auto const enter = [&]( char const * work, auto byHand, auto byCollection ) {
         auto const group = std::string( work ) + " among " + std::to_string( num ) + "/";
         benchmark::RegisterBenchmark( ( group + "std::unordered_map of std::unique_ptr" ).c_str(), byHand,
                                       num );
         benchmark::RegisterBenchmark( ( group + "collection of entities" ).c_str(), byCollection, num );
      };
      enter( "create", create< ByHand >, create< ByCollection > );
      enter( "destroy", destroy< ByHand >, destroy< ByCollection > );
      enter( "delete and create", replace< ByHand >, replace< ByCollection > );
      enter( "look up and read", read< ByHand >, read< ByCollection > );
      enter( "walk", walk< ByHand >, walk< ByCollection > );
   }
   return 0;
}();

} // namespace
