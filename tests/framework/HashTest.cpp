// Keys that a peer chooses do not meet in one place of a map, since nobody outside knows the secret; and with
// the secret of another process they stand in another order.

#include "Vorn/HashMap2018.h"

#include "Lumo/IntfId.h"
#include "Lumo/IpMask.h"
#include "Lumo/MplsLabel.h"
#include "Mpls/FwdEqvClass.h"
#include "Pseudowire/Types.h"

#include <cstring>
#include <functional>
#include <gtest/gtest.h>
#include <set>

namespace {

using Lumo::Ip6Addr;
using Lumo::IpAddr;
using Lumo::IpGenAddr;
using Lumo::IpGenPrefix;

constexpr U32 num = 20'000;

class HashTest : public testing::Test {
 protected:
   ~HashTest() override { Vorn::hashSecret_ = drawn_; }

 private:
   Vorn::HashSecret drawn_ = Vorn::hashSecret_;
};

/// Addresses chosen for a hash that multiplies and shifts words without a secret: it gives them all one
/// value.
Ip6Addr chosen( U64 i ) {
   constexpr U64 factor = 0xd6e8feb86659fd93u;
   U64 const first = 0x20 + ( i << 16 );
   U64 hash = ( 0xcbf29ce484222325u ^ 16 ^ first ) * factor;
   hash ^= hash >> 32;
   U64 const words[2] = { first, hash ^ 0x1234567812345678u };
   Ip6Addr address;
   std::memcpy( address.octets(), words, sizeof words );
   return address;
}

/// Families of keys as a peer may send them, by their index.
struct Family {
   char const * name;
   std::function< U32( U32 i ) > hash;
};
std::vector< Family > const families = {
   { "addresses in a row", []( U32 i ) { return IpAddr( i ).hash(); } },
   { "chosen addresses", []( U32 i ) { return IpGenAddr( chosen( i ) ).hash(); } },
   { "chosen prefixes", []( U32 i ) { return IpGenPrefix( chosen( i ), 128 ).hash(); } },
   { "chosen FECs", []( U32 i ) { return Mpls::FwdEqvClass( IpGenPrefix( chosen( i ), 128 ) ).hash(); } },
   { "networks", []( U32 i ) { return Mpls::FwdEqvClass( IpGenPrefix( IpAddr( i << 8 ), 24 ) ).hash(); } },
   { "trees of one root", []( U32 i ) { return Mpls::FwdEqvClass( IpGenAddr( IpAddr( 1 ) ), i ).hash(); } },
   { "words", []( U32 i ) { return Mpls::FwdEqvClass( i, 7 ).hash() + Mpls::FwdEqvClass( 7, i ).hash(); } },
   { "masks", []( U32 i ) { return Lumo::IpAddrWithMask( IpAddr( i << 12 ), 20 ).hash(); } },
   { "labels", []( U32 i ) { return Lumo::MplsLabel( i << 5 ).hash(); } },
   { "pseudowires",
     []( U32 i ) {
        return Pseudowire::PseudowireLdpRequestKey( IpAddr( 1 ), Pseudowire::PseudowireId( i << 16 ) ).hash();
     } },
   { "names", []( U32 i ) { return Lumo::IntfId( Vorn::format( "Ethernet%u", i ) ).hash(); } },
   { "long texts",
     []( U32 i ) {
        return Vorn::format( "a text of more octets than a word has, with %u in it", i ).hash();
     } },
   { "wide numbers", []( U32 i ) { return Vorn::VornHashBase< false >::hashU64( U64( i ) << 40 ); } },
   { "fields",
     []( U32 i ) {
        Vorn::Hash hash;
        U32 const step = i << 10;
        hash.mix< 4 >( &step );
        hash.mix< 4 >( &i );
        hash.mix< 1 >( &i );
        return hash.result();
     } },
};

TEST_F( HashTest, keysMeetNoMoreOftenThanByChance ) {
   for ( U32 secret = 0; secret < 5; ++secret ) {
      if ( secret ) Vorn::hashSecretIs( secret ); // first the one that was drawn
      for ( Family const & family : families ) {
         SCOPED_TRACE( family.name );
         std::set< U32 > whole;
         constexpr U32 buckets = 1 << 14;
         std::vector< U32 > low( buckets ), high( buckets );
         for ( U32 i = 0; i < num; ++i ) {
            U32 const hash = family.hash( i );
            whole.insert( hash );
            ++low[hash % buckets];
            ++high[hash / ( ( 1u << 31 ) / buckets * 2 )];
         }
         EXPECT_GT( whole.size(), num - 10 ) << "0.05 meetings are to be expected";
         EXPECT_LT( *std::max_element( low.begin(), low.end() ), 20u );
         EXPECT_LT( *std::max_element( high.begin(), high.end() ), 20u );
      }
   }
}

TEST_F( HashTest, everyPartOfAKeyCounts ) {
   EXPECT_NE( IpGenPrefix( IpAddr( 1 ), 32 ).hash(), IpGenPrefix( IpAddr( 1 ), 31 ).hash() );
   EXPECT_NE( Vorn::hashBytes( "\0\0", 1 ), Vorn::hashBytes( "\0\0", 2 ) );
   char text[] = "an octet of a run of 40, whichever it is";
   for ( std::size_t bytes = 1; bytes <= 40; ++bytes ) {
      U32 const before = Vorn::hashBytes( text, bytes );
      for ( std::size_t i = 0; i < bytes; ++i ) {
         text[i] ^= 1;
         EXPECT_NE( Vorn::hashBytes( text, bytes ), before ) << i << " of " << bytes;
         text[i] ^= 1;
      }
   }
}

TEST_F( HashTest, aMapTakesWhatAPeerChooses ) {
   struct Owner;
   Vorn::HashMap2018< Owner, IpGenAddr > addresses;
   for ( U32 i = 0; i < num; ++i )
      addresses.keyIs( IpGenAddr( chosen( i ) ) );
   EXPECT_EQ( addresses.members(), num );
}

TEST_F( HashTest, theSecretMakesTheOrder ) {
   auto const order = []( U64 secret ) {
      Vorn::hashSecretIs( secret );
      struct Owner;
      Vorn::HashMap2018< Owner, IpAddr > map;
      for ( U32 i = 0; i < 100; ++i )
         map.keyIs( IpAddr( i ) );
      std::vector< U32 > keys;
      for ( auto const & node : map )
         keys.push_back( node.key().value() );
      return keys;
   };
   EXPECT_EQ( order( 1 ), order( 1 ) );
   EXPECT_NE( order( 1 ), order( 2 ) );
}

} // namespace
