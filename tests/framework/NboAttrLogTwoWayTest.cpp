// The attribute log: two ends that both write, and ends that do not.

#include "framework/LogOctets.h"
#include "framework/LogSamples.h"

namespace {

using namespace Test;
using Vorn::Name;
using Vorn::String;

TEST( NboAttrLog, bothEndsWriteAndNothingComesBack ) {
   LogEnd a( 0 ), b( 0 );
   auto const carry = []( LogEnd & from, LogEnd & to ) {
      std::size_t const bytes = from.out->bytes();
      if ( bytes ) to.demuxer->bytesIs( from.out->data(), bytes );
      from.out->drained( bytes );
      return bytes;
   };
   auto const tree = grownTree();
   tree->vornNboAttrLogSaIs( 0, 0, a.out );
   carry( a, b );
   auto & copy = static_cast< Tree & >( *b.demuxer->roots().at( 0 ) );
   EXPECT_EQ( Vorn::NboAttrLog::streamHeaderBytes, b.out->bytes() );
   copy.ageIs( 5 );
   copy.branchIs( Name( "from the copy" ) )->twigIs( 1U, String( "elm" ), U16( 2 ) )->labelIs( "new" );
   copy.branchDel( Name( "right" ) );
   tree->kindIs( "changed meanwhile" );
   tree->branch( Name( "right" ) )->numberInc( 5 ); // crosses the deletion
   tree->branch( Name( "right" ) )->twigIs( 77U, String( "elm" ), U16( 2 ) )->labelIs( "lost" );
   carry( a, b );
   carry( b, a );
   EXPECT_EQ( logged( *tree ), logged( copy ) );
   EXPECT_EQ( 5, tree->age() );
   EXPECT_EQ( nullptr, tree->branch( Name( "right" ) ) );
   EXPECT_EQ( 0u, a.out->bytes() + b.out->bytes() );

   // Both make the same member at the same time; each then knows it by its own number.
   tree->branchIs( Name( "both" ) );
   copy.branchIs( Name( "both" ) );
   carry( a, b );
   carry( b, a );
   tree->branch( Name( "both" ) )->numberInc( 3 );
   carry( a, b );
   EXPECT_EQ( 3u, copy.branch( Name( "both" ) )->number() );
   copy.branch( Name( "both" ) )->markIs( 9 );
   carry( b, a );
   EXPECT_EQ( logged( *tree ), logged( copy ) );
   EXPECT_EQ( nullptr, a.out->takeException() );
}

TEST( NboAttrLog, whatAnObserverMakesOfARecordGoesBack ) {
   LogEnd a( 0 ), b( 0 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( 0, 0, a.out );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   a.out->drained( a.out->bytes() );
   auto & copy = static_cast< Tree & >( *b.demuxer->roots().at( 0 ) );
   struct AtMostNine : Tree::Notifiee {
      explicit AtMostNine( Tree & tree ) : tree_( tree ) {
         isRegisteredNotifieeIs( true );
         notifierIs( Ptr< Vorn::PtrInterface const >( &tree ) );
         isWeakReferenceIs( true );
         hasNotificationActiveIs( true );
      }
      void onAge() override {
         if ( tree_.age() > 9 ) tree_.ageIs( 9 );
      }
      Tree & tree_;
   };
   auto const observer = Vorn::newObject< AtMostNine >( copy );
   tree->ageIs( 50 );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   a.out->drained( a.out->bytes() );
   a.demuxer->bytesIs( b.out->data(), b.out->bytes() );
   EXPECT_EQ( 9, tree->age() );
}

TEST( NboAttrLog, aMarkedMemberSendsNothingUntilItIsNamed ) {
   LogEnd end( 0 );
   Octets const member = record( 3, 2, 0x103, twig + number( 3 ) + number( 3 ) );
   auto const marker = []( U8 type ) { return record( 1, 2, 0x103, Octets{ type } + number( 0 ) ); };
   auto const take = [&]( Octets const & octets ) { end.demuxer->bytesIs( octets.data(), octets.size() ); };
   take( good + member );
   Branch & branch = *static_cast< Tree & >( *end.demuxer->roots().at( 0 ) ).branch( Name( "branch" ) );
   branch.twigIs( 6U, String( "elm" ), U16( 1 ) );
   end.out->drained( end.out->bytes() );
   take( marker( 0 ) );
   auto const named = branch.twig( 5 );
   named->labelIs( "written meanwhile" );
   branch.twig( 6 )->labelIs( "written in vain" );
   EXPECT_EQ( 0u, end.out->bytes() );
   take( member );
   EXPECT_NE( 0u, end.out->bytes() );
   end.out->drained( end.out->bytes() );
   take( marker( 2 ) );
   EXPECT_EQ( named, branch.twig( 5 ) );
   EXPECT_EQ( nullptr, branch.twig( 6 ) ) << "not named, so the other end does not have it";
   EXPECT_EQ( 0u, end.out->bytes() ) << "which it need not be told";
   for ( U32 i = 1; i < 64; ++i ) {
      take( marker( 0 ) );
   }
   EXPECT_THROW( take( marker( 0 ) ), Vorn::AttrLogRecordException ) << "nothing but work for this end";
}

// Ends that do not write.

TEST( NboAttrLog, aLocalWriteOnAReadOnlyEndIsReported ) {
   Adjacencies pair;
   pair.copied().adjStatus( adjId( 1 ) )->operHoldTimeIs( 5 );
   auto const raised = pair.copy.out->takeException();
   ASSERT_NE( nullptr, raised );
   EXPECT_THROW( std::rethrow_exception( raised ), Vorn::RangeException );
   EXPECT_EQ( nullptr, pair.copy.out->takeException() );
   EXPECT_EQ( Vorn::NboAttrLog::streamHeaderBytes, pair.copy.out->bytes() ) << "nothing is sent";
}

TEST( NboAttrLog, aWriteFromAReadOnlyCopyIsRefused ) {
   LogEnd a( StreamAdapter::remoteReadOnly ), b( 0 );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, a.out );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   static_cast< Tree & >( *b.demuxer->roots().at( 0 ) ).ageIs( 5 );
   EXPECT_THROW( a.demuxer->bytesIs( b.out->data(), b.out->bytes() ), Vorn::AttrLogRecordException );
   EXPECT_EQ( 0, tree->age() );
}

TEST( NboAttrLog, aReadOnlyCopyWritesNeitherByAGroupNorByARoot ) {
   LogEnd end( StreamAdapter::remoteReadOnly );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, end.out );
   Octets const branchDel = Octets{ 0, 4, 0, 18 } + number( 0u - 0x108 ) + counted( "branch" );
   Octets const lie = header + record( 0, 0x80000001, 0x90, branchDel );
   tree->branchIs( Name( "branch" ) );
   EXPECT_THROW( end.demuxer->bytesIs( lie.data(), lie.size() ), Vorn::AttrLogRecordException );
   EXPECT_NE( nullptr, tree->branch( Name( "branch" ) ) );
   LogEnd other( StreamAdapter::remoteReadOnly );
   EXPECT_THROW( other.demuxer->bytesIs( good.data(), good.size() ), Vorn::AttrLogRecordException );
   EXPECT_TRUE( other.demuxer->roots().empty() );
   // Nor when what suppressed it goes.
   Adjacencies pair;
   pair.flush();
   for ( U32 const flags :
         { StreamAdapter::readOnly | StreamAdapter::suppressed, U32( StreamAdapter::readOnly ) } )
      pair.root()->vornNboAttrLogSaIs( flags, 0, pair.copy.out );
   EXPECT_EQ( Vorn::NboAttrLog::streamHeaderBytes, pair.copy.out->bytes() );
}

