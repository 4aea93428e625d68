// What comes in: values from octets, arguments of constructors, numbers of entities.
#include "Vorn/Impl/NboAttrLogIn.h"

#include "NboAttrLogState.h"
#include "Vorn/Impl/Mutators.h"
#include "Vorn/Strep.h"

namespace Vorn::NboAttrLog {

VORN_UNLISTED_RECORD( Vorn::NboAttrLog, In, nullptr )

namespace {

[[noreturn]] void refuse( String const & message ) { throw AttrLogRecordException( message ); }

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
   return demuxer_->string( take( bytes ), bytes );
}

String Demuxer::string( U8 const * octets, std::size_t bytes ) {
   if ( bytes > longestString ) return String( octets, bytes );
   String & known = strings_[hashBytes( octets, bytes ) % stringNum];
   if ( known.bytes() != bytes || std::memcmp( known.charPtr(), octets, bytes ) )
      known = String( octets, bytes );
   return known;
}

void In::throwNumber() { refuse( "an entity has the number 0" ); }

Ptr< Entity > In::nextEntity() {
   U32 const id = nextEntityId();
   if ( !id ) return nullptr;
   if ( auto * const adapter = demuxer_->out()->state().adapterById( id ) ) {
      return Ptr< Entity >( &adapter->entity() );
   }
   if ( !demuxer_->gone( id ) ) refuse( format( "entity %#x is not known", id ) );
   return nullptr;
}

VornType const & In::nextType() { return demuxer_->type( nextU32() ); }

void In::endIs() const {
   if ( left() && !entries_ ) refuse( "the record goes on behind its value" );
}

void endIs( In & in ) { in.endIs(); }

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

bool Arguments::areThoseOf( Entity & entity ) const {
   return madeFrom( entity, *entity.fwkType(), pointers_ );
}

// Numbers of entities.

bool Demuxer::gone( U32 entityId ) const {
   if ( flags_.any( StreamAdapter::readOnly ) || !entityId ) return false;
   return entityId & numberedByPeer ? entityId <= lastEntityId_ : entityId <= out_->state().lastEntityId;
}

VornType const & Demuxer::type( U32 number ) const {
   if ( number == 0 || number > types_.size() ) refuse( format( "type %u has no name", number ) );
   return *types_[number - 1];
}

void Demuxer::newEntityIdIs( U32 entityId ) {
   if ( entityId != lastEntityId_ + 1 ) {
      refuse( format( "entity %#x is introduced with another number than the next", entityId ) );
   }
   lastEntityId_ = entityId;
}

void Demuxer::doEntityIdIs( Entity & entity, U32 entityId, Out::Adapter * parent ) {
   auto & state = out_->state();
   Ptr< Out::Adapter > adapter;
   if ( parent ) {
      adapter = parent->childNboAttrLogAdapterIs( entity );
   } else {
      adapter = out_->adapter( entity );
      if ( !adapter ) {
         U32 const flags = flags_.word() & Vorn_BitSet::inheritedFlagsMask();
         adapter = state.newAdapter( *out_, entity, flags, 0, nullptr );
      }
   }
   state.entityIdIs( *adapter, entityId );
   adapter->confirmedIs( true );
}

} // namespace Vorn::NboAttrLog
