// Counted objects and the pointer that counts them, strings, exceptions, and the memory beneath.

#include "Vorn/Exception.h"
#include "Vorn/Ptr.h"
#include "Vorn/VornType.h"

#include <cstring>
#include <gtest/gtest.h>
#include <set>
#include <sstream>
#include <vector>

using Vorn::Ptr;
using Vorn::String;

namespace {

/// An object that tells what happens to it, and lets a test into its reference word.
class Probe : public Vorn::PtrInterface {
   VORN_OBJECT( Probe )

 public:
   static inline std::vector< std::string > log;

   explicit Probe( std::string name ) : name_( std::move( name ) ) {}
   ~Probe() override {
      // As an observer might: a reference taken and dropped on the way down.
      { Ptr< Probe > const again( this ); }
      log.push_back( name_ + " destroyed" +
                     ( holder_ && holder_->ptr() ? " before " + ( *holder_ )->name_ : "" ) );
   }
   void zeroReferencesIs( bool zero ) override {
      { Ptr< Probe > const again( this ); }
      log.push_back( name_ + ( zero ? " zero" : " not zero" ) );
   }
   void hasNotificationActiveIs( bool active ) override {
      log.push_back( name_ + ( active ? " active" : " inactive" ) );
   }

   U32 & word() { return refs_; }
   /// The pointer that the destructor looks at.
   void holderIs( Ptr< Probe > const * holder ) { holder_ = holder; }

