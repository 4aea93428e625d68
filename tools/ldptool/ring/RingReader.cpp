// The reader of ring trace files, which believes no octet of them.
#include "ring/RingReader.h"

#include "Mendo/Text.h"

#include <algorithm>
#include <arpa/inet.h>
#include <cstring>

namespace LdpTool {

using Skein::Item;

namespace {

// Bounds that only a damaged file comes near: blocks open at a time, octets of a message.
constexpr std::size_t maxDepth = 1000;
constexpr std::size_t maxText = 4096;

// The takers move `octets` behind what they took; false, and nothing certain about the rest, if it is not
// there.
bool take( std::string_view & octets, void * data, std::size_t size ) {
   if ( octets.size() < size ) return false;
   std::memcpy( data, octets.data(), size );
   octets.remove_prefix( size );
   return true;
}

template< class T >
bool take( std::string_view & octets, T & value ) {
   return take( octets, &value, sizeof value );
}

bool takeText( std::string_view & octets, std::string & text ) {
   std::size_t const end = octets.find( '\0' );
   if ( end == octets.npos ) return false;
   text.clear();
   Mendo::appendPrintable( text, octets.substr( 0, end ) );
   octets.remove_prefix( end + 1 );
   return true;
}

// The items below show one argument of the record at `octets`; without `text` (in an alternative that was not
// chosen) they take nothing.
template< class T >
bool readNumber( std::string_view & octets, std::string * text ) {
   T value;
   if ( !text ) return true;
   if ( !take( octets, value ) ) return false;
   *text += std::to_string( value );
   return true;
}

bool readAddress( std::string_view & octets, std::string * text, int family, std::size_t size ) {
   if ( !text ) return true;
   U8 address[16];
   if ( !take( octets, address, size ) ) return false;
   char shown[INET6_ADDRSTRLEN];
   *text += inet_ntop( family, address, shown, sizeof shown );
   return true;
}

bool readOctets( std::string_view & octets, std::string * text, bool hex ) {
   if ( !text ) return true;
   U16 word;
   if ( !take( octets, word ) ) return false;
   std::size_t const size = word & ~Skein::cutFlag;
   if ( octets.size() < size ) return false;
   std::string_view const run = octets.substr( 0, size );
   octets.remove_prefix( size );
   if ( hex ) {
      Mendo::appendHex( *text, run.data(), run.size() );
   } else {
      Mendo::appendPrintable( *text, run );
   }
   if ( word & Skein::cutFlag ) *text += "...";
   return true;
}

} // namespace

RingReader::RingReader( std::string octets ) : held_( std::move( octets ) ), octets_( held_ ) { readAll(); }

RingReader::RingReader( Mapped mapped ) : octets_( mapped.octets ) { readAll(); }

void RingReader::readAll() {
   readHeader();
   readDescriptions();
   readBlocks();
}

void RingReader::readHeader() {
   std::string_view all = octets_;
   if ( !all.starts_with( std::string_view( Skein::fileMagic, sizeof Skein::fileMagic ) ) )
      throw RingError( "no ring trace" );
   if ( !take( all, header_ ) ) throw RingError( "a ring trace cut short" );
   if ( header_.byteOrder != Skein::byteOrderMark )
      throw RingError( "a ring trace of a machine with another byte order" );
   if ( header_.version != Skein::fileVersion )
      throw RingError( "a ring trace of version " + std::to_string( header_.version ) +
                       ", which is unknown" );
   U64 const size = octets_.size();
   if ( header_.descriptionsOffset > size || header_.descriptionsBytes > size - header_.descriptionsOffset )
      throw RingError( "a ring trace whose descriptions lie outside of the file" );
   if ( header_.blockBytes < sizeof( Skein::Block ) || header_.blocksOffset > size ||
        header_.blockNum > ( size - header_.blocksOffset ) / header_.blockBytes || header_.blockNum == 0 )
      throw RingError( "a ring trace whose blocks lie outside of the file" );
   if ( header_.ticksPerSecond == 0 ) throw RingError( "a ring trace whose clock stands still" );
}

void RingReader::readDescriptions() {
   std::string_view all = octets_.substr( header_.descriptionsOffset, header_.descriptionsBytes );
   while ( !all.empty() ) {
      U16 size;
      std::string_view entry = all;
      Skein::Description kind;
      U8 level;
      if ( !take( entry, size ) || size > all.size() || !take( entry, kind ) || !take( entry, level ) ||
           size < 4 ) {
         ++damaged_;
         return;
      }
      entry = all.substr( 4, size - 4u );
      all.remove_prefix( size );
      U16 id;
      if ( kind == Skein::Description::site ) {
         RingSite site;
         U8 flags;
         if ( !take( entry, flags ) || !take( entry, id ) || !take( entry, site.line ) ||
              !takeText( entry, site.file ) || !takeText( entry, site.function ) )
            continue;
         site.level = level;
         site.block = flags & 1;
         site.items = entry;
         sites_[id] = site;
      } else if ( kind == Skein::Description::enumeration ) {
         std::string name;
         if ( !take( entry, id ) || !takeText( entry, name ) ) continue;
         U32 number;
         while ( take( entry, number ) && takeText( entry, name ) )
            enumerations_[id][number] = name;
      }
   }
}

void RingReader::readBlocks() {
   for ( U64 i = 0; i < header_.blockNum; ++i ) {
      std::string_view octets =
           octets_.substr( header_.blocksOffset + i * header_.blockBytes, header_.blockBytes );
      BlockAt block{};
      std::string_view rest = octets;
      take( rest, block.head );
      if ( block.head.sequence == 0 ) continue;
      if ( block.head.sequence % header_.blockNum != i || block.head.used < sizeof block.head ||
           block.head.used > header_.blockBytes ) {
         ++damaged_;
         continue;
      }
      block.records = rest.substr( 0, block.head.used - sizeof block.head );
      blocks_.push_back( block );
   }
   std::sort( blocks_.begin(), blocks_.end(),
              []( BlockAt const & a, BlockAt const & b ) { return a.head.sequence < b.head.sequence; } );
   threaded_ = std::any_of( blocks_.begin(), blocks_.end(), [&]( BlockAt const & block ) {
      return block.head.writer != blocks_.front().head.writer;
   } );
}

void RingReader::forEach( std::function< void( RingRecord const & ) > const & visit ) {
   for ( RingRecord record; next( record ); )
      visit( record );
}

bool RingReader::next( RingRecord & record ) {
   for ( ; block_ < blocks_.size(); ++block_, inBlock_ = false ) {
      BlockAt const & block = blocks_[block_];
      Writer & writer = writers_[block.head.writer];
      if ( !inBlock_ ) {
         inBlock_ = true;
         writer.nanoseconds = block.head.nanoseconds;
         rest_ = block.records;
      }
      if ( rest_.empty() ) continue;
      record = {};
      if ( readRecord( block, writer, record ) ) return true;
      ++damaged_; // where the next record begins is not known any more
   }
   return false;
}

bool RingReader::readRecord( BlockAt const & block, Writer & writer, RingRecord & record ) {
   U16 word;
   if ( !take( rest_, word ) ) return false;
   auto const site = sites_.find( word & Skein::maxMsgId );
   if ( site == sites_.end() ) return false;
   record.site = &site->second;
   record.timed = word & Skein::clockFlag;
   if ( record.timed ) {
      U64 ticks;
      if ( !take( rest_, ticks ) ) return false;
      writer.nanoseconds = toNanoseconds( ticks, block.head );
   }
   record.nanoseconds = writer.nanoseconds;
   record.writer = block.head.writer;

   if ( word & Skein::closeFlag ) {
      record.kind = RingRecord::close;
      record.text = record.site->function;
      // What the ring has lost may leave opens without a close, and the other way round.
      auto & open = writer.open;
      auto const match = std::find_if( open.rbegin(), open.rend(),
                                       [&]( Open const & o ) { return o.site == record.site; } );
      if ( match != open.rend() ) {
         record.text.clear();
         std::string_view items = match->site->items;
         std::string_view arguments = match->arguments;
         readItems( items, arguments, &record.text, 0 ); // it could be read before
         record.exact = match->timed;
         if ( record.nanoseconds > match->nanoseconds ) record.took = record.nanoseconds - match->nanoseconds;
         open.erase( match.base() - 1, open.end() );
      }
      record.depth = U32( open.size() );
      return true;
   }

   std::string_view items = record.site->items;
   std::string_view const arguments = rest_;
   if ( !readItems( items, rest_, &record.text, 0 ) ) return false;
   record.depth = U32( writer.open.size() );
   if ( record.site->block ) {
      record.kind = RingRecord::open;
      if ( writer.open.size() < maxDepth )
         writer.open.push_back( { record.site, arguments, record.nanoseconds, record.timed } );
   }
   return true;
}

bool RingReader::readItems( std::string_view & items, std::string_view & octets, std::string * text,
                            unsigned nesting ) const {
   Item item;
   while ( take( items, item ) ) {
      bool read = false;
      switch ( item ) {
      case Item::end: return true;
      case Item::text: {
         std::string piece;
         read = takeText( items, piece );
         if ( text ) *text += piece;
         break;
      }
      case Item::boolean:
      case Item::u8: read = readNumber< U8 >( octets, text ); break;
      case Item::u16: read = readNumber< U16 >( octets, text ); break;
      case Item::u32: read = readNumber< U32 >( octets, text ); break;
      case Item::u64: read = readNumber< U64 >( octets, text ); break;
      case Item::s32: read = readNumber< std::int32_t >( octets, text ); break;
      case Item::s64: read = readNumber< std::int64_t >( octets, text ); break;
      case Item::enumerator: {
         U16 id;
         U32 number;
         read = take( items, id ) && ( !text || take( octets, number ) );
         if ( !read || !text ) break;
         auto const type = enumerations_.find( id );
         if ( type != enumerations_.end() && type->second.contains( number ) ) {
            *text += type->second.at( number );
         } else {
            *text += std::to_string( number );
         }
         break;
      }
      case Item::octets: read = readOctets( octets, text, false ); break;
      case Item::hexOctets: read = readOctets( octets, text, true ); break;
      case Item::ipv4: read = readAddress( octets, text, AF_INET, 4 ); break;
      case Item::ipv6: read = readAddress( octets, text, AF_INET6, 16 ); break;
      case Item::choice: read = readChoice( items, octets, text, nesting + 1 ); break;
      }
      if ( !read || ( text && text->size() > maxText ) ) return false;
   }
   return nesting == 0; // an alternative must have its end
}

bool RingReader::readChoice( std::string_view & items, std::string_view & octets, std::string * text,
                             unsigned nesting ) const {
   U8 alternatives, tag = 0;
   if ( nesting > 8 || !take( items, alternatives ) || ( text && !take( octets, tag ) ) ) return false;
   bool chosen = !text;
   for ( ; alternatives; --alternatives ) {
      U8 when;
      if ( !take( items, when ) ) return false;
      bool const mine = text && when == tag;
      if ( !readItems( items, octets, mine ? text : nullptr, nesting ) ) return false;
      chosen |= mine;
   }
   return chosen;
}

U64 RingReader::toNanoseconds( U64 ticks, Skein::Block const & head ) const {
   double const elapsed = double( std::int64_t( ticks - head.ticks ) );
   double const nanoseconds = elapsed * 1e9 / double( header_.ticksPerSecond );
   // A century either way is beyond any trace; a damaged record must not leave the range of the type.
   return head.nanoseconds + U64( std::int64_t( std::clamp( nanoseconds, -3e18, 3e18 ) ) );
}

} // namespace LdpTool
