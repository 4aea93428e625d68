/// \file
/// The root of a VRF's run-time state: every other type of the model hangs below `Status`, which owns it.
#pragma once

#include "Ldp/LdpFec.h"
#include "Ldp/LdpFecSession.h"
#include "Ldp/LdpGr.h"
#include "Ldp/LdpIndex.h"
#include "Ldp/LdpLink.h"
#include "Ldp/LdpP2mpFec.h"
#include "Ldp/LdpP2mpFecSessionLocalState.h"
#include "Ldp/LdpP2mpFecSessionRemoteState.h"
#include "Ldp/LdpP2mpOpaqueTable.h"
#include "Ldp/LdpPeer.h"
#include "Ldp/LdpSessionStatistics.h"
#include "Ldp/LdpTarget.h"
#include "Ldp/LdpTargetServer.h"
#include "Ldp/LdpTcpConn.h"
#include "Ldp/LdpTcpServer.h"
#include "Lumo/NamespaceName.h"

namespace Ldp {

/// Prefix of the names of network namespaces, for those who link against this library; `ldpConfigNsPrefix` is
/// the same for users of the configuration.
VORN_API extern Vorn::String const ldpStatusNsPrefix;

/// How often the agent has started.
class VORN_API LdpAgentStatus : public Vorn::Entity {
   VORN_ENTITY( LdpAgentStatus, Vorn::Entity )

 public:
   explicit LdpAgentStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// How often the agent has started.
   VORN_MUTABLE( 0x102, U32, numStartups, NumStartups, replicated ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpAgentStatus, ldpAgentStatusFactory )

/// Counters of a VRF.
class VORN_API Statistics : public Vorn::Entity {
   VORN_ENTITY( Statistics, Vorn::Entity )

