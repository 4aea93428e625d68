// pcapng, block by block.
#include "capture/Pcapng.h"

#include <pcap/pcap.h>

#include <bit>
#include <cerrno>
#include <cstring>

namespace LdpTool {

namespace {

constexpr std::uint32_t sectionHeader = 0x0a0d0d0a; // the same in either byte order
constexpr std::uint32_t interfaceDescription = 1;
constexpr std::uint32_t obsoletePacket = 2;
constexpr std::uint32_t simplePacket = 3;
constexpr std::uint32_t enhancedPacket = 6;
constexpr std::uint32_t byteOrderMagic = 0x1a2b3c4d;

constexpr std::uint16_t endOfOptions = 0;
constexpr std::uint16_t interfaceName = 2;
constexpr std::uint16_t timeResolution = 9;
constexpr std::uint16_t timeOffset = 14;

// Bounds that only a damaged file comes near.
constexpr std::uint32_t largestBlock = 16 << 20;
constexpr std::size_t mostInterfaces = 65536;

__extension__ using Wide = unsigned __int128;
constexpr std::uint64_t nanosecondsPerSecond = 1000000000;

// Link types have one number in files and another in the interface of libpcap where systems disagree.
int dltOf( std::uint16_t fileLinkType ) {
   constexpr std::uint16_t rawIp = 101;
   return fileLinkType == rawIp ? DLT_RAW : fileLinkType;
}

// Units of a time stamp in a second, as the option states it; 0 for more than 64 bits hold.
std::uint64_t unitsOf( std::uint8_t resolution ) {
   unsigned const exponent = resolution & 0x7f;
   if ( resolution & 0x80 ) return exponent < 64 ? std::uint64_t( 1 ) << exponent : 0;
   std::uint64_t units = 1;
   for ( unsigned i = 0; i < exponent; ++i ) {
      if ( units > UINT64_MAX / 10 ) return 0;
      units *= 10;
   }
   return units;
}

} // namespace

void PcapngReader::fail( std::string const & why ) { throw InputError( why ); }

std::uint16_t PcapngReader::u16( Octets at ) const {
   std::uint16_t value;
   std::memcpy( &value, at.data(), sizeof value );
   return swapped_ ? __builtin_bswap16( value ) : value;
}

std::uint32_t PcapngReader::u32( Octets at ) const {
   std::uint32_t value;
   std::memcpy( &value, at.data(), sizeof value );
   return swapped_ ? __builtin_bswap32( value ) : value;
}

std::uint64_t PcapngReader::u64( Octets at ) const {
   std::uint64_t value;
   std::memcpy( &value, at.data(), sizeof value );
   return swapped_ ? __builtin_bswap64( value ) : value;
}

// False at the end of the file, where a block may begin; anywhere else the file was cut off.
bool PcapngReader::take( void * to, std::size_t bytes ) {
   std::size_t const got = std::fread( to, 1, bytes, file_ );
   if ( got == bytes ) return true;
   if ( std::ferror( file_ ) ) fail( std::strerror( errno ) );
   if ( got != 0 ) fail( "truncated pcapng file" );
   return false;
}

// Type, total length, body, total length again. A section header says within its body how to read them.
bool PcapngReader::readBlock() {
   std::uint8_t head[8];
   if ( !take( head, sizeof head ) ) return false;
   type_ = u32( Octets( head, 4 ) );
   std::uint8_t magic[4];
   bool const begins = type_ == sectionHeader;
   if ( begins ) {
      if ( !take( magic, sizeof magic ) ) fail( "truncated pcapng file" );
      swapped_ = false;
      std::uint32_t const order = u32( magic );
      if ( order != byteOrderMagic && order != __builtin_bswap32( byteOrderMagic ) )
         fail( "a pcapng section without a byte order" );
      swapped_ = order != byteOrderMagic;
   } else if ( !inSection_ ) {
      fail( "no pcapng file" );
   }
   std::uint32_t const total = u32( Octets( head ).subspan( 4 ) );
   std::size_t const least = sizeof head + ( begins ? sizeof magic : 0 ) + 4;
   if ( total < least || total % 4 != 0 || total > largestBlock )
      fail( "a pcapng block of impossible length" );
   body_.resize( total - sizeof head );
   std::uint8_t * at = body_.data();
   if ( begins ) at = std::copy( magic, magic + sizeof magic, at );
   if ( !take( at, std::size_t( body_.data() + body_.size() - at ) ) ) fail( "truncated pcapng file" );
   if ( u32( Octets( body_ ).last( 4 ) ) != total ) fail( "a pcapng block whose lengths differ" );
   body_.resize( body_.size() - 4 );
   return true;
}

void PcapngReader::readSection() {
   if ( body_.size() < 16 ) fail( "a pcapng section header cut short" );
   if ( u16( Octets( body_ ).subspan( 4 ) ) != 1 ) fail( "a pcapng file of an unknown version" );
   inSection_ = true;
   interfaces_.clear();
}

bool PcapngReader::nextOption( Octets & rest, Option & option ) const {
   if ( rest.size() < 4 ) return false;
   option.code = u16( rest );
   std::size_t const size = u16( rest.subspan( 2 ) );
   std::size_t const padded = ( size + 3 ) & ~std::size_t( 3 );
   if ( option.code == endOfOptions || padded > rest.size() - 4 ) return false;
   option.value = rest.subspan( 4, size );
   rest = rest.subspan( 4 + padded );
   return true;
}

std::string const * PcapngReader::nameOf( std::string const & name ) {
   if ( names_.size() >= mostInterfaces && !names_.contains( name ) ) return nullptr;
   return &*names_.insert( name ).first;
}

void PcapngReader::readInterface() {
   if ( body_.size() < 8 ) fail( "a pcapng interface cut short" );
   if ( interfaces_.size() >= mostInterfaces ) fail( "too many interfaces" );
   Interface added;
   added.linkType = dltOf( u16( body_ ) );
   added.snapLength = u32( Octets( body_ ).subspan( 4 ) );
   Octets rest = Octets( body_ ).subspan( 8 );
   for ( Option option; nextOption( rest, option ); ) {
      if ( option.code == interfaceName && !option.value.empty() )
         added.name =
              nameOf( { reinterpret_cast< char const * >( option.value.data() ), option.value.size() } );
      if ( option.code == timeResolution && !option.value.empty() )
         added.unitsPerSecond = unitsOf( option.value[0] );
      if ( option.code == timeOffset && option.value.size() >= 8 )
         added.offset = std::int64_t( u64( option.value ) );
   }
   if ( added.unitsPerSecond == 0 ) fail( "an interface whose clock is too fine" );
   // One interface without a name may be anything, also several links put together. Several of them differ.
   if ( !added.name && !interfaces_.empty() )
      added.name = nameOf( "if" + std::to_string( interfaces_.size() ) );
   interfaces_.push_back( added );
}

bool PcapngReader::fill( Packet & packet, std::size_t interface, std::uint64_t units, Octets octets ) {
   if ( interface >= interfaces_.size() ) fail( "a packet of an interface that was not described" );
   Interface const & from = interfaces_[interface];
   std::uint64_t const perSecond = from.unitsPerSecond;
   auto const part = static_cast< Wide >( units % perSecond ) * nanosecondsPerSecond / perSecond;
   packet.octets = octets;
   packet.seconds = std::int64_t( units / perSecond + std::uint64_t( from.offset ) );
   packet.nanoseconds = std::uint32_t( part );
   packet.linkType = from.linkType;
   packet.interface = from.name;
   return true;
}

bool PcapngReader::readPacket( Packet & packet ) {
   Octets const body( body_ );
   std::size_t const head = type_ == simplePacket ? 4 : 20;
   if ( body.size() < head ) fail( "a pcapng packet cut short" );
   std::size_t captured = u32( body.subspan( type_ == simplePacket ? 0 : 12 ) );
   if ( type_ == simplePacket ) {
      if ( !interfaces_.empty() && interfaces_[0].snapLength )
         captured = std::min< std::size_t >( captured, interfaces_[0].snapLength );
      captured = std::min( captured, body.size() - head );
   }
   if ( captured > body.size() - head ) fail( "a pcapng packet longer than its block" );
   Octets const octets = body.subspan( head, captured );
   if ( type_ == simplePacket ) return fill( packet, 0, 0, octets );
   std::size_t const interface = type_ == enhancedPacket ? u32( body ) : u16( body );
   std::uint64_t const units = std::uint64_t( u32( body.subspan( 4 ) ) ) << 32 | u32( body.subspan( 8 ) );
   return fill( packet, interface, units, octets );
}

bool PcapngReader::next( Packet & packet ) {
   while ( readBlock() ) {
      switch ( type_ ) {
      case sectionHeader: readSection(); break;
      case interfaceDescription: readInterface(); break;
      case simplePacket:
      case enhancedPacket:
      case obsoletePacket: return readPacket( packet );
      default: break; // names, statistics, what others add
      }
   }
   return false;
}

} // namespace LdpTool
