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

} // namespace Mpls
