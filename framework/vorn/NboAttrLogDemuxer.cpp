// The demultiplexer: an incoming stream cut into records, and each record to whom it is for. Apart from what
// reads values, so that a program that decodes, and replicates nothing, takes neither this nor the table of
// all types out of the archive.
#include "Vorn/Impl/NboAttrLogIn.h"

#include "NboAttrLogAnchors.h"
#include "NboAttrLogRoots.h"
#include "NboAttrLogState.h"
#include "Vorn/Strep.h"

#include <algorithm>

namespace Vorn::NboAttrLog {

VORN_UNLISTED_RECORD( Vorn::NboAttrLog, Demuxer, nullptr )

namespace {

[[noreturn]] void refuse( String const & message ) { throw AttrLogRecordException( message ); }

} // namespace

Demuxer::Demuxer( Ptr< Out > const & out, Vorn_BitSet flags )
     : out_( out ), flags_( flags ), offers_( std::make_unique< Offers >() ),
       roots_( std::make_unique< Roots >() ) {}

Demuxer::~Demuxer() = default;

void Demuxer::rootIs( Ptr< Entity > const & entity ) { offers_->entityIs( entity ); }

std::vector< Ptr< Entity > > const & Demuxer::roots() const { return roots_->all(); }

std::unique_ptr< FlowOut > Demuxer::createFlowOut( VornType const & type, U32 ) {
   return std::make_unique< FlowOut >( type );
}

void Demuxer::bytesIs( void const * octets, std::size_t bytes ) {
   VORN_ASSERT( !out_->state().active );
   if ( failed_ ) refuse( "the attribute log was refused before" );
   Ptr< Demuxer > const hold( this );
   ClearIsActiveAnchor const anchor( out_->state().active );
   failed_ = true; // unless all is taken
   try {
      if ( !in_ ) in_ = newObject< In >( nullptr, 0u, *this );
      auto const * from = static_cast< U8 const * >( octets );
      while ( bytes ) {
         if ( part_.empty() ) {
            std::size_t const taken = recordsIs( from, bytes );
            part_.assign( from + taken, from + bytes );
            break;
         }
         // Completes the record that began in an earlier piece, first its length.
         std::size_t const want = wanted( part_.data(), part_.size() );
         std::size_t const more = std::min( bytes, want - part_.size() );
         part_.insert( part_.end(), from, from + more );
         from += more;
         bytes -= more;
         if ( recordsIs( part_.data(), part_.size() ) ) part_.clear();
      }
   } catch ( AttrLogRecordException const & ) {
      throw;
   } catch ( Exception const & exception ) {
      refuse( exception.message() );
   }
   failed_ = false;
}

/// Octets of the unit that begins here, as far as they are known.
std::size_t Demuxer::wanted( U8 const * octets, std::size_t bytes ) const {
   if ( !headerSeen_ ) return streamHeaderBytes;
   if ( bytes < sizeof( U32 ) ) return sizeof( U32 );
   U32 length;
   std::memcpy( &length, octets, sizeof length );
   length = __builtin_bswap32( length );
   if ( length <= Out::recordHeadBytes || length > Out::maxRecordBytes ) {
      refuse( format( "a record of the attribute log has an impossible length, %u", length ) );
   }
   return sizeof( U32 ) + length;
}

/// Applies the whole units and returns their octets.
std::size_t Demuxer::recordsIs( U8 const * octets, std::size_t bytes ) {
   std::size_t taken = 0;
   for ( ;; ) {
      std::size_t const left = bytes - taken;
      std::size_t const want = wanted( octets + taken, left );
      if ( left < want || ( headerSeen_ && want == sizeof( U32 ) ) ) return taken;
      in_->entriesAre( false );
      if ( headerSeen_ ) {
         recordIs( octets + taken, want );
         ++records_;
      } else {
         in_->octetsIs( octets + taken, want );
         headerIs();
      }
      taken += want;
   }
}

void Demuxer::headerIs() {
   for ( char const c : streamMagic ) {
      if ( in_->nextU8() != U8( c ) ) refuse( "this is no attribute log" );
   }
   if ( U16 const version = in_->nextU16(); version != streamVersion ) {
      refuse( format( "version %u of the attribute log is not known", version ) );
   }
   if ( in_->nextU16() ) refuse( "the attribute log uses a feature that is not known" );
   headerSeen_ = true;
}

void Demuxer::recordIs( U8 const * octets, std::size_t bytes ) {
   // A record without room for its head and the last token has been refused.
   constexpr std::size_t headBytes = sizeof( U32 ) + Out::recordHeadBytes;
   In & in = *in_;
   in.octetsIs( octets + 5, headBytes - 5 );
   U8 const kind = octets[4];
   U32 const entity = in.nextEntityId();
   U32 const attribute = in.nextAttributeId();
   if ( octets[headBytes - 1] != Out::beginToken ) refuse( "a record's value does not begin with its token" );
   if ( octets[bytes - 1] != Out::endToken ) refuse( "a record's value does not end with its token" );
   in.octetsIs( octets + headBytes, bytes - headBytes - 1 );
   if ( kind == attributeRecord && attribute != 0 - orphanId ) [[likely]] {
      if ( Ptr< Out::Adapter > const adapter{ out_->state().adapterById( entity ) } ) [[likely]] {
         adapter->doHandleAttrDeserialization( attribute, false, unsigned( in.left() ), in_ );
         return;
      }
   }
   otherRecordIs( kind, entity, attribute );
}

/// A record that does not set an attribute of an entity which is known.
void Demuxer::otherRecordIs( U8 kind, U32 entity, U32 attribute ) {
   In & in = *in_;
   switch ( kind ) {
   case typeRecord:
      if ( entity ) refuse( "a type record names an entity" );
      typeIs( attribute );
      return;
   case introducingRecord:
      if ( attribute == orphanId && !entity ) {
         orphanIs();
         return;
      }
      break;
   case attributeRecord:
   case markerRecord: break;
   default: refuse( format( "a record has the unknown kind %u", kind ) );
   }
   Ptr< Out::Adapter > const adapter( out_->state().adapterById( entity ) );
   if ( !adapter ) {
      if ( !gone( entity ) ) refuse( format( "entity %#x is not known", entity ) );
      // The number of what it introduces is given, although nobody is there to hold it.
      if ( kind == introducingRecord && in.left() >= sizeof( U32 ) ) {
         in.take( in.left() - sizeof( U32 ) );
         U32 const id = in.nextEntityId();
         if ( !gone( id ) && !out_->state().adapterById( id ) ) newEntityIdIs( id );
      }
      return;
   }
   if ( kind == markerRecord ) {
      U8 const type = in.nextU8();
      unsigned const word = in.nextU32();
      adapter->doHandleAttrTransaction( attribute, StreamAdapter::AttrTransactionType( type ), word, in_ );
   } else if ( attribute == 0 - orphanId ) {
      if ( kind != attributeRecord ) refuse( "a withdrawal is of the wrong kind" );
      checkEphemeralEntityDeletion( *adapter );
   } else {
      adapter->doHandleAttrDeserialization( attribute, kind == introducingRecord, unsigned( in.left() ),
                                            in_ );
   }
}

void Demuxer::typeIs( U32 number ) {
   std::size_t const bytes = in_->left();
   String const name( in_->take( bytes ), bytes );
   if ( number != types_.size() + 1 ) refuse( "types are numbered in their order" );
   VornType const * const type = typeNode( name.charPtr() );
   if ( !type || !( name == type->name ) || !type->newEntityForAttrLog ) {
      refuse( "the attribute log brings unknown type " + valueToStrep( name ) );
   }
   // There are as many as the process has types, so this does not grow with the stream.
   if ( std::find( types_.begin(), types_.end(), type ) != types_.end() ) {
      refuse( "type " + valueToStrep( name ) + " has a number already" );
   }
   types_.push_back( type );
}

void Demuxer::orphanIs() {
   if ( flags_.any( StreamAdapter::remoteReadOnly ) ) {
      Out::Adapter::throwWriteUpdateFromReadOnlyProxyException();
   }
   In & in = *in_;
   auto const section = [&]( U8 expected ) {
      if ( in.nextU8() != expected ) refuse( "the parts of an orphan record are out of order" );
   };
   section( Out::typeSection );
   VornType const & type = in.nextType();
   section( Out::argumentSection );
   U8 const * const place = in.place(); // for the creator, which reads the arguments itself
   Arguments const arguments( in, type.ctorArgs );
   section( Out::entityIdSection );
   U32 const id = in.nextEntityId();
   in.endIs();
   newEntityIdIs( id );
   Ptr< Entity > root;
   do {
      root = offers_->take( type, arguments.pointers() );
   } while ( root && roots_->has( *root ) ); // offered twice
   if ( !root ) {
      in.placeIs( place );
      root = static_cast< Entity * >( type.newEntityForAttrLog( in_, flags_, 0, out_ ).ptr() );
   }
   roots_->entityIs( root );
   doEntityIdIs( *root, id, nullptr );
}

/// Lets go of an entity that the other end introduced by itself and has no more.
void Demuxer::checkEphemeralEntityDeletion( Out::Adapter & adapter ) {
   in_->endIs();
   adapter.checkWritable( orphanId );
   if ( !roots_->has( adapter.entity() ) )
      refuse( "an entity is withdrawn that was not introduced by itself" );
   adapter.close();
   roots_->entityDel( adapter.entity() );
}

} // namespace Vorn::NboAttrLog
