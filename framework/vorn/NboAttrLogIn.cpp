#include "Vorn/NboAttrLogIn.h"

#include "NboAttrLogAnchors.h"
#include "Vorn/Strep.h"

#include <algorithm>

namespace Vorn::NboAttrLog {

VORN_OBJECT_RECORD( Vorn::NboAttrLog, Demuxer, nullptr )

namespace {

[[noreturn]] void refuse( String const & message ) { throw AttrLogRecordException( message ); }

/// The entity's type has all its arguments in its table; those that can be changed do not count.
bool constructedWith( Entity & entity, VornCtorArg const * table, void const * const * given ) {
   VornType const & type = *entity.fwkType();
   for ( ; table->name; ++table, ++given ) {
      VornAttr const & attr = *type.attribute( table->name );
      if ( attr.kind() == VornKind::mutableAttr ) continue;
      GenericIf::Value current( attr.type );
      attr.ops->op( current.data(), static_cast< PtrInterface * >( &entity ), attr, GenericIf::read, nullptr,
                    nullptr );
      if ( !attr.type->methods->equal( current.data(), *given ) ) return false;
   }
   return true;
}

} // namespace

// In.

void In::throwShort() { refuse( "the record ends within a value" ); }

bool In::nextbool() {
   U8 const octet = nextU8();
   if ( octet > 1 ) refuse( "a bool is 0 or 1" );
   return octet;
}

double In::nextSeconds() {
   U64 const bits = nextU64();
   double value;
   std::memcpy( &value, &bits, sizeof value );
   return value;
}

String In::nextString() {
   U32 const bytes = nextU32();
   return String( take( bytes ), bytes );
}

U32 In::nextEntityId() {
   U32 const id = nextU32();
   if ( id == numberedByPeer ) refuse( "an entity has the number 0" );
   return id ? id ^ numberedByPeer : 0;
}

Ptr< Entity > In::nextEntity() {
   U32 const id = nextEntityId();
   if ( !id ) return nullptr;
   if ( auto * const adapter = demuxer_->out()->adapterById( id ) )
      return Ptr< Entity >( &adapter->entity() );
   if ( !demuxer_->gone( id ) ) refuse( format( "entity %#x is not known", id ) );
   return nullptr;
}

VornType const & In::nextType() {
   U32 const number = nextU32();
   if ( number == 0 || number > demuxer_->types_.size() ) refuse( format( "type %u has no name", number ) );
   return *demuxer_->types_[number - 1];
}

void In::endIs() const {
   if ( left() && !open_ ) refuse( "the record goes on behind its value" );
}

void logIn( In & in, bool * value ) { *value = in.nextbool(); }
void logIn( In & in, U8 * value ) { *value = in.nextU8(); }
void logIn( In & in, U16 * value ) { *value = in.nextU16(); }
void logIn( In & in, U32 * value ) { *value = in.nextU32(); }
void logIn( In & in, U64 * value ) { *value = in.nextU64(); }
void logIn( In & in, double * value ) { *value = in.nextSeconds(); }
void logIn( In & in, String * value ) { *value = in.nextString(); }

void ensureCorrectType( VornType const & type, VornType const & expected ) {
   if ( &type != &expected )
      refuse( String( "a " ) + type.name + " came in where a " + expected.name + " belongs" );
}

// Arguments.

Arguments::Arguments( In & in, VornCtorArg const * table ) : table_( table ) {
   try {
      for ( ; table_[num_].name; ++num_ ) {
         VORN_ASSERT( num_ < maxNum );
         auto * const value = new ( values_[num_] ) GenericIf::Value( table_[num_].type );
         pointers_[num_] = value->data();
         try {
            value->type()->methods->logIn( in, value->data() );
         } catch ( ... ) {
            ++num_;
            throw;
         }
      }
   } catch ( ... ) {
      this->~Arguments();
      throw;
   }
}

Arguments::~Arguments() {
   while ( num_ ) {
      std::launder( reinterpret_cast< GenericIf::Value * >( values_[--num_] ) )->~Value();
   }
}

bool Arguments::areThoseOf( Entity & entity ) const { return constructedWith( entity, table_, pointers_ ); }

// Demuxer.

Demuxer::Demuxer( Ptr< Out > const & out, Vorn_BitSet flags ) : out_( out ), flags_( flags ) {}

Demuxer::~Demuxer() = default;

void Demuxer::rootIs( Ptr< Entity > const & entity ) { offered_.push_back( entity ); }

std::unique_ptr< Out::Adapter::FlowOut > Demuxer::createFlowOut( VornType const & type ) {
   return std::make_unique< Out::Adapter::FlowOut >( type );
}

void Demuxer::bytesIs( void const * octets, std::size_t bytes ) {
   VORN_ASSERT( !out_->active_ );
   if ( failed_ ) refuse( "the attribute log was refused before" );
   Ptr< Demuxer > const hold( this );
   ClearIsActiveAnchor const anchor( out_->active_ );
   try {
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
      failed_ = true;
      throw;
   } catch ( RangeException const & exception ) {
      failed_ = true;
      refuse( exception.message() );
   }
}

/// Octets of the unit that begins here, as far as they are known.
std::size_t Demuxer::wanted( U8 const * octets, std::size_t bytes ) const {
   if ( !headerSeen_ ) return streamHeaderBytes;
   if ( bytes < sizeof( U32 ) ) return sizeof( U32 );
   U32 const length = In( octets, sizeof( U32 ), const_cast< Demuxer & >( *this ) ).nextU32();
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
      In in( octets + taken, want, *this );
      if ( headerSeen_ ) {
         recordIs( in );
         ++records_;
      } else {
         headerIs( in );
      }
      taken += want;
   }
}

