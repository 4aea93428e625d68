// The attribute log, end to end in memory, beside a hand-written copy of the same values through the same
// kind of buffer and, where it is installed, protobuf messages through that buffer.

#include "HeapBytes.h"
#include "Ldp/LdpAdj.h"
#include "Ldp/LdpConfig.h"
#include "Ldp/LdpP2mpOpaqueTable.h"
#include "Ldp/LdpPeer.h"
#include "Vorn/NboAttrLog.h"

#include <benchmark/benchmark.h>
#include <cstring>
#include <string>
#include <unordered_map>
#include <vector>

#if defined( LDP_BENCH_PROTOBUF )
#include "Adjacency.pb.h"

#include <google/protobuf/io/coded_stream.h>
#endif

namespace {

using Ldp::LdpAdjId;
using Vorn::Name;
using Vorn::Ptr;
using Vorn::NboAttrLog::Demuxer;
using Vorn::NboAttrLog::Out;

constexpr U32 syncEntities = 100'000;

LdpAdjId adjId( U32 number ) {
   static Lumo::IntfId const intfId( "Ethernet1" );
   return LdpAdjId( Ldp::LdpIdentifier( 0x0a000000 + number, 0 ), intfId );
}

/// What somebody would write who copies exactly this by hand: a struct for each adjacency, and one record for
/// a field or for a struct.
struct Adjacency {
   U32 lsrId = 0;
   U16 labelSpace = 0;
   char interface[16] = {};
   U32 target = 0;
   U32 statusCode = 0;
   U16 peerHoldTime = 0;
   U16 operHoldTime = 0;
   double expireTime = 0;
   U32 peerAddress = 0;
   U32 peerSource = 0;
};

struct FieldRecord {
   U32 length;
   U32 index;
   U32 field;
   U64 value;
};

class HandWritten {
 public:
   HandWritten() : buffer_( Out::defaultCapacity ) {}

   template< class Record, class Apply >
   void send( Record const & record, Apply const & apply ) {
      if ( buffer_.size() - used_ < sizeof record ) drain< Record >( apply );
      std::memcpy( &buffer_[used_], &record, sizeof record );
      used_ += sizeof record;
   }
   template< class Record, class Apply >
   void drain( Apply const & apply ) {
      for ( std::size_t at = 0; at < used_; at += sizeof( Record ) ) {
         Record record;
         std::memcpy( &record, &buffer_[at], sizeof record );
         apply( record );
      }
      used_ = 0;
   }

 private:
   std::vector< char > buffer_;
   std::size_t used_ = 0;
};

#if defined( LDP_BENCH_PROTOBUF )

/// Messages behind their length, through the same kind of buffer.
class ByProtobuf {
   using Coded = google::protobuf::io::CodedOutputStream;

 public:
   ByProtobuf() : buffer_( Out::defaultCapacity ) {}

   template< class Message, class Apply >
   void send( Message const & message, Apply const & apply ) {
      std::size_t const length = message.ByteSizeLong();
      if ( buffer_.size() - used_ < sizeof( U32 ) + length ) drain< Message >( apply );
      U8 * const at = Coded::WriteLittleEndian32ToArray( U32( length ), &buffer_[used_] );
      message.SerializeWithCachedSizesToArray( at );
      used_ += sizeof( U32 ) + length;
   }
   template< class Message, class Apply >
   void drain( Apply const & apply ) {
      Message message;
      for ( std::size_t at = 0; at < used_; ) {
         U32 length;
         google::protobuf::io::CodedInputStream::ReadLittleEndian32FromArray( &buffer_[at], &length );
         if ( !message.ParseFromArray( &buffer_[at + sizeof length], int( length ) ) ) std::abort();
         apply( message );
         at += sizeof length + length;
      }
      used_ = 0;
   }

