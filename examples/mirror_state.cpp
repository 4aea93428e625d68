#include <Ldp/LdpStatus.h>
#include <Vorn/NboAttrLog.h>

#include <cstdio>

using namespace Ldp;

/// Told of the state of a session, here or in a copy of it.
class SessionObserver : public LdpSessionStatus::NotifieeConst {
   void onLdpSessionState() override {
      auto const & session = static_cast< LdpSessionStatus const & >( *notifier() );
      std::printf( "session with %s: %s\n", session.ldpSessionId().stringValue().charPtr(),
                   valueToStrep( session.sessionState() ).charPtr() );
   }
};

int main() {
   // The agent keeps a VRF's state, and ties it to an attribute log.
   auto const vrf = statusFactory( L3::VrfName( "default" ) );
   auto const log = Vorn::newObject< Vorn::NboAttrLog::Out >();
   vrf->vornNboAttrLogSaIs( 0, 0, log );

   // Another process keeps a copy, from the log's octets alone: here they go by hand, else by a socket.
   auto const copy = statusFactory( L3::VrfName( "default" ) );
   auto const demuxer =
        Vorn::newObject< Vorn::NboAttrLog::Demuxer >( Vorn::newObject< Vorn::NboAttrLog::Out >() );
   demuxer->rootIs( copy );
   auto const carry = [&] {
      while ( auto const bytes = log->bytes() ) {
         demuxer->bytesIs( log->data(), bytes );
         log->drained( bytes );
      }
   };

   LdpSessionId const id( LdpIdentifier( 0x0aff0002, 0 ) ); // 10.255.0.2:0
   auto const session = vrf->ldpSessionStatusCollIs( "sessions" )->sessionStatusIs( id );
   carry();

   auto const observer = Vorn::newObject< SessionObserver >();
   observer->isRegisteredNotifieeIs( true );
   observer->notifierIs( copy->ldpSessionStatusColl()->sessionStatus( id ) );
   session->ldpSessionStateIs( LdpSessionState( stateOpenSent, success ) );
   session->ldpSessionStateIs( LdpSessionState( stateOperational, success ) );
   session->ldpSessionStateIs( LdpSessionState( stateOperational, success ) ); // equal: nobody is told
   carry();
}
