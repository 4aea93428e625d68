// Which FECs a prefix list lets through.
#include "Ldp/LdpFecFilter.h"
#include "Vorn/Trace.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace Ldp;
using Acl::PrefixEntry;
using Acl::PrefixList;
using Vorn::Ptr;

Mpls::FwdEqvClass fec( char const * prefix ) {
   Lumo::IpGenPrefix value;
   Vorn::strepToValue( Vorn::String( prefix ), &value );
   return Mpls::FwdEqvClass( value );
}

// "permit 10.0.0.0/8 ge 24 le 24"
PrefixEntry entry( char const * text ) {
   std::istringstream words( text );
   std::string action, prefix, bound;
   words >> action >> prefix;
   PrefixEntry read;
   read.action = action == "permit" ? Acl::permit : action == "deny" ? Acl::deny : Acl::PrefixAction( 7 );
   auto const slash = prefix.find( '/' );
   Vorn::strepToValue( Vorn::String( prefix.substr( 0, slash ).c_str() ), &read.prefix.address );
   read.prefix.len = U32( std::stoul( prefix.substr( slash + 1 ) ) );
   for ( U32 length; words >> bound >> length; ) {
      ( bound == "ge" ? read.ge : bound == "le" ? read.le : read.eq ) = length;
   }
   return read;
}

struct Row {
   std::vector< char const * > entries; // in order of sequence
   std::vector< char const * > permitted;
   std::vector< char const * > denied;
};

TEST( LdpFecFilterTest, TheFirstEntryThatMatchesDecides ) {
   Row const rows[] = {
      { {}, {}, { "0.0.0.0/0", "10.0.0.0/8", "2001:db8::/32" } },
      { { "permit 10.0.0.0/8" },
        { "10.0.0.0/8", "10.1.0.0/16", "10.1.2.3/32" },
        { "10.0.0.0/7", "11.0.0.0/8", "0.0.0.0/0" } },
      { { "permit 0.0.0.0/0" }, { "0.0.0.0/0", "10.0.0.0/8", "255.255.255.255/32" }, {} },
      { { "deny 10.0.0.0/8", "permit 10.0.0.0/8" }, {}, { "10.0.0.0/8" } },
      { { "permit 10.0.0.0/8", "deny 10.0.0.0/8" }, { "10.0.0.0/8" }, {} },
      { { "other 10.0.0.0/8" }, {}, { "10.0.0.0/8" } },
      { { "permit 10.0.0.0/8 ge 24 le 24" }, { "10.1.2.0/24" }, { "10.1.0.0/16", "10.1.2.0/25" } },
      { { "permit 10.0.0.0/8 eq 32" }, { "10.1.2.3/32" }, { "10.1.2.2/31", "11.0.0.1/32" } },
      { { "permit 10.0.0.0/8 eq 16 ge 17" }, {}, { "10.1.0.0/16", "10.1.0.0/17" } },
      { { "permit 10.0.0.0/8 ge 8" }, { "10.0.0.0/8" }, {} },
      { { "deny 10.1.0.0/16 le 16", "permit 10.0.0.0/8" }, { "10.1.2.0/24" }, { "10.1.0.0/16" } },
      { { "permit 10.1.2.3/32" }, { "10.1.2.3/32" }, { "10.1.2.2/32" } },
      { { "permit 128.0.0.0/1" }, { "192.0.0.0/2" }, { "64.0.0.0/2" } },
      // Longer than IPv4 goes, which only an IPv6 prefix can be; its address counts as 0.0.0.0.
      { { "permit 0.0.0.0/40" }, { "2001:db8::/48" }, { "2001:db8::/32", "10.0.0.0/32" } },
      { { "permit 10.0.0.0/40" }, {}, { "2001:db8::/48" } },
   };
   for ( Row const & row : rows ) {
      auto const list = Acl::prefixListFactory( "list" );
      // Entered from the last to the first: the sequence decides, not the time.
      for ( std::size_t i = row.entries.size(); i--; ) {
         list->prefixEntryIs( U32( i + 1 ) * 10, entry( row.entries[i] ) );
      }
      auto const filter = ldpFecFilterFactory( "filter" );
      filter->prefixListIs( list );
      std::string const first = row.entries.empty() ? "no entry" : row.entries[0];
      for ( char const * prefix : row.permitted ) {
         EXPECT_TRUE( filter->isPermittedFec( fec( prefix ) ) ) << first << ": " << prefix;
      }
      for ( char const * prefix : row.denied ) {
         EXPECT_FALSE( filter->isPermittedFec( fec( prefix ) ) ) << first << ": " << prefix;
      }
   }
}

TEST( LdpFecFilterTest, WithoutAListEveryFecPasses ) {
   auto const filter = ldpFecFilterFactory( "filter" );
   for ( char const * prefix : { "0.0.0.0/0", "10.0.0.0/8", "2001:db8::/32" } ) {
      EXPECT_TRUE( filter->isPermittedFec( fec( prefix ) ) );
   }
}

TEST( LdpFecFilterTest, OtherKindsOfFecCountAsTheirEmptyPrefix ) {
   auto const filter = ldpFecFilterFactory( "filter" );
   auto const list = Acl::prefixListFactory( "list" );
   filter->prefixListIs( list );
   list->prefixEntryIs( 1, entry( "permit 0.0.0.0/0" ) );
   EXPECT_TRUE( filter->isPermittedFec( Mpls::FwdEqvClass( 1, 2 ) ) );
   list->prefixEntryIs( 1, entry( "permit 10.0.0.0/8" ) );
   EXPECT_FALSE( filter->isPermittedFec( Mpls::FwdEqvClass( Lumo::IpAddr( 0x0a000001 ), 7 ) ) );
}

TEST( LdpFecFilterTest, TracesItsEntryWithTheFec ) {
   std::ostringstream lines;
   Vorn::TraceFacility::sinkIs( &lines );
   Vorn::TraceFacility::levelsIs( "LdpFecFilter", 1u << 8 );
   auto const filter = ldpFecFilterFactory( "filter" );
   filter->isPermittedFec( fec( "10.0.0.0/8" ) );
   Vorn::TraceFacility::levelsIs( "LdpFecFilter", 0 );
   filter->isPermittedFec( fec( "11.0.0.0/8" ) );
   Vorn::TraceFacility::sinkIs( nullptr );
   EXPECT_NE( lines.str().find( "[1] LdpFecFilter::isPermittedFec() 10.0.0.0/8\n" ), std::string::npos )
        << lines.str();
   EXPECT_EQ( lines.str().find( "11.0.0.0/8" ), std::string::npos );
}

TEST( LdpFecFilterTest, KeepsItsListAlive ) {
   auto const filter = ldpFecFilterFactory( "filter" );
   {
      auto const list = Acl::prefixListFactory( "list" );
      list->prefixEntryIs( 1, entry( "deny 0.0.0.0/0" ) );
      filter->prefixListIs( list );
   }
   EXPECT_FALSE( filter->isPermittedFec( fec( "10.0.0.0/8" ) ) );
   EXPECT_EQ( filter->filterVersionInc( ~0u ), ~0u );
   EXPECT_EQ( filter->filterVersionInc( 1 ), 0u );
}

} // namespace