 private:
   std::vector< U8 > buffer_;
   std::size_t used_ = 0;
};

void protobufOf( bench::Adjacency & message, Adjacency const & adjacency ) {
   message.set_lsr_id( adjacency.lsrId );
   message.set_label_space( adjacency.labelSpace );
   message.set_interface( adjacency.interface );
   message.set_target( adjacency.target );
   message.set_status_code( adjacency.statusCode );
   message.set_peer_hold_time( adjacency.peerHoldTime );
   message.set_oper_hold_time( adjacency.operHoldTime );
   message.set_expire_time( adjacency.expireTime );
   message.set_peer_address( adjacency.peerAddress );
   message.set_peer_source( adjacency.peerSource );
}

void protobufTo( Adjacency & adjacency, bench::Adjacency const & message ) {
   adjacency.lsrId = message.lsr_id();
   adjacency.labelSpace = U16( message.label_space() );
   message.interface().copy( adjacency.interface, sizeof adjacency.interface - 1 );
   adjacency.target = message.target();
   adjacency.statusCode = message.status_code();
   adjacency.peerHoldTime = U16( message.peer_hold_time() );
   adjacency.operHoldTime = U16( message.oper_hold_time() );
   adjacency.expireTime = message.expire_time();
   adjacency.peerAddress = message.peer_address();
   adjacency.peerSource = message.peer_source();
}

#endif

struct Link {
   void drain() {
      while ( std::size_t const bytes = out->bytes() ) {
         demuxer->bytesIs( out->data(), bytes );
         out->drained( bytes );
      }
   }
   Ptr< Out > out = Vorn::newObject< Out >();
   Ptr< Demuxer > demuxer = Vorn::newObject< Demuxer >( Vorn::newObject< Out >() );
};

void scalarByHand( benchmark::State & state ) {
   std::vector< Adjacency > original( 1000 ), copy( 1000 );
   HandWritten link;
   auto const apply = [&]( FieldRecord const & record ) {
      copy[record.index].operHoldTime = U16( record.value );
   };
   U32 at = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      Adjacency & adjacency = original[at];
      adjacency.operHoldTime = U16( adjacency.operHoldTime + 1 );
      link.send( FieldRecord{ 20, at, 0x106, adjacency.operHoldTime }, apply );
      if ( ++at == original.size() ) at = 0;
   }
   link.drain< FieldRecord >( apply );
   benchmark::DoNotOptimize( copy.data() );
   state.counters["changes/s"] =
        benchmark::Counter( double( state.iterations() ), benchmark::Counter::kIsRate );
}
BENCHMARK( scalarByHand )->Name( "change of a scalar/by hand" );

#if defined( LDP_BENCH_PROTOBUF )

void scalarByProtobuf( benchmark::State & state ) {
   std::vector< Adjacency > original( 1000 ), copy( 1000 );
   ByProtobuf link;
   auto const apply = [&]( bench::Change const & change ) {
      Adjacency & adjacency = copy[change.index()];
      switch ( change.attribute_case() ) {
      case bench::Change::kStatusCode: adjacency.statusCode = change.status_code(); break;
      case bench::Change::kPeerHoldTime: adjacency.peerHoldTime = U16( change.peer_hold_time() ); break;
      case bench::Change::kOperHoldTime: adjacency.operHoldTime = U16( change.oper_hold_time() ); break;
      case bench::Change::kExpireTime: adjacency.expireTime = change.expire_time(); break;
      case bench::Change::kPeerAddress: adjacency.peerAddress = change.peer_address(); break;
      case bench::Change::kPeerSource: adjacency.peerSource = change.peer_source(); break;
      case bench::Change::ATTRIBUTE_NOT_SET: break;
      }
   };
   bench::Change change;
   U32 at = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      Adjacency & adjacency = original[at];
      adjacency.operHoldTime = U16( adjacency.operHoldTime + 1 );
      change.set_index( at );
      change.set_oper_hold_time( adjacency.operHoldTime );
      link.send( change, apply );
      if ( ++at == original.size() ) at = 0;
   }
   link.drain< bench::Change >( apply );
   benchmark::DoNotOptimize( copy.data() );
   state.counters["changes/s"] =
        benchmark::Counter( double( state.iterations() ), benchmark::Counter::kIsRate );
}
BENCHMARK( scalarByProtobuf )->Name( "change of a scalar/protobuf" );

