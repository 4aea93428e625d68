// One trace statement on its way to both traces.
#include "Twain/Trace.h"

#include "Mendo/Text.h"

U16 Ldp::callDepth = 0;

__attribute__( ( weak ) ) unsigned int Ldp::instId( ... ) { return 0; }

namespace Twain {

void SkeinConverter::appendPrintable( std::string_view octets ) { Mendo::appendPrintable( text_, octets ); }

void SkeinConverter::appendHex( void const * data, std::size_t size ) {
   Mendo::appendHex( text_, data, size );
}

void writeLine( Vorn::TraceHandle const & handle, Site const & site, SkeinConverter & line ) {
   alignas( Vorn::TraceHelper ) unsigned char where[sizeof( Vorn::TraceHelper )];
   auto * const helper = Vorn::TraceHelper::createIfEnabled( handle, site.level, where );
   Vorn::EnsureTraceHelperIsDestroyed const ensure( helper );
   if ( !helper ) return;
   helper->textIs( line.takeText() );
   helper->trace( site.file, site.line, site.function );
}

void FunctionTrace::registerFunction( Skein::TraceFile & file, Site const & site, int & msgId,
                                      char const * name,
                                      void ( *describe )( Skein::MsgFormatString & format ) ) noexcept {
   if ( Skein::givenMsgId( msgId ) < 0 ) return;
   Skein::MsgDesc desc( file, &msgId, site.file, site.line, true );
   desc.functionIs( site.function, U8( site.level ) );
   desc << "[";
   desc.format().put( Skein::Item::u16 );
   desc << "]"
        << " " << name;
   describe( desc.format() );
   desc.finish();
}

void FunctionTrace::functionHead( SkeinConverter & line, U16 depth, char const * name ) {
   if ( unsigned int const id = Ldp::instId() ) line << "#" << id << " ";
   line << "[" << depth << "] ";
   line.appendText( name );
}

} // namespace Twain
