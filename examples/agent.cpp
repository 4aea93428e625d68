// The passive end of one session, as an agent on a router has it (RFC 5036, 2.5): it opens the session that a
// peer asks for, keeps it alive, holds the labels that it is given and answers withdrawals. What it knows
// stands in the model, and who acts on it observes that.
//
//    agent LDP-IDENTIFIER     speaks on the connection that is its standard input, as from
//                             socat TCP-LISTEN:646,reuseaddr EXEC:"agent 10.0.0.1:0",nofork

#include "Ldp/LdpFecSession.h"
#include "Ldp/LdpPduStream.h"
#include "Ldp/LdpStatus.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <map>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace {

using namespace Ldp;

double now() {
   return std::chrono::duration< double >( std::chrono::steady_clock::now().time_since_epoch() ).count();
}

template< class Id >
void say( Id const & who, Vorn::String const & what ) {
   std::fprintf( stderr, "%s: %s\n", who.stringValue().charPtr(), what.charPtr() );
}

/// A message in a PDU of its own. The library has no encoder: its views over octets write as they read.
class Outgoing {
 public:
   Outgoing( LdpIdentifier const & sender, LdpMsgType type, U32 id )
        : octets_( sizeof( LdpPduHdr ) + sizeof( LdpMsgHdr ) ) {
      pdu().versionNboIs( Lumo::NetU16( 1 ) );
      pdu().ldpIdentifierIs( sender );
      msg().typeIs( type );
      msg().msgIdNboIs( Lumo::NetU32( id ) );
   }
   template< class Tlv >
   void add( LdpTlvType type, Tlv tlv ) {
      tlv.typeIs( type );
      tlv.lengthNboIs( Lumo::NetU16( sizeof tlv - LdpTlvHdr::tlvHdrSizeExclude ) );
      add( reinterpret_cast< U8 const * >( &tlv ), sizeof tlv );
   }
   void add( U8 const * tlvs, std::size_t bytes ) { octets_.insert( octets_.end(), tlvs, tlvs + bytes ); }
   /// False where they do not go out at once. A real agent queues them.
   bool sentTo( int socket ) {
      pdu().lengthNboIs( Lumo::NetU16( U16( octets_.size() - LdpPduHdr::pduHdrSizeExclude ) ) );
      msg().lengthNboIs(
           Lumo::NetU16( U16( octets_.size() - sizeof( LdpPduHdr ) - LdpMsgHdr::msgHdrSizeExclude ) ) );
      return send( socket, octets_.data(), octets_.size(), MSG_NOSIGNAL | MSG_DONTWAIT ) ==
             ssize_t( octets_.size() );
   }

 private:
   LdpPduHdr & pdu() { return *reinterpret_cast< LdpPduHdr * >( octets_.data() ); }
   LdpMsgHdr & msg() { return *reinterpret_cast< LdpMsgHdr * >( octets_.data() + sizeof( LdpPduHdr ) ); }

   std::vector< U8 > octets_;
};

template< class Observer >
Vorn::Ptr< Observer > observe( Vorn::PtrInterface const & object ) {
   auto const observer = Vorn::newObject< Observer >();
   observer->notifierIs( Vorn::Ptr< Vorn::PtrInterface const >( &object ) );
   observer->isWeakReferenceIs( true ); // it goes with what it observes
   observer->isRegisteredNotifieeIs( true );
   return observer;
}

/// Told of the labels of one FEC.
class LabelObserver : public LdpFecSessionStatus::NotifieeConst {
   void onPeerLabelState( Lumo::MplsLabel label ) override {
      auto const & fec = static_cast< LdpFecSessionStatus const & >( *notifier() );
      if ( fec.peerLabelStateHas( label ) )
         say( fec.ldpFecSessionId(), Vorn::format( "label %u", label.value() ) );
   }
};

/// Told of FECs that come and go, as a forwarding plane would be, with an observer for each.
class LabelsObserver : public LdpFecSessionStatusColl::NotifieeConst {
   void onFecSessionStatus( LdpFecSessionId const & id ) override {
      auto const fec = static_cast< LdpFecSessionStatusColl const & >( *notifier() ).fecSessionStatus( id );
      if ( fec ) {
         observers_[id] = observe< LabelObserver >( *fec );
      } else {
         observers_.erase( id );
         say( id, "no label" );
      }
   }
   std::map< LdpFecSessionId, Vorn::Ptr< LabelObserver > > observers_;
};