 private:
   std::string name_;
   Ptr< Probe > const * holder_ = nullptr;
};
constinit Vorn::VornType const Probe::_vornType = Vorn::objectRecord( "Probe", nullptr, sizeof( Probe ) );
Vorn::AllocTrackTypeInfo Probe::vornAllocTrackTypeInfo_{ &Probe::_vornType };

class Derived : public Probe {
 public:
   using Probe::Probe;
};

class CoreTest : public testing::Test {
 protected:
   void SetUp() override { Probe::log.clear(); }
   static std::vector< std::string > takeLog() { return std::exchange( Probe::log, {} ); }
   using Log = std::vector< std::string >;
};

TEST_F( CoreTest, lastReferenceDestroys ) {
   static_assert( sizeof( Ptr< Probe > ) == sizeof( void * ) );
   {
      auto a = Vorn::newObject< Probe >( "a" );
      EXPECT_EQ( takeLog(), Log{ "a active" } ); // the factory's last step
      EXPECT_EQ( a->references(), 1u );
      {
         Ptr< Probe > const b = a;
         EXPECT_EQ( a->references(), 2u );
         Ptr< Probe > const c = std::move( a );
         EXPECT_FALSE( a );
         EXPECT_EQ( c->references(), 2u );
         a = c;
      }
      EXPECT_EQ( a->references(), 1u );
      EXPECT_EQ( takeLog(), Log{} );
   }
   EXPECT_EQ( takeLog(), ( Log{ "a zero", "a destroyed" } ) ); // once, whatever happened on the way down
}

TEST_F( CoreTest, flagBitsOfTheReferenceWordDoNotCount ) {
   for ( U32 const flags : { 0x20000000u, 0x80000000u, 0xa0000000u } ) {
      SCOPED_TRACE( flags );
      auto a = Vorn::newObject< Probe >( "a" );
      a->word() |= flags;
      EXPECT_EQ( a->references(), 1u );
      takeLog();
      a = nullptr;
      EXPECT_EQ( takeLog(), ( Log{ "a zero", "a destroyed" } ) );
   }
   auto a = Vorn::newObject< Probe >( "a" );
   a->word() = 0x5fffffff; // all bits that count
   EXPECT_EQ( a->references(), 0x5fffffffu );
   a->word() = 1;
}

TEST_F( CoreTest, assignmentDropsTheOldObjectLast ) {
   auto a = Vorn::newObject< Probe >( "a" );
   a->holderIs( &a );
   takeLog();
   a = Vorn::newObject< Probe >( "b" );
   EXPECT_EQ( takeLog(), ( Log{ "b active", "a zero", "a destroyed before b" } ) );
   Ptr< Probe > const & self = a;
   a = self; // to itself
   EXPECT_EQ( a->references(), 1u );
   EXPECT_EQ( takeLog(), Log{} );
}

TEST_F( CoreTest, pointersConvertAndCompareByIdentity ) {
   Ptr< Derived > const derived = Vorn::newObject< Derived >( "d" );
   Ptr< Probe > const base = derived;
   Ptr< Probe const > const readOnly = base;
   static_assert( !std::is_convertible_v< Ptr< Probe const >, Ptr< Probe > > );
   static_assert( !std::is_convertible_v< Ptr< Probe >, Ptr< Derived > > );
   EXPECT_EQ( derived->references(), 3u );
   EXPECT_TRUE( base == derived );
   EXPECT_TRUE( readOnly == base );
   EXPECT_FALSE( base == Vorn::newObject< Probe >( "d" ) );
   EXPECT_FALSE( base == nullptr );
   EXPECT_TRUE( Ptr< Probe >() == nullptr );
   EXPECT_TRUE( !Ptr< Probe >() );
}

TEST_F( CoreTest, releasedReferenceIsTheCallers ) {
   auto a = Vorn::newObject< Probe >( "a" );
   Probe * const raw = a.release();
   EXPECT_FALSE( a );
   EXPECT_EQ( raw->references(), 1u );
   raw->referenceDec();
   EXPECT_EQ( Probe::log.back(), "a destroyed" );
}

TEST_F( CoreTest, liveObjectsAreCountedByType ) {
   auto const & track = Probe::allocTrack();
   U64 const objects = track.objects();
   U64 const bytes = track.bytes();
   EXPECT_EQ( track.type(), &Probe::_vornType );
   {
      auto const a = Vorn::newObject< Probe >( "a" );
      auto const b = Vorn::newObject< Probe >( "b" );
      EXPECT_EQ( track.objects(), objects + 2 );
      EXPECT_EQ( track.bytes(), bytes + 2 * sizeof( Probe ) );
   }
   EXPECT_EQ( track.objects(), objects );
   EXPECT_EQ( track.bytes(), bytes );

   Vorn::AllocTrackTypeInfo own( nullptr );
   own.trackArrayAllocation( 3, 8 );
   own.trackAllocation( 5 );
   EXPECT_EQ( own.objects(), 4u );
   EXPECT_EQ( own.bytes(), 29u );
   own.trackArrayDeallocation( 3, 8 );
   own.trackDeallocation( 5 );
   EXPECT_EQ( own.objects(), 0u );
   EXPECT_EQ( own.bytes(), 0u );
}

TEST_F( CoreTest, blocksInUseNeverOverlap ) {
   // Sizes around the steps of the free list, taken, given back and taken again while others stay.
   std::vector< std::pair< U8 *, std::size_t > > kept;
   for ( int round = 0; round < 4; ++round ) {
      for ( std::size_t size = 0; size < 600; size += 7 ) {
         auto * const drop = static_cast< U8 * >( Vorn::vornMemAlloc( size ) );
         Vorn::vornMemFree( drop, size );
         auto * const keep = static_cast< U8 * >( Vorn::vornMemAlloc( size ) );
         std::memset( keep, int( kept.size() & 0xff ), size );
         kept.emplace_back( keep, size );
      }
   }
   for ( std::size_t i = 0; i < kept.size(); ++i ) {
      auto const [block, size] = kept[i];
      EXPECT_EQ( reinterpret_cast< std::uintptr_t >( block ) % alignof( std::max_align_t ), 0u );
      for ( std::size_t at = 0; at < size; ++at ) {
         ASSERT_EQ( block[at], U8( i ) );
      }
      Vorn::vornMemFree( block, size );
   }
   Vorn::vornMemFree( nullptr, 16 );
}

// ---- strings ----

TEST( String, octetsOfAnyKind ) {
   static_assert( sizeof( String ) == sizeof( void * ) );
   String const text( "a\0b\xff", 4 );
   EXPECT_EQ( text.bytes(), 4u );
   EXPECT_EQ( std::string( text.begin(), text.end() ), std::string( "a\0b\xff", 4 ) );
   EXPECT_EQ( *text.end(), 0 ); // one zero octet behind them, which does not count
   EXPECT_FALSE( text == String( "a" ) );
   EXPECT_FALSE( text == "a" );
   std::ostringstream out;
   out << text;
   EXPECT_EQ( out.str(), std::string( "a\0b\xff", 4 ) );
}

TEST( String, emptyIsOneValue ) {
   for ( String const & empty : { String(), String( "" ), String( "x", 0 ), String( std::string_view() ) } ) {
      EXPECT_TRUE( empty.empty() );
      EXPECT_TRUE( !empty );
      EXPECT_EQ( empty.bytes(), 0u );
      EXPECT_EQ( empty.hash(), 0u );
      EXPECT_EQ( empty, String() );
      EXPECT_STREQ( empty.charPtr(), "" );
      EXPECT_EQ( empty.begin(), empty.end() );
   }
   EXPECT_FALSE( String( "\0", 1 ).empty() );
   EXPECT_FALSE( String( "\0", 1 ) == String() );
}

TEST( String, copiesShareAndNeverChange ) {
   String a = "text";
   String const b = a;
   EXPECT_EQ( a.charPtr(), b.charPtr() );
   a += " and more";
   EXPECT_EQ( a, "text and more" );
   EXPECT_EQ( b, "text" );
   a = b;
   EXPECT_EQ( a.charPtr(), b.charPtr() );
   String & self = a;
   a = self;
   a += a;
   EXPECT_EQ( a, "texttext" );
   a += "";
   a += String();
   EXPECT_EQ( a, "texttext" );
   EXPECT_EQ( String() + "x" + String( "y" ), "xy" );
   EXPECT_EQ( "x" + String( "y" ), "xy" );
}

TEST( String, equalityHashAndOrderAreByContent ) {
   String const a( "a\0b", 3 );
   String const b( "a\0b", 3 );
   EXPECT_NE( a.charPtr(), b.charPtr() );
   EXPECT_EQ( a, b );
   EXPECT_EQ( a.hash(), b.hash() );
   EXPECT_NE( String( "a\0c", 3 ).hash(), a.hash() );
   EXPECT_TRUE( String() < String( "\0", 1 ) );
   EXPECT_TRUE( String( "a" ) < a );
   EXPECT_TRUE( String( "a\x7f" ) < String( "a\x80" ) ); // octets, not signed characters
   Vorn::Name const name = String( "x" );
   EXPECT_EQ( name, String( "x" ) );
}

TEST( Format, asPrintf ) {
   EXPECT_EQ( Vorn::format( "%d %s 0x%08x %u%%", -1, "text", 0xabu, 7u ), "-1 text 0x000000ab 7%" );
   EXPECT_EQ( Vorn::format( "%s", "" ), String() );
   for ( std::size_t const size : { 255u, 256u, 257u, 10000u } ) { // around what fits its first buffer
      std::string const large( size, 'x' );
      EXPECT_EQ( Vorn::format( "%s", large.c_str() ), large.c_str() );
   }
}

// ---- exceptions ----

TEST( Exception, carriesItsText ) {
   try {
      Vorn::throwRangeException( "out of range" );
   } catch ( std::exception const & caught ) {
      EXPECT_STREQ( caught.what(), "out of range" );
      EXPECT_TRUE( dynamic_cast< Vorn::RangeException const * >( &caught ) );
      EXPECT_FALSE( dynamic_cast< Vorn::NameInUseException const * >( &caught ) );
   }
   try {
      Vorn::throwNameInUseException( String( "in" ) + " use" );
   } catch ( Vorn::Exception const & caught ) {
      EXPECT_EQ( caught.message(), "in use" );
      EXPECT_TRUE( dynamic_cast< Vorn::NameInUseException const * >( &caught ) );
   }
}

TEST( Assert, reportsAndAborts ) {
   EXPECT_EXIT( VORN_ASSERT( 1 + 1 == 3 ), testing::KilledBySignal( SIGABRT ),
                "CoreTest.cpp:[0-9]+: .*Assertion `1 \\+ 1 == 3' failed" );
   EXPECT_EXIT( VORN_ASSERT_TEXT( false, "told apart" ), testing::KilledBySignal( SIGABRT ),
                "Assertion `told apart' failed" );
   VORN_ASSERT( true );
}

} // namespace
