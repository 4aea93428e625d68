/// \file
/// Values of a pseudowire FEC: its identity, its parameters, and the two together. They own what they hold
/// and outlive the packet that they were read from.
#pragma once

#include "Bridging/VlanId.h"
#include "Pseudowire/Types.h"

namespace Ldp {

/// Identity of a pseudowire FEC. Its text is `pw100:pwTypeRaw:cbit1`.
class VORN_API PwFwdEqvClass {
   VORN_REFLECTED( PwFwdEqvClass, void )

 public:
   /// Name of the attribute that stands for the whole value.
   static constexpr char const * defaultAttribute = "stringValue";

   /// The default has no PW ID and no type.
   PwFwdEqvClass() noexcept = default;
   PwFwdEqvClass( Pseudowire::PseudowireId pwId, Pseudowire::PseudowireType pwType,
                  bool controlWord ) noexcept
        : pwId_( pwId ), pwType_( pwType ), controlWord_( controlWord ) {}

   /// The number that names the pseudowire between two peers.
   Pseudowire::PseudowireId pwId() const noexcept { return pwId_; }
   /// The type of the pseudowire.
   Pseudowire::PseudowireType pwType() const noexcept { return pwType_; }
   /// C bit: a control word is used.
   bool controlWord() const noexcept { return controlWord_; }
   /// The PW type as a number.
   U32 pwTypeValue() const noexcept { return pwType_; }

   /// The text form above.
   Vorn::String stringValue() const;
   /// Reads that form, whole. Throws RangeException, and then the value stays as it was.
   void stringValueIs( Vorn::String const & text );

   /// Equal values have equal hashes.
   U32 hash() const noexcept;
   VORN_FROM_LOG( PwFwdEqvClass )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == PwFwdEqvClass(); }
   friend bool operator==( PwFwdEqvClass const &, PwFwdEqvClass const & ) noexcept = default;
   /// By PW ID, then by type as a signed number, then by C bit.
   friend bool operator<( PwFwdEqvClass const & a, PwFwdEqvClass const & b ) noexcept {
      if ( a.pwId_ != b.pwId_ ) return a.pwId_ < b.pwId_;
      if ( a.pwType_ != b.pwType_ ) return std::int32_t( a.pwType_ ) < std::int32_t( b.pwType_ );
      return a.controlWord_ < b.controlWord_;
   }

 private:
   Pseudowire::PseudowireId pwId_;
   Pseudowire::PseudowireType pwType_ = Pseudowire::pwTypeNone;
   bool controlWord_ = false;
};
VORN_TEXT( PwFwdEqvClass )
/// In the attribute log the fields in their order.
VORN_API void logOut( Vorn::NboAttrLog::Out & out, PwFwdEqvClass const & value );
VORN_API void logIn( Vorn::NboAttrLog::In & in, PwFwdEqvClass * value );

/// What the interface parameters and the group of a pseudowire FEC say. A field that was not sent has its
/// default.
class VORN_API PwFwdEqvClassParams {
   VORN_REFLECTED( PwFwdEqvClassParams, void )

 public:
   PwFwdEqvClassParams() noexcept = default;
   /// The MTU of a FEC that says none.
   static constexpr U32 unspecifiedMtu = 0;

