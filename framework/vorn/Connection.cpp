// The bounded buffer of outgoing records, and incoming octets cut into records.
#include "Vorn/Connection.h"

#include "Vorn/Strep.h"

#include <algorithm>

namespace Vorn {

using Out = Connection::Out;

Out::Out( U32 capacity ) : buffer_( std::max( capacity, minCapacity ) ) {
   head_ = at_ = buffer_.data();
   limit_ = head_ + buffer_.size();
}

void Out::drained( std::size_t n ) {
   VORN_ASSERT( n <= used() );
   head_ += n;
   if ( head_ == at_ ) {
      head_ = at_ = buffer_.data();
      limit_ = head_ + buffer_.size();
      if ( !large_.empty() ) large_ = {};
      blocked_ = !failure_.empty();
   } else if ( large_.empty() && buffer_.size() - used() >= need_ ) {
      blocked_ = !failure_.empty();
   }
}

/// Finds room for the `need_` octets of a record that did not fit; false if that has to wait.
bool Out::roomIs() {
   std::size_t const ready = used();
   if ( need_ - sizeof( U32 ) > maxRecordBytes ) {
      failure_ = format( "a record of %zu octets cannot be written to the attribute log", need_ );
   } else if ( head_ != buffer_.data() && ready + need_ <= buffer_.size() ) {
      std::memmove( buffer_.data(), head_, ready );
      head_ = buffer_.data();
      at_ = head_ + ready;
      return true;
   } else if ( !ready ) {
      large_.resize( need_ );
      head_ = at_ = large_.data();
      limit_ = head_ + large_.size();
      return true;
   }
   blocked_ = true;
   return false;
}

} // namespace Vorn
