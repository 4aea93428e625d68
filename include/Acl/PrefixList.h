/// \file
/// Prefix lists: the part of an access-list library that the FEC filter reads. A host that has such a library
/// puts it in the place of this header.
#pragma once

#include "Lumo/Ip.h"
#include "Vorn/Attributes.h"
#include "Vorn/RbTreeMap.h"

namespace Acl {

/// What a matching entry says. Any value but `permit` denies.
#define VORN_ACL_PREFIX_ACTIONS( X )                                                                         \
   X( deny, 0 )                                                                                              \
   X( permit, 1 )
VORN_ENUM( PrefixAction, VORN_ACL_PREFIX_ACTIONS )

/// One entry of a prefix list.
struct PrefixEntry {
   /// An IPv4 address and a mask length in bits.
   struct Prefix {
      /// The address.
      Lumo::IpAddr address;
      /// Length of the mask in bits.
      U32 len = 0;
   };
   Prefix prefix;              ///< what a FEC must lie in
   PrefixAction action = deny; ///< what a match means
   U32 ge = 0;                 ///< least length that matches; 0 for none
   U32 le = 0;                 ///< greatest length that matches; 0 for none
   U32 eq = 0;                 ///< the one length that matches; 0 for none
};

/// A named list of entries, asked in ascending order of their sequence numbers.
class VORN_API PrefixList : public Vorn::Entity {
   VORN_ENTITY( PrefixList, Vorn::Entity )

 public:
   /// The log carries the list, to which a filter refers, and nothing of it.
   static constexpr bool vornOnLog = true;

   /// Entries by sequence number.
   using Entries = Vorn::RbTreeMap< PrefixList, U32, PrefixEntry >;

   explicit PrefixList( Vorn::Name const & name ) : name_( name ) {}

   /// The entries by sequence number. Whoever changes them tells nobody by that; see
   /// `LdpFecFilter::filterVersion`.
   Entries const & prefixEntryColl() const noexcept { return prefixEntry_; }
   /// Enters an entry, or replaces the one with that sequence number.
   void prefixEntryIs( U32 sequence, PrefixEntry const & entry ) { prefixEntry_.valueIs( sequence, entry ); }
   /// Removes the entry with that sequence number, if there is one.
   void prefixEntryDel( U32 sequence ) { prefixEntry_.del( sequence ); }

 private:
   Entries prefixEntry_;
   VORN_NAME;

   VORN_OBSERVERS;
};
VORN_FACTORY( PrefixList, prefixListFactory )

} // namespace Acl