   /// The group of the FEC.
   Pseudowire::GroupId groupId() const noexcept { return groupId_; }
   void groupIdIs( Pseudowire::GroupId groupId ) noexcept { groupId_ = groupId; }
   /// Interface MTU in octets.
   U32 mtu() const noexcept { return mtu_; }
   void mtuIs( U32 mtu ) noexcept { mtu_ = mtu; }
   /// Interface description; any octets.
   Vorn::String const & intfDescription() const noexcept { return intfDescription_; }
   void intfDescriptionIs( Vorn::String const & text ) noexcept { intfDescription_ = text; }
   /// Requested VLAN id; 0 for none.
   Bridging::VlanIdOrNone requestedVlanId() const noexcept { return requestedVlanId_; }
   void requestedVlanIdIs( Bridging::VlanIdOrNone vlanId ) noexcept { requestedVlanId_ = vlanId; }
   /// Whether the sender can reassemble fragments.
   bool fragCapable() const noexcept { return fragCapable_; }
   void fragCapableIs( bool capable ) noexcept { fragCapable_ = capable; }
   /// VCCV control channel types, one bit each.
   U8 vccvCcTypes() const noexcept { return vccvCcTypes_; }
   void vccvCcTypesIs( U8 types ) noexcept { vccvCcTypes_ = types; }
   /// VCCV connectivity verification types, one bit each.
   Pseudowire::VccvCvTypes vccvCvTypes() const noexcept { return vccvCvTypes_; }
   void vccvCvTypesIs( Pseudowire::VccvCvTypes types ) noexcept { vccvCvTypes_ = types; }

   /// One line with all fields. The control channel types stand in it as one raw octet.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( PwFwdEqvClassParams )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == PwFwdEqvClassParams(); }
   friend bool operator==( PwFwdEqvClassParams const &, PwFwdEqvClassParams const & ) noexcept = default;

 private:
   Pseudowire::GroupId groupId_;
   U32 mtu_ = unspecifiedMtu;
   Vorn::String intfDescription_;
   Bridging::VlanIdOrNone requestedVlanId_;
   bool fragCapable_ = false;
   U8 vccvCcTypes_ = 0;
   Pseudowire::VccvCvTypes vccvCvTypes_;
};
VORN_TEXT( PwFwdEqvClassParams )

/// A pseudowire FEC with its parameters.
class VORN_API PwFwdEqvClassInfo {
   VORN_REFLECTED( PwFwdEqvClassInfo, void )

 public:
   PwFwdEqvClassInfo() noexcept = default;
   /// The identity.
   PwFwdEqvClass const & fwdEqvClass() const noexcept { return fwdEqvClass_; }
   void fwdEqvClassIs( PwFwdEqvClass const & fwdEqvClass ) noexcept { fwdEqvClass_ = fwdEqvClass; }
   /// The parameters.
   PwFwdEqvClassParams const & params() const noexcept { return params_; }
   void paramsIs( PwFwdEqvClassParams const & params ) noexcept { params_ = params; }

   /// The number that names the pseudowire, of the identity.
   Pseudowire::PseudowireId pwId() const noexcept { return fwdEqvClass_.pwId(); }
   /// The group, of the parameters.
   Pseudowire::GroupId groupId() const noexcept { return params_.groupId(); }
   void groupIdIs( Pseudowire::GroupId groupId ) noexcept { params_.groupIdIs( groupId ); }
   /// Interface description, of the parameters.
   Vorn::String const & intfDescription() const noexcept { return params_.intfDescription(); }
   void intfDescriptionIs( Vorn::String const & text ) noexcept { params_.intfDescriptionIs( text ); }
   /// Requested VLAN id, of the parameters; 0 for none.
   Bridging::VlanIdOrNone requestedVlanId() const noexcept { return params_.requestedVlanId(); }
   void requestedVlanIdIs( Bridging::VlanIdOrNone vlanId ) noexcept { params_.requestedVlanIdIs( vlanId ); }

   /// The identity, a blank, the parameters.
   Vorn::String stringValue() const;

   VORN_FROM_LOG( PwFwdEqvClassInfo )
   /// Whether the value equals a default one.
   bool operator!() const noexcept { return *this == PwFwdEqvClassInfo(); }
   friend bool operator==( PwFwdEqvClassInfo const &, PwFwdEqvClassInfo const & ) noexcept = default;

 private:
   PwFwdEqvClass fwdEqvClass_;
   PwFwdEqvClassParams params_;
};
VORN_TEXT( PwFwdEqvClassInfo )

} // namespace Ldp