#endif

void scalarByLog( benchmark::State & state ) {
   auto const coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   std::vector< Ptr< Ldp::LdpAdjStatus > > members;
   for ( U32 i = 0; i < 1000; ++i ) {
      members.push_back( coll->adjStatusIs( adjId( i ) ) );
   }
   Link link;
   coll->vornNboAttrLogSaIs( 0, 0, link.out );
   link.drain();
   std::size_t at = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      auto & member = *members[at];
      member.operHoldTimeIs( U16( member.operHoldTime() + 1 ) );
      if ( ++at == members.size() ) {
         at = 0;
         link.drain();
      }
   }
   link.drain();
   state.counters["changes/s"] =
        benchmark::Counter( double( state.iterations() ), benchmark::Counter::kIsRate );
}
BENCHMARK( scalarByLog )->Name( "change of a scalar/log" );

void syncByHand( benchmark::State & state ) {
   std::unordered_map< U32, Adjacency > original;
   for ( U32 i = 0; i < syncEntities; ++i ) {
      original[i].lsrId = i;
   }
   for ( [[maybe_unused]] auto _ : state ) {
      std::unordered_map< U32, Adjacency > copy;
      HandWritten link;
      auto const apply = [&]( Adjacency const & adjacency ) { copy[adjacency.lsrId] = adjacency; };
      for ( auto const & [key, adjacency] : original ) {
         link.send( adjacency, apply );
      }
      link.drain< Adjacency >( apply );
      benchmark::DoNotOptimize( copy.size() );
   }
}
BENCHMARK( syncByHand )->Name( "sync of 100000 entities/by hand" )->Unit( benchmark::kMillisecond );

#if defined( LDP_BENCH_PROTOBUF )

void syncByProtobuf( benchmark::State & state ) {
   std::unordered_map< U32, Adjacency > original;
   for ( U32 i = 0; i < syncEntities; ++i ) {
      std::strcpy( original[i].interface, "Ethernet1" );
      original[i].lsrId = 0x0a000000 + i;
   }
   for ( [[maybe_unused]] auto _ : state ) {
      std::unordered_map< U32, Adjacency > copy;
      ByProtobuf link;
      auto const apply = [&]( bench::Adjacency const & message ) {
         protobufTo( copy[message.lsr_id()], message );
      };
      bench::Adjacency message;
      for ( auto const & [key, adjacency] : original ) {
         protobufOf( message, adjacency );
         link.send( message, apply );
      }
      link.drain< bench::Adjacency >( apply );
      if ( copy.size() != syncEntities ) state.SkipWithError( "lost" );
   }
}
BENCHMARK( syncByProtobuf )->Name( "sync of 100000 entities/protobuf" )->Unit( benchmark::kMillisecond );

#endif

void syncByLog( benchmark::State & state, bool again ) {
   auto const coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   for ( U32 i = 0; i < syncEntities; ++i ) {
      coll->adjStatusIs( adjId( i ) );
   }
   Ptr< Vorn::Entity > copy;
   double bytes = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      Link link;
      if ( again && copy ) link.demuxer->rootIs( copy );
      coll->vornNboAttrLogSaIs( 0, 0, link.out );
      while ( std::size_t const ready = link.out->bytes() ) {
         link.demuxer->bytesIs( link.out->data(), ready );
         link.out->drained( ready );
         bytes += double( ready );
      }
      copy = link.demuxer->roots().at( 0 );
      if ( static_cast< Ldp::LdpAdjStatusColl & >( *copy ).adjStatuss() != syncEntities )
         state.SkipWithError( "lost" );
   }
   state.counters["octets per entity"] = bytes / double( state.iterations() ) / syncEntities;
}
BENCHMARK_CAPTURE( syncByLog, fresh, false )
     ->Name( "sync of 100000 entities/log" )
     ->Unit( benchmark::kMillisecond );
