// Records of the label tables that the model makes and holds.
#include "Mpls/Tables.h"

namespace Mpls {

VORN_RECORD( Mpls, LabelBindingTable )
VORN_RECORD( Mpls, LabelBindingTableColl )
VORN_RECORD( Mpls, FecRouterLabelInfoColl )
VORN_RECORD( Mpls, FecRouterNexthopInfoColl )
VORN_RECORD( Mpls, IntfRouterNexthopInfoColl )
VORN_RECORD( Mpls, IpAddrRouterIdInfoColl )
VORN_RECORD( Mpls, IpNexthopInfoColl )
VORN_RECORD( Mpls, LabelForwardingInfoColl )
VORN_RECORD( Mpls, MplsIntfColl )
VORN_RECORD( Mpls, RouterIpAddrInfoColl )
VORN_RECORD( Mpls, RouterIpNexthopInfoColl )
VORN_RECORD( Mpls, RouterNexthopInfoColl )
VORN_MODULE( &LabelBindingTable::_vornType, &LabelBindingTableColl::_vornType,
             &FecRouterLabelInfoColl::_vornType, &FecRouterNexthopInfoColl::_vornType,
             &IntfRouterNexthopInfoColl::_vornType, &IpAddrRouterIdInfoColl::_vornType,
             &IpNexthopInfoColl::_vornType, &LabelForwardingInfoColl::_vornType, &MplsIntfColl::_vornType,
             &RouterIpAddrInfoColl::_vornType, &RouterIpNexthopInfoColl::_vornType,
             &RouterNexthopInfoColl::_vornType )

LabelBindingTable::~LabelBindingTable() = default;
LabelBindingTableColl::~LabelBindingTableColl() = default;
FecRouterLabelInfoColl::~FecRouterLabelInfoColl() = default;
FecRouterNexthopInfoColl::~FecRouterNexthopInfoColl() = default;
IntfRouterNexthopInfoColl::~IntfRouterNexthopInfoColl() = default;
IpAddrRouterIdInfoColl::~IpAddrRouterIdInfoColl() = default;
IpNexthopInfoColl::~IpNexthopInfoColl() = default;
LabelForwardingInfoColl::~LabelForwardingInfoColl() = default;
MplsIntfColl::~MplsIntfColl() = default;
RouterIpAddrInfoColl::~RouterIpAddrInfoColl() = default;
RouterIpNexthopInfoColl::~RouterIpNexthopInfoColl() = default;
RouterNexthopInfoColl::~RouterNexthopInfoColl() = default;

} // namespace Mpls
