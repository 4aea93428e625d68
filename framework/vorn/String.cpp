// The shared string: allocation, concatenation, format.
#include "Vorn/String.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>
#include <ostream>
#include <string>

#include "Vorn/Hash.h"

namespace Vorn {

String::Data * String::newData( std::size_t bytes ) {
   VORN_ASSERT( bytes < std::numeric_limits< U32 >::max() );
   auto * data = static_cast< Data * >( vornMemAlloc( sizeof( Data ) + bytes + 1 ) );
   data->refs = 1;
   data->bytes = U32( bytes );
   reinterpret_cast< char * >( data + 1 )[bytes] = 0;
   return data;
}

void String::release() noexcept { vornMemFree( data_, sizeof( Data ) + data_->bytes + 1 ); }

String::String( std::string_view octets ) {
   if ( octets.empty() ) return;
   data_ = newData( octets.size() );
   std::memcpy( data_ + 1, octets.data(), octets.size() );
}

String & String::operator+=( std::string_view octets ) {
   if ( octets.empty() ) return *this;
   Data * sum = newData( bytes() + octets.size() );
   char * to = reinterpret_cast< char * >( sum + 1 );
   std::memcpy( to, charPtr(), bytes() );
   std::memcpy( to + bytes(), octets.data(), octets.size() );
   String joined;
   joined.data_ = sum;
   return *this = std::move( joined );
}

U32 String::hash() const noexcept { return empty() ? 0 : hashBytes( charPtr(), bytes() ); }

std::ostream & operator<<( std::ostream & out, String const & text ) {
   return out.write( text.charPtr(), std::streamsize( text.bytes() ) );
}

String format( char const * pattern, ... ) {
   va_list args, again;
   va_start( args, pattern );
   va_copy( again, args );
   char small[256];
   int const bytes = std::vsnprintf( small, sizeof small, pattern, args );
   va_end( args );
   String text;
   if ( bytes >= 0 && std::size_t( bytes ) < sizeof small ) {
      text = String( small, std::size_t( bytes ) );
   } else if ( bytes >= 0 ) {
      std::string large( std::size_t( bytes ), 0 );
      std::vsnprintf( large.data(), large.size() + 1, pattern, again );
      text = String( std::string_view( large ) );
   }
   va_end( again );
   return text;
}

} // namespace Vorn
