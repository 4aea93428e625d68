/// \file
/// Trace statements. One statement feeds both traces: the ring, always, once it stands; and the text trace,
/// if the level of the module's facility is on. A source file that traces names its facility once:
///
///     namespace Ldp {
///     namespace {
///     VORN_TRACE_FACILITY( "LdpGenMsgParser" )
///     }
///     }
///
///     void LdpTlvGroupParser::parseTlvGroup() {
///        TWAIN_FUNCTION( "LdpTlvGroupParser::parseTlvGroup" );
///        TWAIN_TRACE( 6, "   Msg/TLV ", index, ": offset ", cur, ", size ", total );
///     }
///
/// String literals among the arguments are the pieces of the message; everything else is data
/// (Twain/Codec.h). An argument is evaluated once for each trace that is on: not at all if neither is, twice
/// if both are. So it must not have effects, and what is costly belongs into a `Twain::Lazy`. Nothing that a
/// statement does alters an outcome or throws.
#pragma once

#include "Twain/Codec.h"
#include "Vorn/Memory.h"
#include "Vorn/Trace.h"

namespace Ldp {

/// How deep the decoders are nested, in all threads of the process together: while
/// `Vorn::VFPtrInterface::threadSafePointers_` is set it changes atomically, else it is a plain variable.
VORN_API extern U16 callDepth;

/// A hook for the program: what it returns other than 0 stands as `#` and the number at the beginning of the
/// text lines of function entries. The library's own, a weak symbol that any definition overrides, returns 0.
VORN_API unsigned int instId( ... );

} // namespace Ldp

namespace Twain {

/// A place in the source that traces.
struct Site {
   char const * file; ///< stem of the source file
   int line;
   char const * function;
   Vorn::TraceFacility::FacilityLevel level;
};

/// The stem of a path: `LdpHdr` of `decode/LdpHdr.cpp`.
template< std::size_t size >
struct FileStem {
   consteval FileStem( char const ( &path )[size] ) {
      std::size_t begin = 0, end = size - 1;
      for ( std::size_t i = 0; i < size; ++i ) {
         if ( path[i] == '/' ) begin = i + 1, end = size - 1;
         if ( path[i] == '.' && i > begin ) end = i;
      }
      for ( std::size_t i = begin; i < end; ++i )
         text[i - begin] = path[i];
   }
   char text[size]{};
};

/// Arguments on their way into code that runs seldom: numbers by value, so that the caller may keep them in
/// registers.
template< class T >
using Pass = std::conditional_t< std::is_scalar_v< T >, T, T const & >;

/// Registers a call site whose id is not above 0 yet.
template< class... Args >
[[gnu::cold, gnu::noinline]] void registerSite( Skein::TraceFile & file, Site const & site, int & msgId,
                                                bool block, Pass< Args >... args ) noexcept {
   if ( Skein::givenMsgId( msgId ) < 0 ) return;
   Skein::MsgDesc desc( file, &msgId, site.file, site.line, block );
   desc.functionIs( site.function, U8( site.level ) );
   auto const describe = [&]< class T >( T const & arg ) {
      if constexpr ( requires { Codec< T >::describe( desc.format(), arg ); } ) {
         Codec< T >::describe( desc.format(), arg );
      } else {
         Codec< T >::describe( desc.format() );
      }
   };
   ( describe( args ), ... );
   desc.finish();
}

/// Writes one record.
template< class... Args >
[[gnu::always_inline]] inline void traceRing( Skein::TraceFile & file, Site const & site, int & msgId,
                                              Args const &... args ) noexcept {
   static_assert( 10 + ( 0 + ... + Codec< Args >::maxBytes ) <= Skein::maxRecordBytes,
                  "too much for one record" );
   int id = Skein::givenMsgId( msgId );
   if ( id <= 0 ) [[unlikely]] {
      registerSite< Args... >( file, site, msgId, false, args... );
      id = Skein::givenMsgId( msgId );
      if ( id <= 0 ) return;
   }
   Skein::RingBuf record;
   record.startMsg( file, id );
   ( Codec< Args >::put( record, args ), ... );
   record.endMsg();
}

/// Writes a finished line.
VORN_API void writeLine( Vorn::TraceHandle const & handle, Site const & site, SkeinConverter & line );

/// Builds and writes one line. A line that fails is dropped.
template< class... Args >
[[gnu::cold, gnu::noinline]] void traceText( Vorn::TraceHandle const & handle, Site const & site,
                                             Pass< Args >... args ) noexcept {
   try {
      SkeinConverter line;
      static_cast< void >( ( line << ... << args ) );
      writeLine( handle, site, line );
   } catch ( ... ) {}
}
/// Deduces the arguments' types for `traceText`.
template< class... Args >
[[gnu::always_inline]] inline void passText( Vorn::TraceHandle const & handle, Site const & site,
                                             Args const &... args ) noexcept {
   traceText< Args... >( handle, site, args... );
}

/// False while no text line is wanted by anybody.
inline bool textPossible() noexcept { return Vorn::TraceFacility::anyEnabled() || Vorn::coverageStream_; }
/// Whether a text line of that level is wanted by anybody.
inline bool textWanted( Vorn::TraceHandle const & handle,
                        Vorn::TraceFacility::FacilityLevel level ) noexcept {
   return handle.enabled( level ) || Vorn::coverageStream_;
}
/// False while nobody reads what any statement says.
inline bool tracing() noexcept { return Skein::defaultSkeinHandle.traceFile() || textPossible(); }

/// The trace of a function's entry and, in the ring, of its end, whichever way that comes.
class VORN_API FunctionTrace {
 public:
   /// `name` is the class-qualified name with `() ` behind it; what the function was called with may follow.
   template< std::size_t size, class... Args >
   [[gnu::always_inline]] FunctionTrace( Vorn::TraceHandle & ( *defaultHandle )(), Site const & site,
                                         int & msgId, char const ( &name )[size],
                                         Args const &... args ) noexcept {
      U16 const depth = enter();
      if ( Skein::TraceFile * const file = Skein::defaultSkeinHandle.traceFile() ) {
         int id = Skein::givenMsgId( msgId );
         if ( id <= 0 ) [[unlikely]] {
            registerFunction( *file, site, msgId, name, []( Skein::MsgFormatString & format ) {
               static_cast< void >( format );
               ( Codec< Args >::describe( format ), ... );
            } );
            id = Skein::givenMsgId( msgId );
         }
         if ( id > 0 ) [[likely]] {
            Skein::RingBuf record;
            record.startMsg( *file, id );
            record.put( depth );
            ( Codec< Args >::put( record, args ), ... );
            record.endMsg();
            timer_.open( *file, &msgId );
         }
      }
      if ( textPossible() ) [[unlikely]] {
         Vorn::TraceHandle const & handle = defaultHandle();
         if ( textWanted( handle, site.level ) ) functionText( handle, site, depth, name, args... );
      }
   }
   FunctionTrace( FunctionTrace const & ) = delete;
   ~FunctionTrace() {
      if ( shared_ ) [[unlikely]] {
         __atomic_sub_fetch( &Ldp::callDepth, 1, __ATOMIC_RELAXED );
      } else {
         --Ldp::callDepth;
      }
   }

