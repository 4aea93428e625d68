/// \file
/// Entities that the model makes and holds, and whose contents are those of the library that defines them. A
/// host puts its own in the place of this header; here each has what the model itself needs of it.
#pragma once

#include "Ldp/LdpIdentifier.h"
#include "Mpls/FwdEqvClass.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// The peers to which a FEC has been advertised.
class VORN_API LdpIdentifierSet : public Vorn::Entity {
   VORN_ENTITY( LdpIdentifierSet, Vorn::Entity )

 public:
   explicit LdpIdentifierSet( Mpls::FwdEqvClass const & fwdEqvClass ) : fwdEqvClass_( fwdEqvClass ) {}

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// The peers.
   VORN_SET( 0x103, LdpIdentifier, ldpIdentifier, LdpIdentifier, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIdentifierSet, ldpIdentifierSetFactory )

/// What has been advertised to whom.
class VORN_API LabelAdvertisementColl : public Vorn::Entity {
   VORN_ENTITY( LabelAdvertisementColl, Vorn::Entity )

 public:
   explicit LabelAdvertisementColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LabelAdvertisementColl, labelAdvertisementCollFactory )

/// Addresses that somebody is interested in.
class VORN_API LdpIpAddrColl : public Vorn::Entity {
   VORN_ENTITY( LdpIpAddrColl, Vorn::Entity )

 public:
   explicit LdpIpAddrColl( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIpAddrColl, ldpIpAddrCollFactory )

/// Which peer has which interface address, as it was before a restart.
class VORN_API LdpIdIntfIpMappingTable : public Vorn::Entity {
   VORN_ENTITY( LdpIdIntfIpMappingTable, Vorn::Entity )

 public:
   /// The log knows it, and carries nothing of it at present.
   static constexpr bool vornOnLog = true;

   explicit LdpIdIntfIpMappingTable( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIdIntfIpMappingTable, ldpIdIntfIpMappingTableFactory )

/// Which peer has which interface address.
class VORN_API LdpIdIntfIpMappingEntryTable : public Vorn::Entity {
   VORN_ENTITY( LdpIdIntfIpMappingEntryTable, Vorn::Entity )

 public:
   /// The log knows it, and carries nothing of it at present.
   static constexpr bool vornOnLog = true;

   explicit LdpIdIntfIpMappingEntryTable( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpIdIntfIpMappingEntryTable, ldpIdIntfIpMappingEntryTableFactory )

} // namespace Ldp
