// The attribute log under a hostile network, in memory: starved, cut at any octet, begun anew; in a third of
// the schedules both ends write. LDP_LONG_TESTS=1 runs many more of them; LDP_LOG_SEED=n begins with that
// seed and runs one, or LDP_LOG_COUNT=n.

#include "framework/LogWorld.h"

#include <algorithm>
#include <cstdlib>

namespace {

using namespace Test;
using Vorn::Entity;

/// One schedule: an original that changes all the time, and a copy that lives through several connections.
/// Where both ends write, the copy's end has an original of its own, and is the one that writes the age of
/// the copied tree.
class Schedule {
 public:
   explicit Schedule( U64 seed )
        : random_( seed ), world_( random_, keys() ), there_( random_, keys() ),
          size_( below( 8 ) ? 40 : 600 ), bothWrite_( below( 3 ) == 0 ) {
      if ( bothWrite_ ) world_.leaveAge();
      steps( below( size_ * 2 ) );
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

   void steps( U32 number ) {
      world_.steps( number );
      if ( bothWrite_ ) there_.steps( number );
   }

   void connection( bool last ) {
      U32 const capacity = below( 3 ) ? 64 + below( 200 ) : 64u << below( 11 );
      LogPair pair( capacity, bothWrite_ );
      offer( copies_, pair.copy );
      offer( copiesHere_, pair.source );
      if ( below( 2 ) ) steps( below( size_ ) );
      world_.attach( pair.source.out, !bothWrite_ );
      if ( bothWrite_ ) there_.attach( pair.copy.out, false );
      auto passing = branchFactory( Vorn::Name( "passing" ) );
      for ( U32 rounds = below( 30 ); rounds--; ) {
         passingStep( passing, pair );
         if ( below( 2 ) ) steps( below( size_ / 4 ) );
         for ( bool const back : { false, true } ) {
            if ( back && !bothWrite_ ) break;
            carry( pair, back, below( 2 ) ? below( 20 ) : below( 2 * capacity ) );
         }
         if ( bothWrite_ && below( 4 ) == 0 ) writeAge( pair );
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

   void offer( std::vector< Ptr< Entity > > const & copies, LogEnd & end ) {
      for ( auto const & copy : copies ) {
         end.demuxer->rootIs( copy );
      }
   }

   /// Carries some octets, in pieces.
   void carry( LogPair & pair, bool back, std::size_t most ) {
      while ( most ) {
         std::size_t const piece = 1 + below( U32( most ) );
         most -= piece;
         if ( !( back ? LogPair::carry( pair.copy, pair.source, piece ) : pair.carry( piece ) ) ) return;
      }
   }

   /// Writes the age at the copy's end, when all that the other end wrote has come.
   void writeAge( LogPair & pair ) {
      pair.flush();
      for ( auto const & root : pair.copy.demuxer->roots() ) {
         if ( auto * const tree = dynamic_cast< Tree * >( root.ptr() ) ) tree->ageIs( U8( random_() ) );
      }
   }

   /// What must hold at any time.
   void look( LogPair & pair ) {
      // A change that is taken for one of the copy's own raises an exception there.
      if ( auto const raised = pair.copy.out->takeException() ) {
         ASSERT_NO_THROW( std::rethrow_exception( raised ) );
      }
      if ( !bothWrite_ ) {
         ASSERT_EQ( Vorn::NboAttrLog::streamHeaderBytes, pair.copy.out->bytes() ) << "something was echoed";
      }
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
         if ( again ) steps( 1 + below( size_ ) );
         if ( again && bothWrite_ ) writeAge( pair );
         do {
            pair.flush();
         } while ( bothWrite_ && LogPair::carry( pair.copy, pair.source ) );
         look( pair );
         compare( world_, pair.copy );
         if ( !bothWrite_ ) continue;
         ASSERT_TRUE( pair.copy.out->idle() );
         compare( there_, pair.source );
      }
      ASSERT_EQ( pair.source.out->adapters(), pair.copy.out->adapters() );
   }

   void compare( LogWorld const & world, LogEnd const & end ) {
      auto const & roots = end.demuxer->roots();
      ASSERT_EQ( world.roots().size(), roots.size() );
      for ( std::size_t i = 0; i < roots.size(); ++i ) {
         ASSERT_EQ( logged( *world.roots()[i] ), logged( *roots[i] ) );
      }
   }

   void keep( LogPair & pair ) {
      keep( pair.copy, copies_ );
      keep( pair.source, copiesHere_ );
   }
   void keep( LogEnd const & end, std::vector< Ptr< Entity > > & copies ) {
      for ( auto const & root : end.demuxer->roots() ) {
         std::erase_if( copies, [&]( auto const & copy ) { return copy->fwkType() == root->fwkType(); } );
         copies.push_back( root );
      }
   }

   std::mt19937_64 random_;
   LogWorld world_;
   LogWorld there_; // the original of the copy's end, where both write
   U32 size_;
   bool bothWrite_;
   double seenHeight_ = 0;
   std::vector< Ptr< Entity > > copies_;
   std::vector< Ptr< Entity > > copiesHere_; // of the other original
};

TEST( NboAttrLogHostile, theCopyEqualsTheOriginalAfterEverySchedule ) {
   char const * const one = std::getenv( "LDP_LOG_SEED" );
   U64 const first = one ? std::strtoull( one, nullptr, 0 ) : std::random_device()() & ~0xfffull;
   char const * const count = std::getenv( "LDP_LOG_COUNT" );
   U64 const number = count                             ? std::strtoull( count, nullptr, 0 )
                      : one                             ? 1
                      : std::getenv( "LDP_LONG_TESTS" ) ? 100'000
                                                        : 1'000;
   std::printf( "seeds %llu to %llu\n", static_cast< unsigned long long >( first ),
                static_cast< unsigned long long >( first + number - 1 ) );
   for ( U64 seed = first; seed < first + number; ++seed ) {
      SCOPED_TRACE( "LDP_LOG_SEED=" + std::to_string( seed ) );
      Schedule( seed ).run();
      if ( HasFatalFailure() ) return;
   }
}

} // namespace