BENCHMARK_CAPTURE( syncByLog, again, true )
     ->Name( "sync of 100000 entities/log, to a copy that has them" )
     ->Unit( benchmark::kMillisecond );

/// What a million entities hold at both ends together beyond what the source holds: the copy, and adapters.
void memoryByLog( benchmark::State & state ) {
   constexpr U32 entities = 1'000'000;
   malloc_trim( 0 );
   double const before = heapBytes();
   auto const coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   for ( U32 i = 0; i < entities; ++i ) {
      coll->adjStatusIs( adjId( i ) );
   }
   double const source = heapBytes() - before;
   double more = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      Link link;
      coll->vornNboAttrLogSaIs( 0, 0, link.out );
      link.drain();
      more = heapBytes() - before - source;
   }
   state.counters["octets of an entity"] = source / entities;
   state.counters["octets more at both ends"] = more / entities;
   state.counters["octets of its adapters"] = ( more - source ) / entities;
}
BENCHMARK( memoryByLog )
     ->Name( "sync of 1000000 entities/log" )
     ->Unit( benchmark::kMillisecond )
     ->Iterations( 1 );

// Growth: the time for each element must not depend on how many there are. Run with
// --benchmark_filter=growth.

void perElement( benchmark::State & state ) {
   state.counters["per element"] =
        benchmark::Counter( double( state.range() ),
                            benchmark::Counter::kIsIterationInvariantRate | benchmark::Counter::kInvert );
}