 private:
   /// One level deeper; how deep that is.
   U16 enter() const noexcept {
      if ( shared_ ) [[unlikely]]
         return __atomic_add_fetch( &Ldp::callDepth, 1, __ATOMIC_RELAXED );
      return ++Ldp::callDepth;
   }
   static void registerFunction( Skein::TraceFile & file, Site const & site, int & msgId, char const * name,
                                 void ( *describe )( Skein::MsgFormatString & format ) ) noexcept;
   static void functionHead( SkeinConverter & line, U16 depth, char const * name );
   template< class... Args >
   [[gnu::cold, gnu::noinline]] static void functionText( Vorn::TraceHandle const & handle, Site const & site,
                                                          U16 depth, char const * name,
                                                          Args const &... args ) noexcept {
      try {
         SkeinConverter line;
         functionHead( line, depth, name );
         ( static_cast< void >( line << args ), ... );
         writeLine( handle, site, line );
      } catch ( ... ) {} // dropped, as any line that fails
   }

   bool const shared_ = Vorn::VFPtrInterface::threadSafePointers_;
   Skein::BlockTimerMsg timer_;
};

} // namespace Twain

/// Defines `_defaultTraceHandle()`, the module's way to its facility. Stands in an unnamed namespace of the
/// source file. Statements have the test for the handle in line, and its making elsewhere.
#define VORN_TRACE_FACILITY( name )                                                                          \
   [[gnu::cold, gnu::noinline]] ::Vorn::TraceHandle makeTraceHandle_() {                                     \
      return ::Vorn::TraceHandle( name, false );                                                             \
   }                                                                                                         \
   [[gnu::always_inline]] inline ::Vorn::TraceHandle & _defaultTraceHandle() {                               \
      static ::Vorn::TraceHandle handle( makeTraceHandle_() );                                               \
      return handle;                                                                                         \
   }

// clang-format off
#define TWAIN_SITE( level_ )                                                                                 \
   static constexpr ::Twain::FileStem twainStem_( __FILE__ );                                                \
   static constexpr ::Twain::Site twainSite_{ twainStem_.text, __LINE__, __func__, level_ };                 \
   static int twainMsgId_ = 0;
// clang-format on

/// Traces its arguments behind the level, into both traces.
#define TWAIN_TRACE( level, ... )                                                                            \
   do {                                                                                                      \
      TWAIN_SITE( level )                                                                                    \
      if ( auto * const twainFile_ = ::Skein::defaultSkeinHandle.traceFile() )                               \
         ::Twain::traceRing( *twainFile_, twainSite_, twainMsgId_, __VA_ARGS__ );                            \
      if ( ::Twain::textPossible() ) [[unlikely]] {                                                          \
         ::Vorn::TraceHandle const & twainHandle_ = _defaultTraceHandle();                                   \
         if ( ::Twain::textWanted( twainHandle_, level ) )                                                   \
            ::Twain::passText( twainHandle_, twainSite_, __VA_ARGS__ );                                      \
      }                                                                                                      \
   } while ( false )

/// Traces the entry into a function, at level 8, and its end. Stands first in the function; `name` is a
/// literal, behind which arguments of the function may follow.
#define TWAIN_FUNCTION( name, ... )                                                                          \
   TWAIN_SITE( 8 )                                                                                           \
   ::Twain::FunctionTrace const twainFunction_( _defaultTraceHandle, twainSite_, twainMsgId_,                \
                                                name "() " __VA_OPT__(, ) __VA_ARGS__ )