TEST( NboAttrLog, theHostMayLetAReadOnlyEndWrite ) {
   struct AgeOnly : Vorn::NboAttrLog::Permits {
      bool writable( Vorn::Entity & entity ) override { return entity.fwkType() == &Tree::_vornType; }
      bool writeFromReadOnlyRemote( Vorn::Entity &, U32 attributeId ) override {
         return attributeId == 0x105 || attributeId == 0x108;
      }
   };
   LogEnd a( StreamAdapter::remoteReadOnly ), b( StreamAdapter::readOnly );
   a.out->permitsIs( std::make_unique< AgeOnly >() );
   b.out->permitsIs( std::make_unique< AgeOnly >() );
   auto const tree = treeFactory( Name( "tree" ) );
   tree->branchIs( Name( "branch" ) );
   tree->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, a.out );
   b.demuxer->bytesIs( a.out->data(), a.out->bytes() );
   auto & copy = static_cast< Tree & >( *b.demuxer->roots().at( 0 ) );
   auto const carry = [&] {
      std::size_t const bytes = b.out->bytes();
      a.demuxer->bytesIs( b.out->data(), bytes );
      b.out->drained( bytes );
   };
   copy.branch( Name( "branch" ) )->numberInc( 1 );
   EXPECT_NE( nullptr, b.out->takeException() ) << "this entity is not let";
   copy.ageIs( 5 );
   EXPECT_EQ( nullptr, b.out->takeException() );
   carry();
   EXPECT_EQ( 5, tree->age() );
   // What the host holds back waits, of a collection too.
   copy.vornNboAttrLogSaIs( StreamAdapter::readOnly | StreamAdapter::held, 0, b.out );
   copy.branchDel( Name( "branch" ) );
   copy.vornNboAttrLogSaIs( StreamAdapter::readOnly, 0, b.out );
   EXPECT_EQ( nullptr, b.out->takeException() );
   carry();
   EXPECT_EQ( 0u, tree->branchs() );
   copy.heightIs( 5 );
   EXPECT_THROW( carry(), Vorn::AttrLogRecordException ) << "this attribute is not let";
   EXPECT_EQ( 0, tree->height() );
}

} // namespace
