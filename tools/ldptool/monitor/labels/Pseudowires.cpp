// What label and status messages say of pseudowires.
#include "monitor/labels/Pseudowires.h"

#include <vector>

namespace LdpTool::Pseudowires {

using namespace Ldp;
using Lumo::MplsLabel;

namespace {

using Id = PwFecSessionId;
using Key = Pseudowire::PseudowireLdpRequestKey;
using Config = Vorn::Ptr< PwFecSessionConfig >;

/// One direction of the pseudowires of a session, as one end has it: what the speaker itself signals, or what
/// its peer does.
struct Local {
   static auto configs( Status & status ) { return status.localPwFecSessionConfigColl(); }
   static auto statuses( Status & status ) { return status.localPwFecSessionStatusColl(); }
   static auto & use( SessionEnd & end ) { return end.pwLocal; }
   static void refer( PwFecSessionInfoMap & all, Config const & config,
                      Vorn::Ptr< LocalPwFecSessionStatus > const & status ) {
      all.localConfigIs( config );
      all.localStatusIs( status );
   }
   static void letGo( PwFecSessionInfoMap & all, Id const & id ) {
      all.localConfigDel( id );
      all.localStatusDel( id );
   }
};
struct Remote {
   static auto configs( Status & status ) { return status.remotePwFecSessionConfigColl(); }
   static auto statuses( Status & status ) { return status.remotePwFecSessionStatusColl(); }
   static auto & use( SessionEnd & end ) { return end.pwRemote; }
   static void refer( PwFecSessionInfoMap & all, Config const & config,
                      Vorn::Ptr< RemotePwFecSessionStatus > const & status ) {
      all.remoteConfigIs( config );
      all.remoteStatusIs( status );
   }
   static void letGo( PwFecSessionInfoMap & all, Id const & id ) {
      all.remoteConfigDel( id );
      all.remoteStatusDel( id );
   }
};

Key keyOf( SessionEnd const & end, Pseudowire::PseudowireId pwId ) {
   return Key( end.status->peerIpAddr(), pwId );
}

/// What has come of the request, once both directions are signalled: the status TLV only if both send it, a
/// control word only if both want one (RFC 8077, 6.3.3 and 7.2).
void negotiate( SessionEnd & end, Key const & key ) {
   auto const all = end.agent.status().index()->pwKeyToPwFecSessionInfo( key );
   if ( !all || all->localConfigs() == 0 || all->remoteConfigs() == 0 ) return;
   auto const own = ( *all->localConfigColl().begin() ).value();
   auto const peer = ( *all->remoteConfigColl().begin() ).value();
   auto const status = end.agent.status().pwStatusColl()->statusIs( key );
   bool const tlv = own->pwStatusMethod() == pwStatusMethodTlv && peer->pwStatusMethod() == pwStatusMethodTlv;
   status->pwStatusMethodIs( tlv ? pwStatusMethodTlv : pwStatusMethodWithdraw );
   status->negotiatedControlWordIs( own->preferControlWord() && peer->preferControlWord() );
}

template< class Direction >
void drop( SessionEnd & end, Id const & id ) {
   Direction::use( end ).drop( id );
   Status & status = end.agent.status();
   auto const index = status.index();
   Key const key = keyOf( end, id.pwFwdEqvClass().pwId() );
   if ( auto const all = index->pwKeyToPwFecSessionInfo( key ) ) {
      Direction::letGo( *all, id );
      if ( all->localConfigs() == 0 ) status.pwConfigColl()->configDel( key );
      if ( all->localConfigs() == 0 || all->remoteConfigs() == 0 ) status.pwStatusColl()->statusDel( key );
      if ( all->localConfigs() == 0 && all->remoteConfigs() == 0 ) {
         index->pwKeyToPwFecSessionInfoDel( key );
         if ( auto const requests = index->peerToPwRequest( key.neighbor() ) ) {
            requests->requestDel( key );
            if ( requests->requests() == 0 ) index->peerToPwRequestDel( key.neighbor() );
         }
      }
   }
   Direction::statuses( status )->fecSessionStatusDel( id );
   Direction::configs( status )->fecSessionConfigDel( id );
}

/// The ids of the session's pseudowires that a message names: by PW ID and type, whose C bit routers leave
/// out of anything but a mapping, or by group and type.
template< class Direction >
std::vector< Id > named( SessionEnd & end, PwFwdEqvClassInfo const & fec ) {
   std::vector< Id > ids;
   auto const configs = Direction::configs( end.agent.status() );
   PwFwdEqvClass const & wanted = fec.fwdEqvClass();
   if ( wanted.pwId() != Pseudowire::PseudowireId() ) {
      for ( bool controlWord : { false, true } ) {
         Id const id( PwFwdEqvClass( wanted.pwId(), wanted.pwType(), controlWord ), end.id );
         if ( configs->fecSessionConfig( id ) ) ids.push_back( id );
      }
      return ids;
   }
   for ( Id const & id : Direction::use( end ).present )
      if ( id.pwFwdEqvClass().pwType() == wanted.pwType() &&
           configs->fecSessionConfig( id )->fecParams().groupId() == fec.groupId() )
         ids.push_back( id );
   return ids;
}

/// What stands for all pseudowires of that group and type.
template< class Group >
U64 groupOf( PwFwdEqvClass const & fec, Group const & group ) {
   return U64( fec.pwTypeValue() ) << 32 | group.value();
}
template< class Group >
U64 groupOf( Id const & id, Group const & group ) {
   return groupOf( id.pwFwdEqvClass(), group );
}

/// The pseudowires that a withdraw or release is about, each of which a group or wildcard finds once.
template< class Direction >
std::vector< Id > concerned( SessionEnd & end, LdpMsgType type, AnyLabel label,
                             std::optional< U64 > group = {} ) {
   auto & use = Direction::use( end );
   return type == LdpLabelRelease ? use.release.take( label, group ) : use.withdraw.take( label, group );
}
template< class Direction >
std::vector< Id > concerned( SessionEnd & end, LdpMsgType type, AnyLabel label,
                             PwFwdEqvClassInfo const & fec ) {
   bool const one = fec.pwId() != Pseudowire::PseudowireId();
   bool const takesBack = type == LdpLabelWithdraw || type == LdpLabelRelease;
   return one || !takesBack
               ? named< Direction >( end, fec )
               : concerned< Direction >( end, type, label, groupOf( fec.fwdEqvClass(), fec.groupId() ) );
}

/// What a mapping says, written into the config and status of one direction at one end.
template< class Direction >
auto mapped( SessionEnd & end, PwFwdEqvClassInfo const & fec, MplsLabel label, LdpPwStatusTlv const * tlv ) {
   Id const id( fec.fwdEqvClass(), end.id );
   for ( Id const & known : named< Direction >( end, fec ) )
      if ( !( known == id ) ) drop< Direction >( end, known ); // the other C bit, which is given up
   Status & model = end.agent.status();
   auto const config = Direction::configs( model )->fecSessionConfigIs( id, pwFecMemberSessionSm );
   config->fecParamsIs( fec.params() );
   config->labelIs( label );
   config->pwStatusMethodIs( tlv ? pwStatusMethodTlv : pwStatusMethodWithdraw );
   config->pwStatusFlagsIs( tlv ? tlv->pwStatusField().flags() : Pseudowire::PseudowireLdpStatusFlags() );
   config->preferControlWordIs( fec.fwdEqvClass().controlWord() );
   auto const status = Direction::statuses( model )->fecSessionStatusIs( id );
   Key const key = keyOf( end, fec.pwId() );
   auto const all = model.index()->pwKeyToPwFecSessionInfoIs( key );
   all->ldpRequestIs( key, true );
   Direction::refer( *all, config, status );
   Direction::use( end ).add( id, label, groupOf( id, fec.groupId() ) );
   model.index()->peerToPwRequestIs( key.neighbor() )->requestIs( key, true );
   return status;
}

Pseudowire::PseudowireConnectorStatus connectorOf( Pseudowire::PseudowireLdpStatusFlags const & flags ) {
   return flags.value() == 0 ? Pseudowire::pwConnectorUp : Pseudowire::pwConnectorDown;
}

/// The speaker's own status has changed.
void statusIs( SessionEnd & end, Id const & id, Pseudowire::PseudowireLdpStatusFlags const & flags ) {
   Status & model = end.agent.status();
   Local::configs( model )->fecSessionConfig( id )->pwStatusFlagsIs( flags );
   auto const request = model.pwConfigColl()->config( keyOf( end, id.pwFwdEqvClass().pwId() ) );
   if ( request ) request->statusIs( connectorOf( flags ) );
}

/// The request that must stand behind what the speaker signals.
void requestIs( SessionEnd & end, PwFwdEqvClassInfo const & fec, MplsLabel label,
                LdpPwStatusTlv const * tlv ) {
   Status & model = end.agent.status();
   Key const key = keyOf( end, fec.pwId() );
   auto const requests = model.pwConfigColl();
   auto const known = requests->config( key );
   if ( known && known->pwType() != fec.fwdEqvClass().pwType() ) requests->configDel( key );
   auto const request = requests->configIs( key, fec.fwdEqvClass().pwType() );
   request->groupIdIs( fec.groupId() );
   request->localLabelIs( label );
   request->preferControlWordIs( fec.fwdEqvClass().controlWord() );
   request->mtuIs( fec.params().mtu() );
   request->statusIs( !tlv                                  ? Pseudowire::pwConnectorUnknown
                      : tlv->pwStatusField().pwForwarding() ? Pseudowire::pwConnectorUp
                                                            : Pseudowire::pwConnectorDown );
   auto const target = model.ldpTargetConfigColl()->adjTargetConfig( key.neighbor().ipAddr() );
   if ( target ) target->targetMembershipIs( targetMemberPw, true );
}

bool hasRoom( SessionEnd & end, PwFwdEqvClassInfo const & fec ) {
   return end.pwLocal.present.size() < end.agent.limits().fecs ||
          end.pwLocal.present.contains( Id( fec.fwdEqvClass(), end.id ) );
}

void onMapping( Exchange const & exchange, PwFwdEqvClassInfo const & fec, MplsLabel label ) {
   if ( fec.pwId() == Pseudowire::PseudowireId() ) return; // a mapping names one pseudowire
   if ( !hasRoom( exchange.sender, fec ) ) {
      ++exchange.sender.agent.turnedAway().fecs;
      return;
   }
   auto const * tlv = static_cast< LdpLabelMappingMsgParser const & >( exchange.message ).msgPwStatusTlv();
   auto const local = mapped< Local >( exchange.sender, fec, label, tlv );
   requestIs( exchange.sender, fec, label, tlv );
   // A label that was withdrawn before is still to be released, if it is not this one.
   if ( local->labelWithdrawOutstanding() == label ) local->labelWithdrawOutstandingIs( MplsLabel() );
   local->mappingActiveIs( true );
   local->fecSessionStateIs( pwFecSessionActive );
   local->labelMappingSentIs( label );
   auto localWord = local->labelSessionState();
   localWord.localLabelSessionMembershipIs( true );
   localWord.localMappingSentIs( true );
   localWord.peerReqMsgOutstandingIs( false );
   localWord.peerReleaseOutstandingIs( local->labelWithdrawOutstanding() != MplsLabel() );
   local->labelSessionStateIs( localWord );

   auto const remote = mapped< Remote >( exchange.receiver, fec, label, tlv );
   remote->fecSessionStateIs( pwFecSessionActive );
   for ( MplsLabel each : sortedKeys( remote->mplsLabelSet()->mplsLabelColl() ) )
      remote->mplsLabelSet()->mplsLabelDel( each );
   remote->mplsLabelSet()->mplsLabelIs( label, true );
   remote->mplsReleaseLabelSet()->mplsLabelDel( label );
   remote->peerPwStatusMethodIs( tlv ? pwStatusMethodTlv : pwStatusMethodWithdraw );
   remote->pwStatusFlagsIs( tlv ? tlv->pwStatusField().flags() : Pseudowire::PseudowireLdpStatusFlags() );
   remote->lastMsgTypeWithdrawIs( false );
   auto remoteWord = remote->labelSessionState();
   remoteWord.peerLabelSessionMembershipIs( true );
   remoteWord.peerLabelMappingCachedIs( true );
   remoteWord.peerLabelWithdrawMsgRcvdIs( false );
   remoteWord.peerLabelReleaseMsgOutstandingIs( remote->mplsReleaseLabelSet()->mplsLabels() != 0 );
   remote->labelSessionStateIs( remoteWord );
   negotiate( exchange.sender, keyOf( exchange.sender, fec.pwId() ) );
   negotiate( exchange.receiver, keyOf( exchange.receiver, fec.pwId() ) );
}

/// The speaker takes its label back; the pseudowire stays until the peer has released it.
void withdrawSent( SessionEnd & end, Id const & id, AnyLabel label ) {
   auto const local = Local::statuses( end.agent.status() )->fecSessionStatus( id );
   if ( !local->mappingActive() || !names( label, local->labelMappingSent() ) ) return;
   local->mappingActiveIs( false );
   local->labelWithdrawOutstandingIs( local->labelMappingSent() );
   auto word = local->labelSessionState();
   word.localMappingSentIs( false );
   word.peerReleaseOutstandingIs( true );
   local->labelSessionStateIs( word );
}

void withdrawRcvd( SessionEnd & end, Id const & id, AnyLabel label, U32 msgId ) {
   auto const remote = Remote::statuses( end.agent.status() )->fecSessionStatus( id );
   MplsLabel const mapped = Remote::configs( end.agent.status() )->fecSessionConfig( id )->label();
   if ( !remote->labelSessionState().peerLabelMappingCached() || !names( label, mapped ) ) return;
   remote->labelWithdrawMsgIdIs( msgId );
   remote->labelWithdrawLabelIs( mapped );
   remote->lastMsgTypeWithdrawIs( true );
   remote->mplsLabelSet()->mplsLabelDel( mapped );
   remote->mplsReleaseLabelSet()->mplsLabelIs( mapped, true );
   auto word = remote->labelSessionState();
   word.peerLabelMappingCachedIs( false );
   word.peerLabelWithdrawMsgRcvdIs( true );
   word.peerLabelReleaseMsgOutstandingIs( true );
   remote->labelSessionStateIs( word );
}

/// A release ends the pseudowire at that end, if it is about the label in force; one of a label before it
/// ends what was outstanding.
void releaseRcvd( SessionEnd & end, Id const & id, AnyLabel label ) {
   auto const local = Local::statuses( end.agent.status() )->fecSessionStatus( id );
   MplsLabel const before = local->labelWithdrawOutstanding();
   bool const ofBefore = before != MplsLabel() && names( label, before );
   if ( names( label, local->labelMappingSent() ) && !( local->mappingActive() && ofBefore && !label ) ) {
      drop< Local >( end, id );
   } else if ( ofBefore ) {
      local->labelWithdrawOutstandingIs( MplsLabel() );
      auto word = local->labelSessionState();
      word.peerReleaseOutstandingIs( false );
      local->labelSessionStateIs( word );
   }
}

void releaseSent( SessionEnd & end, Id const & id, AnyLabel label ) {
   auto const remote = Remote::statuses( end.agent.status() )->fecSessionStatus( id );
   auto const before = remote->mplsReleaseLabelSet();
   bool const ofBefore = label ? before->mplsLabel( *label ) : before->mplsLabels() != 0;
   bool const inForce = remote->labelSessionState().peerLabelMappingCached();
   MplsLabel const present = Remote::configs( end.agent.status() )->fecSessionConfig( id )->label();
   if ( inForce ? names( label, present ) && ( label || !ofBefore ) : ofBefore || names( label, present ) ) {
      drop< Remote >( end, id );
   } else if ( ofBefore ) {
      for ( MplsLabel each : sortedKeys( before->mplsLabelColl() ) )
         if ( names( label, each ) ) before->mplsLabelDel( each );
      auto word = remote->labelSessionState();
      word.peerLabelReleaseMsgOutstandingIs( before->mplsLabels() != 0 );
      remote->labelSessionStateIs( word );
   }
}

template< class Direction >
void count( SessionEnd & end, std::vector< Id > const & ids, LdpMsgType type, bool sent ) {
   for ( Id const & id : ids ) {
      auto const status = Direction::statuses( end.agent.status() )->fecSessionStatus( id );
      sent ? status->ldpMsgTxInc( type, 1 ) : status->ldpMsgRxInc( type, 1 );
   }
}

/// What the message has left in force waits for the next one.
template< class Direction, class InForce >
void waitAgain( SessionEnd & end, Waiting< Id > & waiting, std::vector< Id > const & ids,
                InForce const & inForce ) {
   for ( Id const & id : ids ) {
      auto const config = Direction::configs( end.agent.status() )->fecSessionConfig( id );
      if ( !config || !inForce( *Direction::statuses( end.agent.status() )->fecSessionStatus( id ) ) )
         continue;
      waiting.add( id, config->label(), groupOf( id, config->fecParams().groupId() ) );
   }
}

/// A withdraw is about what its sender has signalled, a release about what its receiver has.
void onWithdraw( Exchange const & exchange, std::vector< Id > const & local, std::vector< Id > const & remote,
                 AnyLabel label ) {
   for ( Id const & id : local )
      withdrawSent( exchange.sender, id, label );
   for ( Id const & id : remote )
      withdrawRcvd( exchange.receiver, id, label, exchange.message.msgId() );
   waitAgain< Local >( exchange.sender, exchange.sender.pwLocal.withdraw, local,
                       []( auto const & status ) { return status.mappingActive(); } );
   waitAgain< Remote >(
        exchange.receiver, exchange.receiver.pwRemote.withdraw, remote,
        []( auto const & status ) { return status.labelSessionState().peerLabelMappingCached(); } );
}
void onRelease( Exchange const & exchange, std::vector< Id > const & local, std::vector< Id > const & remote,
                AnyLabel label ) {
   for ( Id const & id : local )
      releaseRcvd( exchange.receiver, id, label );
   for ( Id const & id : remote )
      releaseSent( exchange.sender, id, label );
   auto const any = []( auto const & ) { return true; };
   waitAgain< Local >( exchange.receiver, exchange.receiver.pwLocal.release, local, any );
   waitAgain< Remote >( exchange.sender, exchange.sender.pwRemote.release, remote, any );
}

} // namespace

void onMessage( Exchange const & exchange, PwFwdEqvClassInfo const & fec, AnyLabel label ) {
   auto & [sender, receiver, message, now] = exchange;
   LdpMsgType const type = message.type();
   if ( type == LdpLabelMapping ) onMapping( exchange, fec, *label );
   // The direction that the message is about: its sender's own, but its receiver's if it is asked for or
   // released.
   bool const backward = type != LdpLabelMapping && type != LdpLabelWithdraw;
   auto const local = concerned< Local >( backward ? receiver : sender, type, label, fec );
   auto const remote = concerned< Remote >( backward ? sender : receiver, type, label, fec );
   count< Local >( backward ? receiver : sender, local, type, !backward );
   count< Remote >( backward ? sender : receiver, remote, type, backward );
   if ( type == LdpLabelWithdraw ) onWithdraw( exchange, local, remote, label );
   if ( type == LdpLabelRelease ) onRelease( exchange, local, remote, label );
   if ( type == LdpLabelRequest ) {
      for ( Id const & id : local )
         Local::statuses( receiver.agent.status() )
              ->fecSessionStatus( id )
              ->labelRequestMsgIdIs( message.msgId() );
   }
}

void onWildcard( Exchange const & exchange, AnyLabel label ) {
   if ( exchange.message.type() == LdpLabelWithdraw ) {
      onWithdraw( exchange, concerned< Local >( exchange.sender, LdpLabelWithdraw, label ),
                  concerned< Remote >( exchange.receiver, LdpLabelWithdraw, label ), label );
   } else {
      onRelease( exchange, concerned< Local >( exchange.receiver, LdpLabelRelease, label ),
                 concerned< Remote >( exchange.sender, LdpLabelRelease, label ), label );
   }
}

void onNotification( Exchange const & exchange, LdpNotificationMsgParser const & notification ) {
   auto const flags = notification.msgPwStatusTlv()->pwStatusField().flags();
   auto const & fecs = *notification.ldpFecTlvParser();
   for ( U32 i = 0; i < fecs.fecElements(); ++i ) {
      auto const element = fecs.fecElement( i );
      if ( element->type() != pwIdElement ) continue;
      auto const & fec = element->pwFwdEqvCls();
      for ( Id const & id : named< Local >( exchange.sender, fec ) )
         statusIs( exchange.sender, id, flags );
      for ( Id const & id : named< Remote >( exchange.receiver, fec ) ) {
         Status & model = exchange.receiver.agent.status();
         Remote::configs( model )->fecSessionConfig( id )->pwStatusFlagsIs( flags );
         Remote::statuses( model )->fecSessionStatus( id )->pwStatusFlagsIs( flags );
      }
   }
}

void forget( SessionEnd & end, bool keepsPeerLabels ) {
   for ( Id const & id : std::set( end.pwLocal.present ) )
      drop< Local >( end, id );
   for ( Id const & id : std::set( end.pwRemote.present ) ) {
      auto const status = Remote::statuses( end.agent.status() )->fecSessionStatus( id );
      if ( keepsPeerLabels && status->labelSessionState().peerLabelMappingCached() ) {
         end.pwRemote.stale.insert( id );
      } else {
         drop< Remote >( end, id );
      }
   }
   end.pwRemote.withdraw.clear();
   end.pwRemote.release.clear();
}

void forgetStale( SessionEnd & end ) {
   for ( Id const & id : std::set( end.pwRemote.stale ) )
      drop< Remote >( end, id );
}

} // namespace LdpTool::Pseudowires
