/// \file
/// Two ends of an attribute log in one process, with a connection between them that a test can starve and
/// cut.
#pragma once

#include "support/LogText.h"

#include "Vorn/NboAttrLog.h"

#include <gtest/gtest.h>
#include <vector>

namespace Test {

using Vorn::Ptr;
using Vorn::StreamAdapter;
using Demuxer = Vorn::NboAttrLog::Demuxer;
using Out = Vorn::NboAttrLog::Out;

/// One end: what it sends, and what applies what it receives.
struct LogEnd {
   explicit LogEnd( Vorn_BitSet flags, U32 capacity = Out::defaultCapacity )
        : out( Vorn::newObject< Out >( capacity ) ), demuxer( Vorn::newObject< Demuxer >( out, flags ) ) {}

   Ptr< Out > out;
   Ptr< Demuxer > demuxer;
};

/// A connection from an original to its copy, which is read-only unless both ends write.
struct LogPair {
   explicit LogPair( U32 capacity = Out::defaultCapacity, bool bothWrite = false )
        : source( bothWrite ? 0u : U32( StreamAdapter::remoteReadOnly ), capacity ),
          copy( bothWrite ? 0u : U32( StreamAdapter::readOnly ), capacity ) {}

   /// Carries up to `most` octets to the copy and returns how many there were.
   std::size_t carry( std::size_t most = ~std::size_t( 0 ) ) { return carry( source, copy, most ); }
   /// From one end to the other.
   static std::size_t carry( LogEnd & from, LogEnd & to, std::size_t most = ~std::size_t( 0 ) );
   /// Carries until nothing is left.
   void flush();
   /// What is ready, in place of carrying it.
   std::vector< U8 > take();
   Ptr< Vorn::Entity > const & root() const { return copy.demuxer->roots().at( 0 ); }

   LogEnd source;
   LogEnd copy;
};

} // namespace Test