void Demuxer::headerIs( In & in ) {
   for ( char const c : streamMagic ) {
      if ( in.nextU8() != U8( c ) ) refuse( "this is no attribute log" );
   }
   if ( U16 const version = in.nextU16(); version != streamVersion ) {
      refuse( format( "version %u of the attribute log is not known", version ) );
   }
   if ( in.nextU16() ) refuse( "the attribute log uses a feature that is not known" );
   headerSeen_ = true;
}

void Demuxer::recordIs( In & in ) {
   in.nextU32(); // the length
   U8 const kind = in.nextU8();
   U32 const entity = in.nextEntityId();
   U32 const attribute = in.nextAttributeId();
   if ( in.nextU8() != Out::beginToken ) refuse( "a record's value does not begin with its token" );
   In value = in.nextPart( in.left() - 1 );
   if ( in.nextU8() != Out::endToken ) refuse( "a record's value does not end with its token" );
   switch ( kind ) {
   case typeRecord: typeIs( attribute, value ); return;
   case introducingRecord:
      if ( attribute == orphanId && !entity ) {
         orphanIs( value );
         return;
      }
      break;
   case attributeRecord:
   case markerRecord: break;
   default: refuse( format( "a record has the unknown kind %u", kind ) );
   }
   Ptr< Out::Adapter > const adapter( out_->adapterById( entity ) );
   if ( !adapter ) {
      if ( !gone( entity ) ) refuse( format( "entity %#x is not known", entity ) );
      // The number of what it introduces is given, although nobody is there to hold it.
      if ( kind == introducingRecord && value.left() >= sizeof( U32 ) ) {
         value.nextPart( value.left() - sizeof( U32 ) );
         lastEntityId_ = std::max( lastEntityId_, value.nextEntityId() );
      }
      return;
   }
   if ( attribute == 0 - orphanId ) {
      checkEphemeralEntityDeletion( *adapter, value );
   } else if ( kind == markerRecord ) {
      U8 const type = value.nextU8();
      value.nextU32(); // nothing yet
      adapter->doHandleAttrTransaction( attribute, StreamAdapter::AttrTransactionType( type ), value );
   } else {
      adapter->doHandleAttrDeserialization( attribute, value );
   }
}

