// An attribute travels the log if and only if its record says so: one sweep over all entity types.
#include "model/Samples.h"

#include "Ldp/LdpAdj.h"
#include "Ldp/LdpConfig.h"
#include "Vorn/NboAttrLog.h"
#include "Vorn/System.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using namespace Test;
using Vorn::Entity;
using Vorn::Ptr;
using Vorn::PtrInterface;
using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;
using Vorn::GenericIf::Value;
namespace GenericIf = Vorn::GenericIf;
namespace NboAttrLog = Vorn::NboAttrLog;

// An original, its copy, and the log between them.
class Carried {
 public:
   explicit Carried( VornType const & type ) : original_( newSampleObject( type, 0 ) ) { onLog( original_ ); }

   // Another entity, which an attribute may refer to.
   void onLog( Ptr< PtrInterface > const & object ) {
      carried_.push_back( object );
      static_cast< Entity & >( *object ).vornNboAttrLogSaIs( 0, 0, out_ );
      carry();
   }
   // Octets that went across.
   std::size_t carry() {
      std::size_t all = 0;
      while ( std::size_t const bytes = out_->bytes() ) {
         demuxer_->bytesIs( out_->data(), bytes );
         out_->drained( bytes );
         all += bytes;
      }
      return all;
   }
   Ptr< PtrInterface > const & original() const { return original_; }
   Ptr< PtrInterface > copy() const { return demuxer_->roots().at( 0 ); }
   NboAttrLog::Out::Adapter * adapter() const {
      return out_->adapter( static_cast< Entity & >( *original_ ) );
   }

 private:
   Ptr< PtrInterface > original_;
   std::vector< Ptr< PtrInterface > > carried_;
   Ptr< NboAttrLog::Out > out_ = Vorn::newObject< NboAttrLog::Out >();
   Ptr< NboAttrLog::Demuxer > demuxer_ =
        Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
};

// What an attribute holds, as text: of a collection the keys with their members, of an entity type and name.
std::string content( Ptr< PtrInterface > const & object, VornAttr const & attr ) {
   bool const isEntity = attr.type->isDerived( &Entity::_vornType );
   auto const text = [&]( Value const & value ) {
      std::string shown = value.stringValue().charPtr();
      if ( isEntity && shown != "null" ) {
         auto const & entity = *static_cast< Ptr< PtrInterface > const * >( value.data() );
         shown += static_cast< Entity & >( *entity ).nameText().charPtr();
      }
      return shown;
   };
   if ( !attr.keyed() ) {
      Value value = room( *attr.type );
      EXPECT_EQ( attributeOp( object, attr, GenericIf::read, value.data(), nullptr, {} ), GenericIf::done );
      return text( value );
   }
   std::set< std::string > members;
   for ( GenericIf::Iterator it( address( object ), attr ); it; it.advance() ) {
      Value key( attr.keyType );
      Value value = room( *attr.type );
      it.key( key.data() );
      it.object( value.data() );
      members.insert( key.stringValue().charPtr() + ( "=" + text( value ) ) );
   }
   std::string all;
   for ( std::string const & member : members ) {
      all += member + " ";
   }
   return all;
}

// Changes the attribute so that it holds something else than before.
void change( Carried & carried, VornAttr const & attr ) {
   auto const & object = carried.original();
   std::string const before = content( object, attr );
   // A child of the constructor may go by the first sample, and a value be it.
   std::size_t index = attr.kind() == VornKind::child ? 1 : 0;
   for ( ; index < 2 && content( object, attr ) == before; ++index ) {
      std::vector< Value > const args = sampleArgs( attr, index );
      if ( attr.kind() == VornKind::reference && attr.logged() )
         carried.onLog( *static_cast< Ptr< PtrInterface > const * >( args.front().data() ) );
      Value const key = sampleKey( attr, index );
      EXPECT_EQ( attributeOp( object, attr, GenericIf::write, nullptr, key.data(), args ), GenericIf::done );
   }
   EXPECT_NE( content( object, attr ), before );
}

TEST( LogSweep, AnAttributeTravelsIfAndOnlyIfItIsLogged ) {
   Vorn::System::clockIs( [] { return 1.5; } ); // some defaults are the time
   for ( ExpectedType const & expected : expectedEntities() ) {
      VornType const & type = typeOf( expected.name );
      if ( !type.newEntityForAttrLog ) continue; // it never comes to a log
      for ( ExpectedAttr const & expectedAttr : expectedAttributes( expected ) ) {
         SCOPED_TRACE( expected.name + "::" + expectedAttr.name );
         if ( !type.attribute( expectedAttr.id ) ) continue; // the record's own test says so
         VornAttr const & attr = *type.attribute( expectedAttr.id );
         if ( attr.kind() == VornKind::function || expectedAttr.isWrite ) continue;
         Carried carried( type );
         ASSERT_TRUE( carried.adapter() );
         std::string const before = content( carried.copy(), attr );
         EXPECT_EQ( before, content( carried.original(), attr ) ) << "constructor arguments and defaults";
         if ( !isWritten( attr ) ) continue;
         change( carried, attr );
         if ( expectedAttr.logged ) {
            EXPECT_GT( carried.carry(), 0u );
            EXPECT_EQ( content( carried.copy(), attr ), content( carried.original(), attr ) );
         } else {
            EXPECT_EQ( carried.carry(), 0u );
            EXPECT_EQ( content( carried.copy(), attr ), before );
         }
      }
   }
   Vorn::System::clockIs( nullptr );
}

