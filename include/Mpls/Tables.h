/// \file
/// Tables of an MPLS library that the model makes and holds: label bindings, and what the multicast tree
/// knows of routers and next hops. A host that has such a library puts it in the place of this header.
#pragma once

#include "Lumo/MplsLabel.h"
#include "Mpls/FwdEqvClass.h"
#include "Mpls/Types.h"
#include "Vorn/Attributes.h"

namespace Mpls {

/// The labels that one router has bound to FECs.
class VORN_API LabelBindingTable : public Vorn::Entity {
   VORN_ENTITY( LabelBindingTable, Vorn::Entity )

 public:
   explicit LabelBindingTable( RouterId const & routerId ) : routerId_( routerId ) {}

   VORN_KEY( 0x102, RouterId, routerId );
   /// The label of each FEC.
   VORN_VALUE_COLL( 0x103, Lumo::MplsLabel, FwdEqvClass, labelBinding, LabelBinding, replicated );

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LabelBindingTable, labelBindingTableFactory )

/// The labels of several routers.
class VORN_API LabelBindingTableColl : public Vorn::Entity {
   VORN_ENTITY( LabelBindingTableColl, Vorn::Entity )

 public:
   explicit LabelBindingTableColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The tables, by router.
   VORN_ENTITY_COLL( 0x102, LabelBindingTable, RouterId, labelBindingTable, LabelBindingTable, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LabelBindingTableColl, labelBindingTableCollFactory )

/// Labels by FEC and router. The model only makes and holds this and what follows, for the multicast tree.
class VORN_API FecRouterLabelInfoColl : public Vorn::Entity {
   VORN_ENTITY( FecRouterLabelInfoColl, Vorn::Entity )

 public:
   explicit FecRouterLabelInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( FecRouterLabelInfoColl, fecRouterLabelInfoCollFactory )
/// Next hops by FEC and router.
class VORN_API FecRouterNexthopInfoColl : public Vorn::Entity {
   VORN_ENTITY( FecRouterNexthopInfoColl, Vorn::Entity )

 public:
   explicit FecRouterNexthopInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( FecRouterNexthopInfoColl, fecRouterNexthopInfoCollFactory )
/// Next hops of routers by interface.
class VORN_API IntfRouterNexthopInfoColl : public Vorn::Entity {
   VORN_ENTITY( IntfRouterNexthopInfoColl, Vorn::Entity )

 public:
   explicit IntfRouterNexthopInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( IntfRouterNexthopInfoColl, intfRouterNexthopInfoCollFactory )
/// Routers by address.
class VORN_API IpAddrRouterIdInfoColl : public Vorn::Entity {
   VORN_ENTITY( IpAddrRouterIdInfoColl, Vorn::Entity )

 public:
   explicit IpAddrRouterIdInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( IpAddrRouterIdInfoColl, ipAddrRouterIdInfoCollFactory )
/// Next hops of addresses.
class VORN_API IpNexthopInfoColl : public Vorn::Entity {
   VORN_ENTITY( IpNexthopInfoColl, Vorn::Entity )

 public:
   explicit IpNexthopInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( IpNexthopInfoColl, ipNexthopInfoCollFactory )
/// Forwarding by label.
class VORN_API LabelForwardingInfoColl : public Vorn::Entity {
   VORN_ENTITY( LabelForwardingInfoColl, Vorn::Entity )

 public:
   explicit LabelForwardingInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LabelForwardingInfoColl, labelForwardingInfoCollFactory )
/// Interfaces on which MPLS runs.
class VORN_API MplsIntfColl : public Vorn::Entity {
   VORN_ENTITY( MplsIntfColl, Vorn::Entity )

 public:
   explicit MplsIntfColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( MplsIntfColl, mplsIntfCollFactory )
/// Addresses of routers.
class VORN_API RouterIpAddrInfoColl : public Vorn::Entity {
   VORN_ENTITY( RouterIpAddrInfoColl, Vorn::Entity )

 public:
   explicit RouterIpAddrInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( RouterIpAddrInfoColl, routerIpAddrInfoCollFactory )
/// Next hops of routers by address.
class VORN_API RouterIpNexthopInfoColl : public Vorn::Entity {
   VORN_ENTITY( RouterIpNexthopInfoColl, Vorn::Entity )

 public:
   explicit RouterIpNexthopInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( RouterIpNexthopInfoColl, routerIpNexthopInfoCollFactory )
/// Next hops of routers.
class VORN_API RouterNexthopInfoColl : public Vorn::Entity {
   VORN_ENTITY( RouterNexthopInfoColl, Vorn::Entity )

 public:
   explicit RouterNexthopInfoColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( RouterNexthopInfoColl, routerNexthopInfoCollFactory )

} // namespace Mpls
