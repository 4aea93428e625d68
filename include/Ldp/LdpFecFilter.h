/// \file
/// The filter that says for which FECs LDP works.
#pragma once

#include "Acl/PrefixList.h"
#include "Mpls/FwdEqvClass.h"

namespace Ldp {

/// Asks a prefix list whether a FEC is let through. The agent keeps the list here, and says by
/// `filterVersion` that the list's contents have changed.
class VORN_API LdpFecFilter : public Vorn::Entity {
   VORN_ENTITY( LdpFecFilter, Vorn::Entity )

 public:
   explicit LdpFecFilter( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The list that is asked; null for none, and then every FEC passes.
   VORN_REFERENCE( 0x102, Acl::PrefixList const, prefixList, PrefixList, replicated );
   VORN_FUNCTION( 0x103, isPermittedFec );
   /// Whether the FEC passes. The first entry that matches decides; a list of which no entry matches lets
   /// nothing pass. Only the prefix that the FEC holds is looked at, whatever the FEC's kind and family: a
   /// caller that wants other kinds treated otherwise decides before it asks.
   ///
   /// The list must not change meanwhile.
   bool isPermittedFec( Mpls::FwdEqvClass const & fec ) const;
   /// Means nothing but its changes: the answer for a FEC may be another now.
   VORN_COUNTER( 0x104, U32, filterVersion, FilterVersion, local ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LdpFecFilter, ldpFecFilterFactory )

} // namespace Ldp
