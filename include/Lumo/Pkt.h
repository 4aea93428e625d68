/// \file
/// Packets: the counted buffers that the decoders read. A parser keeps its packet by a `Vorn::Ptr`, so the
/// bytes under its views live as long as the parser.
#pragma once

#include "Vorn/Ptr.h"

#include <vector>

namespace Lumo {

/// A run of contiguous bytes. The decoders only read them.
class VORN_API Pkt : public Vorn::PtrInterface {
   VORN_OBJECT( Pkt )

 public:
   /// A packet that owns a copy of the `bytes` bytes at `data`.
   Pkt( void const * data, std::size_t bytes );
   ~Pkt() override;

   /// A packet over bytes that the caller keeps in place and unchanged for as long as the packet lives.
   /// Nothing is copied.
   static Vorn::Ptr< Pkt > borrow( void const * data, std::size_t bytes );

   /// A packet without bytes yet, with room for `bytes` of them, for an owner who fills it before it is
   /// handed on and not while anybody else holds it.
   static Vorn::Ptr< Pkt > withRoom( std::size_t bytes );
   /// The room of a packet that `withRoom` made.
   U8 * room() noexcept { return owned_.data(); }
   /// Bytes of that room.
   std::size_t roomBytes() const noexcept { return owned_.size(); }
   /// Says how many bytes of the room count.
   void frontBytesIs( std::size_t bytes );

   /// First byte of the contiguous data; a place even where there is none.
   U8 const * front() const noexcept { return front_; }
   /// Bytes from `front()` on.
   U64 frontBytes() const noexcept { return frontBytes_; }

 private:
   struct Borrowed {};
   Pkt( Borrowed, U8 const * data, std::size_t bytes ) noexcept : front_( data ), frontBytes_( bytes ) {}

   std::vector< U8 > owned_; // empty when the bytes are borrowed
   U8 const * front_;
   U64 frontBytes_;
};

/// A packet that owns a copy of those bytes.
VORN_API Vorn::Ptr< Pkt > pktFactory( void const * data, std::size_t bytes );

} // namespace Lumo
