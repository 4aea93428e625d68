// A re-entrant scheduler: random calls of every mutator over a small tree of the model's own types, whose
// observers do anything from within any callback: make, delete, make again under the same key, replace, bind,
// unbind, pause, throw, drop the last reference to whatever they like. Nothing of it may reach memory that is
// gone (a sanitizer watches), and a child that somebody holds has the parent that owns it, or none.
#pragma once

#include "Vorn/Api.h"

namespace Test {

// Where the choices come from: a seed, or the octets of a fuzz input, which end.
class Choices {
 public:
   explicit Choices( U64 seed ) noexcept : state_( seed ) {}
   Choices( U8 const * octets, std::size_t size ) noexcept : at_( octets ), end_( octets + size ) {}

   // One of 0 to n - 1; n is at most 256. The first one, when the input has ended.
   U32 below( U32 n ) noexcept;
   bool ended() const noexcept { return at_ && at_ == end_; }

 private:
   U64 state_ = 0;
   U8 const * at_ = nullptr;
   U8 const * end_ = nullptr;
};

// Takes that many steps, or as many as there are choices for, then lets everything go. What may not be is an
// assertion.
void meddle( Choices & choices, U64 steps );

} // namespace Test
