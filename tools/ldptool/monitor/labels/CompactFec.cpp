// States of FECs to octets and back.
#include "monitor/labels/CompactFec.h"

#include <cstring>

namespace LdpTool::PrefixLabels {

using namespace Ldp;
using Lumo::MplsLabel;

namespace {

/// Numbers as octets: seven bits each, the least first; the top bit says that more follow.
class Writer {
 public:
   void number( std::uint64_t value ) {
      for ( ; value >= 0x80; value >>= 7 )
         octets_ += char( value | 0x80 );
      octets_ += char( value );
   }
   void time( double value ) {
      char octets[sizeof value];
      std::memcpy( octets, &value, sizeof value );
      octets_.append( octets, sizeof value );
   }
   template< class Collection, class Value >
   void collection( Collection const & members, Value const & value ) {
      std::uint64_t num = 0;
      for ( auto const & member : members )
         (void)member, ++num;
      number( num );
      for ( auto const & member : members )
         value( member );
   }
   std::string const & octets() const { return octets_; }

 private:
   std::string octets_;
};

class Reader {
 public:
   explicit Reader( CompactFec const & compact ) : at_( compact.get() ) {}
   std::uint64_t number() {
      std::uint64_t value = 0;
      for ( unsigned shift = 0;; shift += 7 ) {
         auto const octet = static_cast< unsigned char >( *at_++ );
         value |= std::uint64_t( octet & 0x7f ) << shift;
         if ( octet < 0x80 ) return value;
      }
   }
   U32 number32() { return U32( number() ); }
   double time() {
      double value;
      std::memcpy( &value, at_, sizeof value );
      at_ += sizeof value;
      return value;
   }
   template< class Member >
   void collection( Member const & member ) {
      for ( auto num = number(); num > 0; --num )
         member();
   }

 private:
   char const * at_;
};

} // namespace

CompactFec compact( LdpFecSessionStatus const & state ) {
   Writer out;
   auto const labelStates = [&]( auto const & node ) {
      out.number( node.key().value() );
      out.number( U32( node.value() ) );
   };
   out.collection( state.localLabelStateColl(), labelStates );
   out.collection( state.peerLabelStateColl(), labelStates );
   out.collection( state.withdrawLabelColl(), [&]( auto const & node ) {
      out.number( node.key().value() );
      out.time( node.value() );
   } );
   out.collection( state.msgIdReqMsgColl(), [&]( auto const & node ) { out.number( node.key() ); } );
   out.number( state.localLabelSessionState().value() );
   out.number( state.peerLabelSessionState().value() );
   out.number( state.peerLabelRequestMsgId() );
   out.number( state.peerLabelRequestMsgIdAcked() );
   out.number( state.localLabelRequestMsgId() );
   out.number( state.localLabelRequestMsgIdAcked() );
   out.number( state.localLabelReleaseMsgId() );
   out.number( state.peerNoLabelResourceCount() );
   out.number( U32( state.isNexthopLsr() ) | U32( state.localLabelActivelyReleased() ) << 1 |
               U32( state.flagNoRouteNotification() ) << 2 );
   CompactFec octets( new char[out.octets().size()] );
   std::memcpy( octets.get(), out.octets().data(), out.octets().size() );
   return octets;
}

void expand( CompactFec const & compact, LdpFecSessionStatus & state ) {
   Reader in( compact );
   in.collection( [&] {
      MplsLabel const label( in.number32() );
      state.localLabelStateIs( label, LdpLocalLabelState( in.number() ) );
   } );
   in.collection( [&] {
      MplsLabel const label( in.number32() );
      state.peerLabelStateIs( label, LdpPeerLabelState( in.number() ) );
   } );
   in.collection( [&] {
      MplsLabel const label( in.number32() );
      state.withdrawLabelIs( label, in.time() );
   } );
   in.collection( [&] { state.msgIdReqMsgIs( in.number32(), true ); } );
   LdpLocalLabelSessionState local;
   local.valueIs( in.number32() );
   state.localLabelSessionStateIs( local );
   LdpPeerLabelSessionState peer;
   peer.valueIs( in.number32() );
   state.peerLabelSessionStateIs( peer );
   state.peerLabelRequestMsgIdIs( in.number32() );
   state.peerLabelRequestMsgIdAckedIs( in.number32() );
   state.localLabelRequestMsgIdIs( in.number32() );
   state.localLabelRequestMsgIdAckedIs( in.number32() );
   state.localLabelReleaseMsgIdIs( in.number32() );
   state.peerNoLabelResourceCountIs( in.number32() );
   U32 const flags = in.number32();
   state.isNexthopLsrIs( flags & 1 );
   state.localLabelActivelyReleasedIs( flags & 2 );
   state.flagNoRouteNotificationIs( flags & 4 );
}

bool hasSentOnly( CompactFec const & compact, MplsLabel label ) {
   Reader in( compact );
   return in.number() == 1 && in.number() == label.value() && in.number() == U32( mappingSent );
}

bool hasGotOnly( CompactFec const & compact, MplsLabel label ) {
   Reader in( compact );
   in.collection( [&] { in.number(), in.number(); } );
   return in.number() == 1 && in.number() == label.value() && in.number() == U32( mappingRcvd );
}

void show( SessionEnd & end ) {
   auto const coll = end.agent.status().ldpFecSessionStatusColl();
   for ( auto const & [fec, octets] : end.compactFecs ) {
      LdpFecSessionId const id( fec, end.id );
      auto const state = coll->fecSessionStatusIs( id );
      expand( octets, *state );
      coll->fecSessionStatusBySessionCollIs( end.id )->fecSessionStatusIs( id, state );
   }
}

void hide( SessionEnd & end ) {
   if ( end.compactFecs.empty() ) return;
   auto const coll = end.agent.status().ldpFecSessionStatusColl();
   coll->fecSessionStatusBySessionCollDel( end.id );
   for ( auto const & [fec, octets] : end.compactFecs )
      coll->fecSessionStatusDel( LdpFecSessionId( fec, end.id ) );
}

} // namespace LdpTool::PrefixLabels