/// Told of the state of a session.
class SessionObserver : public LdpSessionStatus::NotifieeConst {
   void onLdpSessionState() override {
      auto const & session = static_cast< LdpSessionStatus const & >( *notifier() );
      say( session.ldpSessionId(),
           valueToStrep( session.sessionState() ) + ", " + valueToStrep( session.code() ) );
   }
};

class Session {
 public:
   Session( int socket, LdpIdentifier const & self, Vorn::Ptr< Status > const & vrf )
        : socket_( socket ), self_( self ), sessions_( vrf->ldpSessionStatusCollIs( "sessions" ) ),
          labels_( vrf->ldpFecSessionStatusCollIs( "labels" ) ),
          labelsObserver_( observe< LabelsObserver >( *labels_ ) ) {}

   /// Until the connection or the session ends.
   void run() {
      for ( pollfd fd{ socket_, POLLIN, 0 }; !ended_; ) {
         double const wait = std::min( expires_, keepAliveDue_ ) - now();
         if ( poll( &fd, 1, int( std::max( 0.0, wait ) * 1000 ) + 1 ) && !read() )
            return end( tcpConnectionClosed );
         if ( now() >= expires_ ) return refuse( keepAliveExpired );
         if ( now() >= keepAliveDue_ ) sendKeepAlive();
      }
   }

 private:
   static constexpr U32 mostFecs = 100000; // the peer chooses how many it sends

   bool read() {
      U8 buffer[4096];
      auto const bytes = recv( socket_, buffer, sizeof buffer, 0 );
      if ( bytes <= 0 ) return false;
      std::span< U8 const > octets( buffer, std::size_t( bytes ) );
      while ( auto const pdu = stream_.next( octets ) ) {
         if ( !pdu.valid() ) refuse( pdu.statusCode() );
         for ( U32 i = 0; i < pdu.messageNum() && !ended_; ++i )
            onMessage( pdu, *pdu.message( i ) );
         if ( ended_ ) break;
      }
      return true;
   }

   void onMessage( LdpPdu const & pdu, LdpMsgParser const & msg ) {
      expires_ = now() + keepAliveTime_;
      if ( msg.statusCode() == unknownMessageTypeIgnore ) return;
      if ( !msg.validMsg() ) return refuse( msg.statusCode(), &msg );
      auto const type = msg.type();
      auto const state = status_ ? status_->sessionState() : stateInitialized;
      if ( status_ && pdu.ldpIdentifier() != status_->ldpSessionId().peerLdpId() ) return refuse( badLdpId );
      if ( type == LdpNotification ) {
         if ( msg.msgStatusTlv()->statusError() ) end( msg.msgStatusTlv()->statusData() );
         return;
      }
      if ( state == stateInitialized && type == LdpInit )
         return onInit( pdu.ldpIdentifier(), static_cast< LdpInitMsgParser const & >( msg ) );
      if ( state == stateOpenRecv && type == LdpKeepAlive ) return stateIs( stateOperational, success );
      if ( state != stateOperational || type == LdpInit ) return refuse( Ldp::shutdown, &msg );
      if ( type == LdpLabelMapping ) onMapping( static_cast< LdpLabelMappingMsgParser const & >( msg ) );
      if ( type == LdpLabelWithdraw ) onWithdraw( static_cast< LdpLabelWithdrawMsgParser const & >( msg ) );
   }

   /// RFC 5036, 2.5.4: what the passive end does in state INITIALIZED.
   void onInit( LdpIdentifier const & peer, LdpInitMsgParser const & init ) {
      auto const & proposed = *init.msgSessionParamTlv();
      status_ = sessions_->sessionStatusIs( LdpSessionId( peer ) );
      sessionObserver_ = observe< SessionObserver >( *status_ );
      stateIs( stateInitialized, success );
      if ( proposed.recvLdpIdentifier() != self_ ) return refuse( rejectNoHello, &init );
      status_->peerKeepAliveTimeIs( proposed.keepAliveTime() );
      keepAliveTime_ = std::min( status_->operKeepAliveTime(), proposed.keepAliveTime() );
      status_->operKeepAliveTimeIs( keepAliveTime_ );

      LdpCommonSessionParamTlv ours;
      ours.protocolVersionIs( 1 );
      ours.keepAliveTimeIs( keepAliveTime_ );
      ours.maxPduLengthIs( LdpProtoParam::defaultMaxPduLength() );
      ours.recvLdpIdentifierIs( peer );
      Outgoing message( self_, LdpInit, ++lastId_ );
      message.add( commonSessionParamTlv, ours );
      dispatch( message );
      sendKeepAlive();
      stateIs( stateOpenRecv, success );
   }

