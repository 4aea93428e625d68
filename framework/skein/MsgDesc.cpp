// Call sites and enumerations describe themselves in the ring's file.
#include "Skein/MsgDesc.h"

#include "RingStore.h"

#include <algorithm>
#include <string_view>

namespace Skein {

namespace {

/// A description under construction: octets, the first two of which become its size.
class Entry {
 public:
   explicit Entry( Description kind ) {
      number( U16( 0 ) );
      number( kind );
   }
   template< class T >
   void number( T value ) {
      octets_.append( reinterpret_cast< char const * >( &value ), sizeof value );
   }
   void text( char const * value ) { octets_.append( value, std::strlen( value ) + 1 ); }
   void items( Vorn::String const & value ) { octets_.append( value.charPtr(), value.bytes() ); }

   /// Puts it into the file. False if it has no room there.
   bool finish( Ring & ring ) {
      if ( octets_.size() > 0xffff ) return false;
      char * const place = ring.addDescription( octets_.size() );
      if ( !place ) return false;
      U16 const bytes = U16( octets_.size() );
      std::memcpy( octets_.data(), &bytes, sizeof bytes );
      std::memcpy( place, octets_.data(), octets_.size() );
      ring.descriptionAdded( octets_.size() );
      return true;
   }

 private:
   std::string octets_;
};

/// The number under which the enumeration is described in the file. One that found no room there is shown by
/// number.
U16 enumerationId( Vorn::VornType const * type ) {
   Ring & ring = Ring::ring();
   std::scoped_lock const lock( ring.mutex );
   auto & known = ring.enumerations;
   auto const found = std::find( known.begin(), known.end(), type );
   U16 const id = U16( found - known.begin() );
   if ( found == known.end() && ring.on() ) {
      known.push_back( type );
      Entry entry( Description::enumeration );
      entry.number( U8( 0 ) );
      entry.number( id );
      entry.text( type->name );
      for ( U32 i = 0; i < type->attributeNum; ++i ) {
         entry.number( type->attributes[i].id() );
         entry.text( type->attributes[i].name );
      }
      entry.finish( ring );
   }
   return id;
}

} // namespace

void MsgFormatString::add( void const * data, std::size_t bytes ) {
   items_ += std::string_view( static_cast< char const * >( data ), bytes );
}

void MsgFormatString::put( char const * piece ) {
   put( Item::text );
   add( piece, std::strlen( piece ) + 1 );
}

void MsgFormatString::put( Item item ) { add( &item, sizeof item ); }

void MsgFormatString::put( Vorn::VornType const * enumeration ) {
   U16 const id = enumerationId( enumeration );
   put( Item::enumerator );
   add( &id, sizeof id );
}

void MsgFormatString::choice( U8 alternatives ) {
   put( Item::choice );
   add( &alternatives, sizeof alternatives );
}

void MsgFormatString::when( U8 tag ) { add( &tag, sizeof tag ); }

MsgDesc::MsgDesc( TraceFile &, int * msgId, char const * fileName, int line, bool block )
     : msgId_( msgId ), fileName_( fileName ), line_( line ), block_( block ) {}

void MsgDesc::functionIs( char const * function, U8 level ) {
   function_ = function;
   level_ = level;
}

void MsgDesc::finish() {
   Ring & ring = Ring::ring();
   std::scoped_lock const lock( ring.mutex );
   if ( *msgId_ || !ring.on() ) return; // another thread was here first
   int const id = int( ring.msgIds.size() ) + 1;
   Entry entry( Description::site );
   entry.number( level_ );
   entry.number( U8( block_ ) );
   entry.number( U16( id ) );
   entry.number( U32( line_ ) );
   entry.text( fileName_ );
   entry.text( function_ );
   entry.items( format_.items() );
   bool const entered = id <= maxMsgId && entry.finish( ring );
   ring.msgIds.push_back( msgId_ );
   __atomic_store_n( msgId_, entered ? id : -1, __ATOMIC_RELEASE );
}

} // namespace Skein
