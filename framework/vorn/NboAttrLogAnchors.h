/// \file
/// Scope objects of the attribute log: what they set is put back on every path, also by an exception.
#pragma once

#include "Vorn/Impl/StreamAdapter.h"

namespace Vorn::NboAttrLog {

/// Gives a flag a value for as long as it stands.
class FlagAnchor {
 public:
   FlagAnchor( Vorn_BitSet & flags, U32 flag, bool set = true ) noexcept
        : flags_( flags ), flag_( flag ), was_( flags.any( flag ) ) {
      flags_.bitsIs( flag, set );
   }
   ~FlagAnchor() { flags_.bitsIs( flag_, was_ ); }
   FlagAnchor( FlagAnchor const & ) = delete;
   FlagAnchor & operator=( FlagAnchor const & ) = delete;

 private:
   Vorn_BitSet & flags_;
   U32 flag_;
   bool was_;
};

/// Stands while a scheduled flow-out is handled; an adapter without one handles none.
class HandlingScheduledFlowOutAnchor : FlagAnchor {
 public:
   HandlingScheduledFlowOutAnchor( Vorn_BitSet & flags, bool flowOutPresent ) noexcept
        : FlagAnchor( flags, StreamAdapter::handlingFlowOut, flowOutPresent ) {}
};

/// Marks a log as active, and clears the mark when it goes.
class ClearIsActiveAnchor {
 public:
   explicit ClearIsActiveAnchor( bool & active ) noexcept : active_( active ) { active_ = true; }
   ~ClearIsActiveAnchor() { active_ = false; }
   ClearIsActiveAnchor( ClearIsActiveAnchor const & ) = delete;
   ClearIsActiveAnchor & operator=( ClearIsActiveAnchor const & ) = delete;

 private:
   bool & active_;
};

} // namespace Vorn::NboAttrLog