 public:
   explicit Statistics( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// Id of the last message sent.
   VORN_COUNTER( 0x102, U32, messageId, MessageId, local ) = 0;
   /// The statistics of the sessions; null until somebody makes it.
   VORN_CHILD( 0x103, LdpSessionStatisticsColl, sessionStatisticsColl, SessionStatisticsColl, replicated );
   /// FECs that the filter lets through.
   VORN_COUNTER_DEC( 0x104, U32, fecCountUnfiltered, FecCountUnfiltered, replicated ) = 0;
   /// FECs that the filter does not let through.
   VORN_COUNTER_DEC( 0x105, U32, fecCountFiltered, FecCountFiltered, replicated ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( Statistics, statisticsFactory )

/// One VRF. The constructor makes no child: each comes into being when the agent, or the attribute log, asks
/// for it, and a reader expects null. The destructor takes them down in the order of the lines.
class VORN_API Status : public Vorn::Entity {
   VORN_ENTITY( Status, Vorn::Entity )

 public:
   explicit Status( L3::VrfName const & vrfName ) : vrfName_( vrfName ) {}

   VORN_KEY( 0x102, L3::VrfName, vrfName );
   /// The namespace that `netNs` begins with.
   VORN_DERIVED_CONSTANT( 0x103, Lumo::NamespaceName, defaultNsName );
   /// The network namespace in which the sockets live.
   VORN_MUTABLE( 0x104, Lumo::NamespaceName, netNs, NetNs,
                 replicated ) = Lumo::NamespaceName::defaultNamespace();
   /// What is wanted of the links.
   VORN_CHILD( 0x105, LdpLinkConfigColl, ldpLinkConfigColl, LdpLinkConfigColl, replicated );
   /// Run-time state of the links.
   VORN_CHILD( 0x106, LdpLinkStatusColl, ldpLinkStatusColl, LdpLinkStatusColl, replicated );
   /// State of the packet mover that serves the links.
   VORN_CHILD( 0x107, LdpLinkUdpPamStatus, ldpLinkUdpPamStatus, LdpLinkUdpPamStatus, local );
   /// What is wanted of the targets.
   VORN_CHILD( 0x108, LdpTargetConfigColl, ldpTargetConfigColl, LdpTargetConfigColl, replicated );
   /// Run-time state of the targets.
   VORN_CHILD( 0x109, LdpTargetStatusColl, ldpTargetStatusColl, LdpTargetStatusColl, replicated );
   /// What is wanted of the adjacencies.
   VORN_CHILD( 0x10a, LdpAdjConfigColl, ldpAdjConfigColl, LdpAdjConfigColl, replicated );
   /// Run-time state of the adjacencies.
   VORN_CHILD( 0x10b, LdpAdjStatusColl, ldpAdjStatusColl, LdpAdjStatusColl, replicated );
   /// The peers, with the adjacencies that lead to them.
   VORN_CHILD( 0x10c, LdpPeerConfigColl, ldpPeerConfigColl, LdpPeerConfigColl, replicated );
   /// The peers that are known.
   VORN_CHILD( 0x10d, LdpPeerStatusColl, ldpPeerStatusColl, LdpPeerStatusColl, local );
   /// What is wanted of the sessions.
   VORN_CHILD( 0x10e, LdpSessionConfigColl, ldpSessionConfigColl, LdpSessionConfigColl, replicated );
   /// Run-time state of the sessions.
   VORN_CHILD( 0x10f, LdpSessionStatusColl, ldpSessionStatusColl, LdpSessionStatusColl, replicated );
   /// The FECs.
   VORN_CHILD( 0x110, LdpFecConfigColl, ldpFecConfigColl, LdpFecConfigColl, local );
   /// What the label state machines share about the FECs.
   VORN_CHILD( 0x111, LdpFecStatusColl, ldpFecStatusColl, LdpFecStatusColl, local );
   /// The FECs on sessions.
   VORN_CHILD( 0x112, LdpFecSessionStatusColl, ldpFecSessionStatusColl, LdpFecSessionStatusColl, local );
   /// The connections that sessions ask for.
   VORN_CHILD( 0x113, LdpTcpConnConfigColl, ldpTcpConnConfigColl, LdpTcpConnConfigColl, local );
   /// What became of those connections.
   VORN_CHILD( 0x114, LdpTcpConnStatusColl, ldpTcpConnStatusColl, LdpTcpConnStatusColl, local );
   /// What is wanted of the listener for sessions.
   VORN_CHILD( 0x115, LdpTcpServerConfig, ldpTcpServerConfig, LdpTcpServerConfig, local );
   /// Run-time state of the listener for sessions.
   VORN_CHILD( 0x116, LdpTcpServerStatus, ldpTcpServerStatus, LdpTcpServerStatus, local );
   /// What is wanted of the listener for targeted hellos.
   VORN_CHILD( 0x117, LdpTargetServerConfig, ldpTargetServerConfig, LdpTargetServerConfig, local );
   /// Run-time state of the listener for targeted hellos.
   VORN_CHILD( 0x118, LdpTargetServerStatus, ldpTargetServerStatus, LdpTargetServerStatus, local );
   /// Our label bindings.
   VORN_CHILD( 0x119, Mpls::LabelBindingTable, localLabelBindingTable, LocalLabelBindingTable, local );
   /// The label bindings of each peer.
   VORN_CHILD( 0x11a, Mpls::LabelBindingTableColl, peerLabelBindingTableColl, PeerLabelBindingTableColl,
               local );
   /// To whom our bindings were advertised.
   VORN_CHILD( 0x11b, LabelAdvertisementColl, localAdvertisement, LocalAdvertisement, local );
   /// Local addresses.
   VORN_CHILD( 0x11c, LocalIntfIpColl, localIntfIpColl, LocalIntfIpColl, local );
   /// Requests for labels of unicast FECs.
   VORN_CHILD( 0x11d, LabelAllocRequestTable, ldpLabelAllocRequestTable, LdpLabelAllocRequestTable, local );
   /// Requests for labels of P2MP FECs.
   VORN_CHILD( 0x11e, LabelAllocRequestTable, p2mpLabelAllocRequestTable, P2mpLabelAllocRequestTable, local );
   /// Bindings by configuration.
   VORN_CHILD( 0x11f, Mpls::LabelBindingTable, staticBindingTable, StaticBindingTable, local );
   /// Reverse maps.
   VORN_CHILD( 0x120, LdpIndex, index, Index, local );
   /// The peers that pseudowires need.
   VORN_CHILD( 0x121, PwTargetConfigColl, pwTargetConfigColl, PwTargetConfigColl, local );
   /// Requests for pseudowires.
   VORN_CHILD( 0x122, PwConfigColl, pwConfigColl, PwConfigColl, local );
   /// What came of those requests.
   VORN_CHILD( 0x123, PwStatusColl, pwStatusColl, PwStatusColl, local );
   /// What is to be signalled about pseudowires, in our direction.
   VORN_CHILD( 0x124, PwFecSessionConfigColl, localPwFecSessionConfigColl, LocalPwFecSessionConfigColl,
               local );
   /// The same in the peers' direction.
   VORN_CHILD( 0x125, PwFecSessionConfigColl, remotePwFecSessionConfigColl, RemotePwFecSessionConfigColl,
               local );
   /// What this speaker has sent about pseudowires.
   VORN_CHILD( 0x126, LocalPwFecSessionStatusColl, localPwFecSessionStatusColl, LocalPwFecSessionStatusColl,
               local );
   /// What the peers have sent about pseudowires.
   VORN_CHILD( 0x127, RemotePwFecSessionStatusColl, remotePwFecSessionStatusColl,
               RemotePwFecSessionStatusColl, local );
   /// Indices of the opaque values of P2MP FECs (RFC 6388).
   VORN_CHILD( 0x128, LdpP2mpOpaqueTable, p2mpOpaqueTable, P2mpOpaqueTable, replicated );
   /// The P2MP FECs.
   VORN_CHILD( 0x129, LdpP2mpFecStateColl, p2mpFecStateColl, P2mpFecStateColl, replicated );
   /// What this speaker has said about P2MP FECs.
   VORN_CHILD( 0x12a, LdpP2mpFecSessionLocalStateColl, p2mpFecSessionLocalStateColl,
               P2mpFecSessionLocalStateColl, local );
   /// What the peers have said about P2MP FECs.
   VORN_CHILD( 0x12b, LdpP2mpFecSessionRemoteStateColl, p2mpFecSessionRemoteStateColl,
               P2mpFecSessionRemoteStateColl, local );
   /// The labels allocated to P2MP FECs.
   VORN_CHILD( 0x12c, Mpls::LabelBindingTable, p2mpLocalLabelAllocTable, P2mpLocalLabelAllocTable, local );
   /// To whom our bindings of P2MP FECs were advertised.
   VORN_CHILD( 0x12d, LabelAdvertisementColl, p2mpLocalAdvertisement, P2mpLocalAdvertisement, local );
   /// Our label bindings of P2MP FECs.
   VORN_CHILD( 0x12e, Mpls::LabelBindingTable, p2mpLocalLabelBindingTable, P2mpLocalLabelBindingTable,
               local );
   /// The label bindings of P2MP FECs of each peer.
   VORN_CHILD( 0x12f, Mpls::LabelBindingTableColl, p2mpPeerLabelBindingTableColl,
               P2mpPeerLabelBindingTableColl, local );
   /// Next hops of P2MP FECs.
   VORN_CHILD( 0x130, LdpFecNexthopColl, mldpFecNexthopColl, MldpFecNexthopColl, local );
   /// Interface addresses of the peers.
   VORN_CHILD( 0x131, LdpIdIntfIpMappingEntryTable, ldpIdIntfIpMappingEntryTable,
               LdpIdIntfIpMappingEntryTable, replicated );
   /// Labels by FEC and router; like the rest down to `p2mpLabelForwardingInfoColl` for the multicast tree.
   VORN_CHILD( 0x132, Mpls::FecRouterLabelInfoColl, p2mpFecRouterLabelInfoColl, P2mpFecRouterLabelInfoColl,
               local );
   /// Transport addresses of routers.
   VORN_CHILD( 0x133, Mpls::RouterIpAddrInfoColl, p2mpRouterTransportIpAddrInfoColl,
               P2mpRouterTransportIpAddrInfoColl, local );
   /// Routers by address.
   VORN_CHILD( 0x134, Mpls::IpAddrRouterIdInfoColl, p2mpIpAddrRouterIdInfoColl, P2mpIpAddrRouterIdInfoColl,
               local );
   /// Next hops of addresses.
   VORN_CHILD( 0x135, Mpls::IpNexthopInfoColl, p2mpIpNexthopInfoColl, P2mpIpNexthopInfoColl, local );
   /// Next hops of routers.
   VORN_CHILD( 0x136, Mpls::RouterNexthopInfoColl, p2mpRouterNexthopInfoColl, P2mpRouterNexthopInfoColl,
               local );
   /// Next hops of routers by interface.
   VORN_CHILD( 0x137, Mpls::IntfRouterNexthopInfoColl, p2mpIntfRouterNexthopInfoColl,
               P2mpIntfRouterNexthopInfoColl, local );
   /// Interfaces on which MPLS runs.
   VORN_CHILD( 0x138, Mpls::MplsIntfColl, p2mpMplsIntfColl, P2mpMplsIntfColl, local );
   /// Next hops of routers by address.
   VORN_CHILD( 0x139, Mpls::RouterIpNexthopInfoColl, p2mpRouterIpNexthopInfoColl, P2mpRouterIpNexthopInfoColl,
               local );
   /// Interface addresses of routers.
   VORN_CHILD( 0x13a, Mpls::RouterIpAddrInfoColl, p2mpRouterIntfIpAddrInfoColl, P2mpRouterIntfIpAddrInfoColl,
               local );
   /// Next hops of routers, filtered.
   VORN_CHILD( 0x13b, Mpls::RouterNexthopInfoColl, p2mpRouterFilteredNexthopColl,
               P2mpRouterFilteredNexthopColl, local );
   /// Next hops by FEC and router.
   VORN_CHILD( 0x13c, Mpls::FecRouterNexthopInfoColl, p2mpFecRouterNexthopInfoColl,
               P2mpFecRouterNexthopInfoColl, local );
   /// Forwarding by label.
   VORN_CHILD( 0x13d, Mpls::LabelForwardingInfoColl, p2mpLabelForwardingInfoColl, P2mpLabelForwardingInfoColl,
               local );
   /// Targets that are wanted for hello redundancy.
   VORN_CHILD( 0x13e, LdpIpAddrColl, hrTargetConfigColl, HrTargetConfigColl, local );
   /// Counters.
   VORN_CHILD( 0x13f, Statistics, statistics, Statistics, replicated );
   /// Our own graceful restart.
   VORN_CHILD( 0x140, LocalGrStatus, localGrStatus, LocalGrStatus, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( Status, statusFactory )

/// All VRFs: the run-time state of each, and what it keeps of the time before a restart. The two stand apart;
/// deleting one leaves the other.
class VORN_API LdpStatusColl : public Vorn::Entity {
   VORN_ENTITY( LdpStatusColl, Vorn::Entity )

 public:
   explicit LdpStatusColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What each VRF keeps of the time before a restart, by the VRF's name.
   VORN_ENTITY_COLL( 0x102, LdpGrStatus, L3::VrfName, grStatus, GrStatus, replicated );
   /// Run-time state of each VRF, by its name.
   VORN_ENTITY_COLL( 0x103, Status, L3::VrfName, status, Status, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpStatusColl, ldpStatusCollFactory )

} // namespace Ldp
