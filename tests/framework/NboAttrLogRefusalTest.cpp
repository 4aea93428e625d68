// Streams that lie, pieces of every size, and what a change must not cost.

#include "framework/LogOctets.h"
#include "framework/LogPair.h"
#include "framework/LogWorld.h"
#include "support/LogKinds.h"

#include "Ldp/LdpAdj.h"
#include "Ldp/LdpPeer.h"

#include <cstdlib>
#include <fstream>
#include <new>
#include <sstream>

namespace {

std::size_t allocations = 0;
std::size_t failing = 0; // that many allocations from now on one fails; 0: none

} // namespace

// Every allocation of the process is counted.
[[gnu::noinline]] void * operator new( std::size_t size ) {
   ++allocations;
   if ( failing && --failing == 0 ) throw std::bad_alloc();
   if ( void * const block = std::malloc( size ? size : 1 ) ) return block;
   throw std::bad_alloc();
}
[[gnu::noinline]] void operator delete( void * block ) noexcept { std::free( block ); }
[[gnu::noinline]] void operator delete( void * block, std::size_t ) noexcept { std::free( block ); }

namespace {

using namespace Test;
using Vorn::AttrLogRecordException;
using Vorn::Name;
using Vorn::String;

/// The octets of a row of refusals.txt, behind its name.
Octets refusedOf( std::string const & row ) {
   auto const bar = row.find( '|' );
   std::istringstream head( row.substr( 0, bar ) ), words( row.substr( bar + 1 ) );
   Octets value;
   for ( std::string word; words >> word; ) {
      std::string const inner = word.substr( 1, word.size() - 2 );
      if ( word[0] == 'n' ) {
         value = value + number( U32( std::stoul( word.substr( 1 ), nullptr, 16 ) ) );
      } else if ( word[0] == '"' ) {
         value = value + counted( inner );
      } else if ( word[0] == '\'' ) {
         value = value + text( inner );
      } else {
         for ( std::size_t i = 0; i < word.size(); i += 2 )
            value.push_back( U8( std::stoul( word.substr( i, 2 ), nullptr, 16 ) ) );
      }
   }
   std::string kind;
   U32 entity, attribute;
   head >> kind >> std::hex >> entity >> attribute;
   if ( kind == "raw" ) return value;
   if ( kind == "group" )
      return record( 0, entity, attribute, Octets{ 0, 4, 0, U8( value.size() + 4 ) } + value );
   return record( U8( std::stoul( kind ) ), entity, attribute, value );
}

TEST( NboAttrLogRefusal, aStreamThatLiesIsRefusedWholeAndWhatStoodBeforeItStays ) {
   std::ifstream table( LDP_TEST_CAPTURES "/../framework/refusals.txt" );
   std::size_t rows = 0;
   for ( std::string line; std::getline( table, line ); ) {
      if ( line.empty() || line[0] == '#' ) continue;
      ++rows;
      Octets const refused = refusedOf( line.substr( line.find( '|' ) + 1 ) );
      SCOPED_TRACE( line );
      LogEnd end( StreamAdapter::readOnly );
      ASSERT_NO_THROW( end.demuxer->bytesIs( good.data(), good.size() ) );
      auto & tree = static_cast< Tree & >( *end.demuxer->roots().at( 0 ) );
      std::string const before = logged( tree );
      EXPECT_EQ( 7, tree.age() );
      Octets const lie = refused + record( 0, 1, 0x105, { 99 } );
      EXPECT_THROW( end.demuxer->bytesIs( lie.data(), lie.size() ), AttrLogRecordException );
      EXPECT_EQ( before, logged( tree ) );
      EXPECT_THROW( end.demuxer->bytesIs( good.data(), good.size() ), AttrLogRecordException )
           << "nor anything after";
      EXPECT_EQ( before, logged( tree ) );
   }
   EXPECT_EQ( rows, 66u );
}

TEST( NboAttrLogRefusal, anotherStreamIsNoAttributeLog ) {
   for ( Octets const & octets :
         { Octets{ 'V', 'N', 'A', 'M', 0, 1, 0, 0 }, Octets{ 'V', 'N', 'A', 'L', 0, 2, 0, 0 },
           Octets{ 'V', 'N', 'A', 'L', 0, 1, 0, 1 } } ) {
      LogEnd end( StreamAdapter::readOnly );
      EXPECT_THROW( end.demuxer->bytesIs( octets.data(), octets.size() ), AttrLogRecordException );
   }
}

TEST( NboAttrLogRefusal, everyPrefixWaitsForTheRest ) {
   Octets const all = good + record( 3, 2, 0x103, twig + number( 3 ) + number( 3 ) );
   for ( std::size_t cut = 0; cut <= all.size(); ++cut ) {
      LogEnd end( StreamAdapter::readOnly );
      ASSERT_NO_THROW( end.demuxer->bytesIs( all.data(), cut ) );
      for ( std::size_t at = cut; at < all.size(); ++at ) {
         ASSERT_NO_THROW( end.demuxer->bytesIs( &all[at], 1 ) );
      }
      auto & tree = static_cast< Tree & >( *end.demuxer->roots().at( 0 ) );
      ASSERT_EQ( 9, tree.branch( Name( "branch" ) )->twig( 5 )->load() );
   }
}

TEST( NboAttrLogRefusal, everyDamagedOctetIsRefusedOrHarmless ) {
   Octets const all =
        good + record( 3, 2, 0x103, twig + number( 3 ) + number( 3 ) ) +
        record( 0, 2, 0x104, counted( "score" ) + number( 0 ) + number( 0 ) ) +
        record( 1, 2, 0x107, Octets{ 0 } + number( 0 ) + number( 4 ) + number( 5 ) ) +
        record( 0, 2, 0x107, number( 4 ) + counted( "event" ) ) +
        record( 0, 2, 0u - 0x90,
                Octets{ 0, 4, 0, 37 } + number( 0u - 0x103 ) + number( 5 ) + number( 0x103 ) + number( 6 ) +
                     counted( "ash" ) + Octets{ 0, 1 } + number( 3 ) + number( 4 ) ) +
        record( 0, 1, 0u - 0x88, {} );
   for ( std::size_t at = 0; at < all.size(); ++at ) {
      for ( U8 const change : { U8( 0x01 ), U8( 0x80 ), U8( 0xff ) } ) {
         Octets damaged = all;
         damaged[at] = U8( damaged[at] ^ change );
         LogEnd end( StreamAdapter::readOnly );
         try {
            end.demuxer->bytesIs( damaged.data(), damaged.size() );
         } catch ( AttrLogRecordException const & ) {}
         EXPECT_EQ( nullptr, end.out->takeException() );
      }
   }
   LogEnd end( StreamAdapter::readOnly );
   ASSERT_NO_THROW( end.demuxer->bytesIs( all.data(), all.size() ) ) << "undamaged it is good";
   EXPECT_TRUE( end.demuxer->roots().empty() );
}

TEST( NboAttrLogRefusal, aFreshConnectionRepairsWhatALieLeft ) {
   LogEnd lied( StreamAdapter::readOnly );
   Octets const lie = good + record( 0, 1, 0x104, { 2 } );
   EXPECT_THROW( lied.demuxer->bytesIs( lie.data(), lie.size() ), AttrLogRecordException );
   auto const copy = lied.demuxer->roots().at( 0 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->branchIs( Name( "another" ) );
   LogPair pair;
   pair.copy.demuxer->rootIs( copy );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   EXPECT_EQ( copy, pair.root() );
   EXPECT_EQ( logged( *tree ), logged( *copy ) );
}

TEST( NboAttrLogRefusal, theReasonIsThatOfTheValue ) {
   LogEnd end( StreamAdapter::readOnly );
   Octets const octets =
        header + record( 2, 0, 1, text( "Ldp::LdpAdjStatus" ) ) +
        record( 3, 0, 0x88,
                Octets{ 0 } + number( 1 ) + Octets{ 2 } + number( 0x0a000001 ) + Octets{ 0, 0 } +
                     counted( "" ) + number( 0 ) + Octets{ 3 } + number( 1 ) ) +
        record( 0, 1, 0x108, { 9 } );
   try {
      end.demuxer->bytesIs( octets.data(), octets.size() );
      FAIL();
   } catch ( AttrLogRecordException const & refused ) {
      EXPECT_EQ( String( "Invalid IpGenAddr" ), refused.message() );
   }
}

TEST( NboAttrLogRefusal, aRecordLongerThanTheBufferTakesABlockOfItsOwn ) {
   LogPair pair( 64 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   tree->kindIs( String( std::string( 100'000, 'x' ) ) );
   tree->ageIs( 3 );
   std::size_t carried = 0;
   while ( std::size_t const bytes = pair.carry( 1000 ) ) {
      carried += bytes;
      EXPECT_EQ( carried > 100'019 ? 3 : 0, static_cast< Tree & >( *pair.root() ).age() ) << carried;
   }
   EXPECT_EQ( logged( *tree ), logged( *pair.root() ) );
   EXPECT_TRUE( pair.source.out->failure().empty() );
}

TEST( NboAttrLogRefusal, aRecordThatNoReaderTakesEndsTheLog ) {
   LogPair pair;
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   std::size_t const longest = Out::maxRecordBytes - 11 - 4; // head and tokens, the text's length
   tree->kindIs( String( std::string( longest, 'x' ) ) );
   pair.flush();
   EXPECT_EQ( tree->kind(), static_cast< Tree & >( *pair.root() ).kind() );
   tree->kindIs( String( std::string( longest + 1, 'x' ) ) );
   EXPECT_FALSE( pair.source.out->failure().empty() );
   EXPECT_EQ( 0u, pair.source.out->bytes() );
   tree->ageIs( 9 );
   EXPECT_EQ( 0u, pair.source.out->bytes() );
}

TEST( NboAttrLogRefusal, keysOfOneHashAreRefusedBeforeTheyEndTheProcess ) {
   LogEnd end( StreamAdapter::readOnly );
   auto const target = []( U32 last ) {
      return number( 1 ) + Octets{ 0, 0 } + counted( "" ) + number( last ) + Octets{ 1 };
   };
   U32 const most = 16383;
   Octets all =
        header + record( 2, 0, 1, text( "Ldp::LdpPeerConfig" ) ) +
        record( 3, 0, 0x88,
                Octets{ 0 } + number( 1 ) + Octets{ 2 } + number( 1 ) + Octets{ 0, 0, 3 } + number( 1 ) );
   for ( U32 i = most; i--; ) {
      Octets const one = record( 0, 1, 0x103, target( i ) );
      all.insert( all.end(), one.begin(), one.end() );
   }
   end.demuxer->bytesIs( all.data(), all.size() );
   auto & peer = static_cast< Ldp::LdpPeerConfig & >( *end.demuxer->roots().at( 0 ) );
   EXPECT_EQ( most, peer.ldpAdjs() );
   Octets const known = record( 0, 1, 0x103, target( 7 ) );
   EXPECT_NO_THROW( end.demuxer->bytesIs( known.data(), known.size() ) );
   Octets const further = record( 0, 1, 0x103, target( most ) );
   EXPECT_THROW( end.demuxer->bytesIs( further.data(), further.size() ), AttrLogRecordException );
   EXPECT_EQ( most, peer.ldpAdjs() );

   // Handed on to somebody who does not listen, each change waits by its key, beside those that have gone.
   auto const relay = Vorn::newObject< Out >( 1024u );
   peer.vornNboAttrLogSaIs( 0, 0, relay );
   while ( auto const bytes = relay->bytes() ) {
      relay->drained( bytes );
   }
   for ( U32 i = 0; i < most; ++i ) {
      peer.ldpAdjIs( Ldp::LdpAdjId( Ldp::LdpIdentifier( 1, 0 ), Lumo::IpAddr( i ) ), false );
   }
   peer.ldpAdjDel( Ldp::LdpAdjId( Ldp::LdpIdentifier( 1, 0 ), Lumo::IpAddr( 7 ) ) );
   peer.ldpAdjIs( Ldp::LdpAdjId( Ldp::LdpIdentifier( 1, 0 ), Lumo::IpAddr( most ) ), true );
   EXPECT_EQ( nullptr, relay->takeException() );
}

TEST( NboAttrLogRefusal, memoryThatRunsOutIsReportedAndLosesNothing ) {
   U32 reports = 0;
   U32 refusals = 0;
   for ( U64 seed = 0; seed < 40; ++seed ) {
      SCOPED_TRACE( seed );
      std::mt19937_64 random( seed );
      LogWorld world( random, 20 );
      world.steps( 200 );
      auto pair = std::make_unique< LogPair >( 64u << random() % 8 );
      // One allocation fails. What was asked for may not have happened, but the log does not forget it.
      auto const run = [&]( auto const & call ) {
         failing = 1 + random() % 30;
         try {
            call();
         } catch ( std::bad_alloc const & ) {
            ++reports;
         }
         failing = 0;
         while ( auto const raised = pair->source.out->takeException() ) {
            EXPECT_THROW( std::rethrow_exception( raised ), std::bad_alloc );
            ++reports;
         }
      };
      run( [&] { world.attach( pair->source.out ); } );
      world.attach( pair->source.out );
      for ( U32 i = 0; i < 100; ++i ) {
         run( [&] { world.step(); } );
         run( [&] { pair->source.out->bytes(); } );
         if ( i % 4 ) continue;
         auto const octets = pair->take();
         try {
            if ( i % 32 == 0 ) failing = 1 + random() % 30;
            pair->copy.demuxer->bytesIs( octets.data(), octets.size() );
         } catch ( std::bad_alloc const & ) {
            failing = 0;
            ++refusals;
            EXPECT_THROW( pair->copy.demuxer->bytesIs( "x", 1 ), AttrLogRecordException );
            auto next = std::make_unique< LogPair >( 200 );
            for ( auto const & copy : pair->copy.demuxer->roots() ) {
               next->copy.demuxer->rootIs( copy );
            }
            pair = std::move( next );
            world.attach( pair->source.out );
         }
         failing = 0;
      }
      pair->flush();
      auto const & roots = pair->copy.demuxer->roots();
      ASSERT_EQ( world.roots().size(), roots.size() );
      for ( auto const & root : roots ) {
         for ( auto const & original : world.roots() ) {
            if ( original->fwkType() != root->fwkType() ) continue;
            EXPECT_EQ( logged( *original ), logged( *root ) );
         }
      }
   }
   EXPECT_LT( 0u, reports );
   EXPECT_LT( 0u, refusals );
}

TEST( NboAttrLogRefusal, aScalarChangeWithRoomAllocatesNothing ) {
   auto const coll = Ldp::ldpAdjStatusCollFactory( Name( "default" ) );
   Ldp::LdpAdjId const id( Ldp::LdpIdentifier( 1, 0 ), Lumo::IntfId( "Ethernet1" ) );
   auto const member = coll->adjStatusIs( id );
   auto const tree = treeFactory( Name( "tree" ) );
   LogPair pair;
   coll->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   tree->vornNboAttrLogSaIs( 0, 0, pair.source.out );
   pair.flush();
   String const kind( "a kind that is a string of some length" );
   auto & blocks = Vorn::memClasses_;
   std::size_t const before = allocations;
   U32 kept = 0;
   for ( auto const & block : blocks ) {
      kept += block.freeNum;
   }
   for ( U16 i = 1; i < 100; ++i ) {
      member->operHoldTimeIs( i );
      member->adjExpireTimeIs( i );
      member->peerIpAddrIs( Lumo::IpGenAddr( Lumo::IpAddr( i ) ) );
      tree->kindIs( i % 2 ? kind : String() );
   }
   U32 keptAfter = 0;
   for ( auto const & block : blocks ) {
      keptAfter += block.freeNum;
   }
   EXPECT_EQ( before, allocations );
   EXPECT_EQ( kept, keptAfter ) << "nor from the free lists";
   EXPECT_LT( 4000u, pair.source.out->bytes() ) << "yet all of it was written";
}

} // namespace