TEST( LogSweep, ASyncWalksTheLoggedCollectionsInOrder ) {
   for ( ExpectedType const & expected : expectedEntities() ) {
      std::vector< U32 > walked;
      for ( ExpectedAttr const & attr : expectedAttributes( expected ) ) {
         if ( attr.logged && !attr.key.empty() ) walked.push_back( attr.id );
      }
      walked.push_back( 0 );
      if ( !typeOf( expected.name ).newEntityForAttrLog ) {
         EXPECT_EQ( walked.size(), 1u ) << expected.name;
         continue;
      }
      Carried const carried( typeOf( expected.name ) );
      EXPECT_EQ( carried.adapter()->attrIdsReqSync(), walked ) << expected.name;
   }
}

TEST( LogSweep, EntitiesAndMembersOfLoggedCollectionsHaveAnAdapter ) {
   std::set< std::string > carried;
   for ( ExpectedType const & type : expectedEntities() ) {
      if ( type.adapter ) carried.insert( type.name );
      for ( ExpectedAttr const & attr : expectedAttributes( type ) ) {
         if ( !attr.logged ) continue;
         carried.insert( type.name );
         if ( attr.kind == VornKind::entityColl || attr.kind == VornKind::child ) carried.insert( attr.type );
      }
   }
   EXPECT_TRUE( carried.count( "Ldp::LdpStaticP2mpFecBindingEntry" ) ) << "it has no logged attribute";
   EXPECT_FALSE( carried.count( "Ldp::LdpPeerStatus" ) );
   for ( ExpectedType const & type : expectedEntities() ) {
      bool const travels = carried.count( type.name );
      auto const object = newSampleObject( typeOf( type.name ), 0 );
      auto & entity = static_cast< Entity & >( *object );
      EXPECT_EQ( entity.vornHasAttrLogInterface(), travels ) << type.name;
      auto const out = Vorn::newObject< NboAttrLog::Out >();
      EXPECT_EQ( bool( entity.vornNboAttrLogSaIs( 0, 0, out ) ), travels ) << type.name;
      // Nor does a peer bring one: its type is refused before it is made.
      auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
      std::string const named = std::string( "VNAL\0\1\0\0\0\0", 10 ) + char( 0 ) +
                                char( type.name.size() + 11 ) + std::string( "\2\0\0\0\0\0\0\0\1\0", 10 ) +
                                type.name + '\2';
      try {
         demuxer->bytesIs( named.data(), named.size() );
         EXPECT_TRUE( travels ) << type.name;
      } catch ( Vorn::AttrLogRecordException const & ) {
         EXPECT_FALSE( travels ) << type.name;
      }
   }
}

TEST( LogSweep, ARangeIsKeptOnTheWayIn ) {
   // A flag word of 4, as a record's value.
   static U8 const word[] = { 0, 0, 0, 4 };
   auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
   NboAttrLog::In in( word, sizeof word, *demuxer );
   VornType const & type = typeOf( "Ldp::LdpGrOperationalFlag" );
   Value flag( &type );
   EXPECT_THROW( type.methods->logIn( in, flag.data() ), Vorn::RangeException );
   NboAttrLog::In again( word, sizeof word, *demuxer );
   EXPECT_THROW( Ldp::LdpGrOperationalFlag( &again, Vorn::StreamBogon() ), Vorn::RangeException );
   EXPECT_TRUE( flag == Value( &type ) );
}

// One value of each form: by fields, of its own, without fields, a word of the wire.
TEST( LogSweep, AValueIsConstructedFromTheLog ) {
   static U8 const octets[] = { 10,  0,   0,   1,  0, 7, 0, 0,    0, 3,
                                'e', 't', '0', 10, 0, 0, 2, // an adjacency id
                                0,   0,   0,   3,  0, 0, 0, 0xff, 0, 42 };
   auto const demuxer = Vorn::newObject< NboAttrLog::Demuxer >( Vorn::newObject< NboAttrLog::Out >() );
   NboAttrLog::In in( octets, sizeof octets, *demuxer );
   Ldp::LdpAdjId const id( &in, Vorn::StreamBogon() );
   EXPECT_EQ( id.stringValue(), "10.0.0.1:7_et0" );
   EXPECT_EQ( id.targetIpAddr().stringValue(), "10.0.0.2" );
   EXPECT_EQ( Ldp::LdpGrOperationalFlag( &in, Vorn::StreamBogon() ).value(), 3u );
   EXPECT_EQ( Lumo::MplsLabel( &in, Vorn::StreamBogon() ).value(), 0xffu );
   EXPECT_EQ( Lumo::NetU16( &in, Vorn::StreamBogon() ).value(), 42u );
   EXPECT_EQ( in.left(), 0u );
}

} // namespace