/// A queue of which every second element goes, to a fresh copy and to one that has all of it.
void growthQueue( benchmark::State & state, bool again ) {
   for ( [[maybe_unused]] auto _ : state ) {
      state.PauseTiming();
      auto const table = Ldp::ldpP2mpOpaqueTableFactory( Name( "table" ) );
      auto const copy = Ldp::ldpP2mpOpaqueTableFactory( Name( "table" ) );
      for ( U32 i = 0; i < state.range(); ++i ) {
         table->freeIdEnq( i );
         if ( again ) copy->freeIdEnq( i );
      }
      Link link;
      link.demuxer->rootIs( copy );
      table->vornNboAttrLogSaIs( 0, 0, link.out );
      state.ResumeTiming();
      link.drain();
      for ( U32 i = 0; i < state.range(); i += 2 ) {
         table->freeIdDel( i );
      }
      link.drain();
      if ( copy->freeIds() != table->freeIds() ) state.SkipWithError( "lost" );
   }
   perElement( state );
}
/// Roots to a peer that offers a copy of each, in the other order, and their withdrawal.
void growthRoots( benchmark::State & state ) {
   for ( [[maybe_unused]] auto _ : state ) {
      state.PauseTiming();
      std::vector< Ptr< Ldp::LdpAdjStatus > > roots, copies;
      Link link;
      for ( U32 i = 0; i < state.range(); ++i ) {
         roots.push_back( Ldp::ldpAdjStatusFactory( adjId( i ) ) );
         copies.push_back( Ldp::ldpAdjStatusFactory( adjId( U32( state.range() ) - 1 - i ) ) );
      }
      state.ResumeTiming();
      for ( auto const & copy : copies ) {
         link.demuxer->rootIs( copy );
      }
      for ( auto const & root : roots ) {
         root->vornNboAttrLogSaIs( 0, 0, link.out );
      }
      link.drain();
      if ( link.demuxer->roots().back() != copies.front() ) state.SkipWithError( "not the copy" );
      for ( auto const & root : roots ) {
         link.out->rootDel( *root );
      }
      link.drain();
      if ( !link.demuxer->roots().empty() ) state.SkipWithError( "not withdrawn" );
   }
   perElement( state );
}
/// Members that come and go while the other end does not listen, and their way out.
void growthWaiting( benchmark::State & state, bool scalars ) {
   double octets = 0;
   for ( [[maybe_unused]] auto _ : state ) {
      state.PauseTiming();
      auto const coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
      auto const targets = Ldp::pwTargetConfigCollFactory( Name( "targets" ) );
      std::vector< Ptr< Ldp::LdpAdjStatus > > members;
      for ( U32 i = 0; i < state.range(); ++i ) {
         if ( scalars ) members.push_back( coll->adjStatusIs( adjId( i ) ) );
         targets->pwTargetIs( Lumo::IpGenAddr( Lumo::IpAddr( i * 2654435761u ) ), true );
      }
      Link link;
      coll->vornNboAttrLogSaIs( 0, 0, link.out );
      targets->vornNboAttrLogSaIs( 0, 0, link.out );
      link.drain();
      coll->vornNboAttrLogSaIs( Vorn::StreamAdapter::held, 0, link.out );
      targets->vornNboAttrLogSaIs( Vorn::StreamAdapter::held, 0, link.out );
      double const before = heapBytes();
      state.ResumeTiming();
      for ( U32 i = 0; i < state.range(); ++i ) {
         if ( scalars ) {
            members[i]->operHoldTimeIs( 99 );
         } else {
            targets->pwTargetIs( Lumo::IpGenAddr( Lumo::IpAddr( i * 2654435761u ) ), false );
         }
      }
      octets += heapBytes() - before;
      coll->vornNboAttrLogSaIs( 0, 0, link.out );
      targets->vornNboAttrLogSaIs( 0, 0, link.out );
      link.drain();
   }
   state.counters["octets per waiter"] = octets / double( state.iterations() ) / double( state.range() );
   if ( !scalars ) state.counters["octets of a key"] = sizeof( Lumo::IpGenAddr );
   perElement( state );
}
/// Keys of one hash, as a peer may choose them: the 16384th ends the stream.
void growthChosen( benchmark::State & state ) {
   Ldp::LdpIdentifier const id( 1, 0 );
   auto const peer = Ldp::ldpPeerConfigFactory( id );
   Link source;
   peer->vornNboAttrLogSaIs( 0, 0, source.out );
   auto const taken = [&] {
      std::string const octets( reinterpret_cast< char const * >( source.out->data() ), source.out->bytes() );
      source.out->drained( octets.size() );
      return octets;
   };
   std::string stream = taken();
   peer->ldpAdjIs( LdpAdjId( id, Lumo::IpAddr( 0 ) ), true );
   std::string record = taken();
   for ( U32 i = 0; i < state.range(); ++i ) {
      U32 const target = __builtin_bswap32( i );
      std::memcpy( &record[record.size() - 6], &target, sizeof target ); // behind it the value and a token
      stream += record;
   }
   for ( [[maybe_unused]] auto _ : state ) {
      Link link;
      try {
         link.demuxer->bytesIs( stream.data(), stream.size() );
      } catch ( Vorn::AttrLogRecordException const & ) {}
   }
   perElement( state );
}
bool const growthRegistered = [] {
   for ( int const number : { 1000, 10'000, 100'000 } ) {
      auto const add = [&]( char const * name, auto... call ) {
         benchmark::RegisterBenchmark(
              ( std::string( "growth/" ) + name + ", " + std::to_string( number ) ).c_str(), call... )
              ->Arg( number )
              ->Unit( benchmark::kMillisecond );
      };
      add( "queue", growthQueue, false );
      add( "queue, again", growthQueue, true );
      add( "roots", growthRoots );
      add( "waiting keys", growthWaiting, false );
      add( "waiting scalars", growthWaiting, true );
      add( "keys of one hash", growthChosen );
   }
   return true;
}();

} // namespace