   LdpFecSessionId idOf( LdpFecTlvElement const & fec ) const {
      return { fec.fwdEqvCls(), status_->ldpSessionId() };
   }

   void onMapping( LdpLabelMappingMsgParser const & mapping ) {
      auto const & fecs = *mapping.ldpFecTlvParser();
      auto const label = mapping.msgGenLabelTlv()->label();
      for ( U32 i = 0; i < fecs.fecElements(); ++i ) {
         if ( labels_->fecSessionStatuss() == mostFecs ) return refuse( internalError, &mapping );
         auto const fec = labels_->fecSessionStatusIs( idOf( *fecs.fecElement( i ) ) );
         fec->peerLabelStateIs( label, mappingRcvd );
         for ( auto const & node : fec->peerLabelStateColl() ) // it takes another's place (RFC 5036, A.1.2)
            if ( node.key() != label ) fec->peerLabelStateDel( node.key() );
      }
   }

   /// Releases labels with the TLVs that withdrew them (RFC 5036, 3.5.10.1).
   void onWithdraw( LdpLabelWithdrawMsgParser const & withdraw ) {
      auto const & fecs = *withdraw.ldpFecTlvParser();
      for ( U32 i = 0; i < fecs.fecElements(); ++i ) {
         auto const & element = *fecs.fecElement( i );
         if ( element.type() == wildcardElement )
            labels_->fecSessionStatusDelAll();
         else
            labels_->fecSessionStatusDel( idOf( element ) );
      }
      Outgoing release( self_, LdpLabelRelease, ++lastId_ );
      release.add( withdraw.pkt()->front() + withdraw.offset() + LdpMsgHdr::ldpMsgHdrSize,
                   withdraw.length() + LdpMsgHdr::msgHdrSizeExclude - LdpMsgHdr::ldpMsgHdrSize );
      dispatch( release );
   }

   void sendKeepAlive() {
      Outgoing message( self_, LdpKeepAlive, ++lastId_ );
      dispatch( message );
      keepAliveDue_ = now() + keepAliveTime_ / 3.0;
   }

   /// Tells the peer what is wrong; if that is fatal, the session ends (RFC 5036, 3.5.1).
   void refuse( LdpStatusCode code, LdpMsgParser const * msg = nullptr ) {
      bool const fatal = statusCodeEBitForStatusCode( code );
      LdpStatusTlv status;
      status.statusDataIs( code );
      status.statusErrorIs( fatal );
      if ( msg ) status.msgIdIs( msg->msgId() ), status.msgTypeIs( msg->type() );
      Outgoing message( self_, LdpNotification, ++lastId_ );
      message.add( statusTlv, status );
      dispatch( message );
      if ( fatal ) end( code );
   }

   void dispatch( Outgoing & message ) {
      if ( !message.sentTo( socket_ ) ) end( tcpConnectionClosed );
   }
   void end( LdpStatusCode code ) {
      if ( std::exchange( ended_, true ) || !status_ ) return;
      labels_->fecSessionStatusDelAll();
      stateIs( stateNonExist, code );
   }
   void stateIs( SessionState state, LdpStatusCode code ) {
      status_->ldpSessionStateIs( LdpSessionState( state, code ) );
   }

   int const socket_;
   LdpIdentifier const self_;
   Vorn::Ptr< LdpSessionStatusColl > const sessions_;
   Vorn::Ptr< LdpFecSessionStatusColl > const labels_;
   Vorn::Ptr< LabelsObserver > const labelsObserver_;
   Vorn::Ptr< LdpSessionStatus > status_; // null until the peer's Initialization
   Vorn::Ptr< SessionObserver > sessionObserver_;
   LdpPduStream stream_;
   U32 lastId_ = 0;
   U16 keepAliveTime_ = 30;
   double expires_ = now() + keepAliveTime_, keepAliveDue_ = expires_;
   bool ended_ = false;
};

} // namespace

int main( int argc, char ** argv ) {
   LdpIdentifier self;
   try {
      strepToValue( Vorn::String( argc == 2 ? argv[1] : "" ), &self );
   } catch ( std::exception const & ) {
      std::fprintf( stderr, "usage: agent LDP-IDENTIFIER, with a connection as standard input\n" );
      return 2;
   }
   auto const vrf = statusFactory( L3::VrfName( "default" ) );
   Session( STDIN_FILENO, self, vrf ).run();
}
