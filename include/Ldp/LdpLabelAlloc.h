/// \file
/// Local labels: the requests for them, and the sets in which FECs and pseudowires hold theirs. Who serves
/// the requests lies outside this library.
#pragma once

#include "Ldp/LdpTypes.h"
#include "Lumo/MplsLabel.h"
#include "Mpls/FwdEqvClass.h"
#include "Mpls/Types.h"
#include "Vorn/Attributes.h"

namespace Ldp {

/// What the allocation is doing.
#define VORN_LDP_LABEL_ALLOC_STATUSES( X )                                                                   \
   X( markAndSweep, 0 )                                                                                      \
   X( dynamicReserve, 1 )                                                                                    \
   X( waitForLabelRange, 2 )
VORN_ENUM( LabelAllocStatusEnum, VORN_LDP_LABEL_ALLOC_STATUSES )

/// A request for labels of one FEC.
class VORN_API LabelAllocRequest : public Vorn::Entity {
   VORN_ENTITY( LabelAllocRequest, Vorn::Entity )

 public:
   explicit LabelAllocRequest( Mpls::FwdEqvClass const & fec ) : fec_( fec ) {}

   VORN_KEY( 0x102, Mpls::FwdEqvClass, fec );
   /// How many labels are wanted.
   VORN_MUTABLE( 0x103, U32, numLabelsRequested, NumLabelsRequested, replicated ) = 0;
   /// Where the FEC leads.
   VORN_MUTABLE( 0x104, LdpFecDeliveryType, ldpFecDeliveryType, LdpFecDeliveryType, replicated ) = Unknown;

   VORN_NEXT_LINK;
   VORN_OBSERVERS;
};
VORN_FACTORY( LabelAllocRequest, labelAllocRequestFactory )

/// The requests.
class VORN_API LabelAllocRequestTable : public Vorn::Entity {
   VORN_ENTITY( LabelAllocRequestTable, Vorn::Entity )

 public:
   explicit LabelAllocRequestTable( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// The requests, by FEC.
   VORN_ENTITY_COLL( 0x102, LabelAllocRequest, Mpls::FwdEqvClass, labelBindingRequest, LabelBindingRequest,
                     replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( LabelAllocRequestTable, labelAllocRequestTableFactory )

/// The allocation as a whole.
class VORN_API LabelAllocGlobalStatus : public Vorn::Entity {
   VORN_ENTITY( LabelAllocGlobalStatus, Vorn::Entity )

 public:
   explicit LabelAllocGlobalStatus( Vorn::Name const & name ) : name_( name ) {}

   VORN_NAME;
   /// What the allocation is doing.
   VORN_MUTABLE( 0x102, LabelAllocStatusEnum, state, State, replicated ) = markAndSweep;
   /// Means nothing but its changes: the range of labels is another now.
   VORN_MUTABLE( 0x103, U32, rangeChanged, RangeChanged, replicated ) = 0;

   VORN_OBSERVERS;
};
VORN_FACTORY( LabelAllocGlobalStatus, labelAllocGlobalStatusFactory )

/// The labels of a FEC or of a pseudowire. It is made as a child, by `mplsLabelSetIs( name, fec )`.
class VORN_API MplsLabelSet : public Vorn::Entity {
   VORN_ENTITY( MplsLabelSet, Vorn::Entity )
   VORN_CTOR_TYPES( Vorn::Name, Mpls::FwdEqvClass )

 public:
   MplsLabelSet( Vorn::Name const & name, Mpls::FwdEqvClass const & fwdEqvClass )
        : name_( name ), fwdEqvClass_( fwdEqvClass ) {}

   VORN_NAME;
   /// The FEC; the default one where the labels are a pseudowire's.
   VORN_CTOR_ARG( 0x102, Mpls::FwdEqvClass, fwdEqvClass );
   /// Who gave the labels.
   VORN_MUTABLE( 0x103, Mpls::LabelSource, labelSource, LabelSource, replicated ) = Mpls::LabelSource( 2 );
   /// The labels.
   VORN_VALUE_COLL( 0x104, bool, Lumo::MplsLabel, mplsLabel, MplsLabel, replicated );

   VORN_OBSERVERS;
};
VORN_FACTORY( MplsLabelSet, mplsLabelSetFactory )

} // namespace Ldp
