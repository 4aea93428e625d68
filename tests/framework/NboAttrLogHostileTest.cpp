// The attribute log under a hostile network, in memory: starved, cut at any octet, begun anew.
// LDP_LONG_TESTS=1 runs many more schedules; LDP_LOG_SEED=n runs that one.

#include "framework/LogWorld.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace Test;
using Vorn::Entity;

/// One schedule: an original that changes all the time, and a copy that lives through several connections.
class Schedule {
 public:
   explicit Schedule( U64 seed )
        : random_( seed ), world_( random_, keys() ), size_( below( 8 ) ? 40 : 600 ) {
      world_.steps( below( size_ * 2 ) );
   }

   void run() {
      for ( U32 connections = 1 + below( 4 ); connections--; ) {
         connection( connections == 0 );
         if ( testing::Test::HasFatalFailure() ) return;
      }
   }

 private:
   U32 below( U32 limit ) { return U32( random_() % limit ); }
   U32 keys() { return below( 8 ) ? 3 + below( 20 ) : 200; }

   void connection( bool last ) {
      U32 const capacity = below( 3 ) ? 64 + below( 200 ) : 64u << below( 11 );
      LogPair pair( capacity );
      for ( auto const & copy : copies_ ) {
         pair.copy.demuxer->rootIs( copy );
      }
      if ( below( 2 ) ) world_.steps( below( size_ ) );
      world_.attach( pair.source.out );
      auto passing = branchFactory( Vorn::Name( "passing" ) );
      for ( U32 rounds = below( 30 ); rounds--; ) {
         passingStep( passing, pair );
         if ( below( 2 ) ) world_.steps( below( size_ / 4 ) );
         carry( pair, below( 2 ) ? below( 20 ) : below( 2 * capacity ) );
         look( pair );
      }
      pair.source.out->rootDel( *passing );
      if ( last ) {
         finish( pair );
      } else {
         // Some octets are under way when the connection is cut.
         auto const lost = pair.take();
         if ( !lost.empty() ) pair.copy.demuxer->bytesIs( lost.data(), below( U32( lost.size() ) ) );
      }
      keep( pair );
   }

   /// A root that comes and goes while the others stay.
   void passingStep( Ptr< Branch > & passing, LogPair & pair ) {
      switch ( below( 6 ) ) {
      case 0: passing->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, pair.source.out ); break;
      case 1: passing->twigIs( below( 30 ), Vorn::String( "oak" ), U16( below( 9 ) ) ); break;
      case 2: passing->eventEnq( "event" ); break;
      case 3:
         pair.source.out->rootDel( *passing );
         passing = branchFactory( Vorn::Name( "passing" ) );
         break;
      }
   }

   /// Carries some octets, in pieces.
   void carry( LogPair & pair, std::size_t most ) {
      while ( most ) {
         std::size_t const piece = 1 + below( U32( most ) );
         most -= piece;
         if ( !pair.carry( piece ) ) return;
      }
   }

   /// What must hold at any time.
   void look( LogPair & pair ) {
      // A change that is taken for one of the copy's own raises an exception there.
      if ( auto const raised = pair.copy.out->takeException() ) {
         ASSERT_NO_THROW( std::rethrow_exception( raised ) );
      }
      ASSERT_EQ( Vorn::NboAttrLog::streamHeaderBytes, pair.copy.out->bytes() ) << "something was echoed";
      for ( auto const & root : pair.copy.demuxer->roots() ) {
         auto const * const tree = dynamic_cast< Tree const * >( root.ptr() );
         if ( !tree ) continue;
         ASSERT_LE( seenHeight_, tree->height() ) << "an attribute went back";
         ASSERT_LE( tree->height(), world_.height() ) << "an attribute has a value that it never had";
         seenHeight_ = tree->height();
      }
   }

   void finish( LogPair & pair ) {
      for ( bool const again : { false, true } ) {
         if ( again ) world_.steps( 1 + below( size_ ) );
         pair.flush();
         look( pair );
         auto const & roots = pair.copy.demuxer->roots();
         ASSERT_EQ( world_.roots().size(), roots.size() );
         for ( std::size_t i = 0; i < roots.size(); ++i ) {
            ASSERT_EQ( logged( *world_.roots()[i] ), logged( *roots[i] ) );
         }
         ASSERT_EQ( pair.source.out->adapters(), pair.copy.out->adapters() );
      }
   }

   void keep( LogPair & pair ) {
      for ( auto const & root : pair.copy.demuxer->roots() ) {
         std::erase_if( copies_, [&]( auto const & copy ) { return copy->fwkType() == root->fwkType(); } );
         copies_.push_back( root );
      }
   }

   std::mt19937_64 random_;
   LogWorld world_;
   U32 size_;
   double seenHeight_ = 0;
   std::vector< Ptr< Entity > > copies_;
};

TEST( NboAttrLogHostile, theCopyEqualsTheOriginalAfterEverySchedule ) {
   char const * const one = std::getenv( "LDP_LOG_SEED" );
   U64 const first = one ? std::strtoull( one, nullptr, 0 ) : std::random_device()() & ~0xfffull;
   U64 const number = one ? 1 : std::getenv( "LDP_LONG_TESTS" ) ? 100'000 : 2'000;
   std::printf( "seeds %llu to %llu\n", static_cast< unsigned long long >( first ),
                static_cast< unsigned long long >( first + number - 1 ) );
   for ( U64 seed = first; seed < first + number; ++seed ) {
      SCOPED_TRACE( "LDP_LOG_SEED=" + std::to_string( seed ) );
      Schedule( seed ).run();
      if ( HasFatalFailure() ) return;
   }
}

} // namespace