/// Whether an entity that is not on the log may have been there: this end has deleted it, and the record was
/// on its way. Where this end does not write, that cannot be.
bool Demuxer::gone( U32 entityId ) const {
   if ( flags_.any( StreamAdapter::readOnly ) || !entityId ) return false;
   return entityId & numberedByPeer ? entityId <= lastEntityId_ : entityId <= out_->lastEntityId_;
}

void Demuxer::typeIs( U32 number, In & in ) {
   auto const octets = in.nextPart( in.left() );
   String const name( octets.octets(), octets.left() );
   if ( number != types_.size() + 1 ) refuse( "types are numbered in their order" );
   VornType const * const type = typeNode( name.charPtr() );
   if ( !type || !( name == type->name ) || !type->newEntityForAttrLog )
      refuse( "the attribute log brings unknown type " + valueToStrep( name ) );
   types_.push_back( type );
}

void Demuxer::orphanIs( In & in ) {
   if ( flags_.any( StreamAdapter::remoteReadOnly ) ) {
      Out::Adapter::throwWriteUpdateFromReadOnlyProxyException();
   }
   auto const section = [&]( U8 expected ) {
      if ( in.nextU8() != expected ) refuse( "the parts of an orphan record are out of order" );
   };
   section( Out::typeSection );
   VornType const & type = in.nextType();
   section( Out::argumentSection );
   In again = in; // for the creator, which reads the arguments itself
   Arguments const arguments( in, type.ctorArgs );
   section( Out::entityIdSection );
   U32 const id = in.nextEntityId();
   in.endIs();
   newEntityIdIs( id );
   auto const present = std::find_if( offered_.begin(), offered_.end(), [&]( auto const & entity ) {
      return entity->fwkType() == &type && arguments.areThoseOf( *entity );
   } );
   Ptr< Entity > root;
   if ( present != offered_.end() ) {
      root = *present;
      offered_.erase( present );
   } else {
      auto const object = type.newEntityForAttrLog( again );
      root = Ptr< Entity >( static_cast< Entity * >( object.ptr() ) );
   }
   roots_.push_back( root );
   doEntityIdIs( *root, id, nullptr );
}

/// Lets go of an entity that the other end introduced by itself and has no more.
void Demuxer::checkEphemeralEntityDeletion( Out::Adapter & adapter, In & in ) {
   in.endIs();
   adapter.checkWritable( orphanId );
   auto const root = std::find( roots_.begin(), roots_.end(), Ptr< Entity >( &adapter.entity() ) );
   if ( root == roots_.end() ) refuse( "an entity is withdrawn that was not introduced by itself" );
   adapter.close();
   roots_.erase( root );
}

/// Checks the number of an entity that is introduced: the other end counts them in its order.
void Demuxer::newEntityIdIs( U32 entityId ) {
   if ( !( entityId & numberedByPeer ) || entityId <= lastEntityId_ ) {
      refuse( format( "entity %#x is introduced with a number that was given before", entityId ) );
   }
   lastEntityId_ = entityId;
}

/// Ties an entity that came in to its number.
void Demuxer::doEntityIdIs( Entity & entity, U32 entityId, Out::Adapter * parent ) {
   Ptr< Out::Adapter > adapter;
   if ( parent ) {
      adapter = parent->childNboAttrLogAdapterIs( entity );
   } else {
      adapter = out_->adapter( entity );
      if ( !adapter ) {
         adapter = out_->newAdapter( entity, flags_.word() & Vorn_BitSet::inheritedFlagsMask(), 0, nullptr );
      }
   }
   out_->entityIdIs( *adapter, entityId );
   adapter->confirmedIs( true );
}

} // namespace Vorn::NboAttrLog
