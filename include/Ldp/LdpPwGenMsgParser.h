/// \file
/// The PW ID FEC element (RFC 8077, 6.1), parsed: the pseudowire that it names and the interface parameters
/// that it carried.
#pragma once

#include "Ldp/LdpFecTlvParser.h"

namespace Ldp {

/// A pseudowire by its PW ID; a PW ID of 0 stands for all of the group and type.
class VORN_API LdpFecTlvPwIdElement : public LdpFecTlvElement {
   VORN_REFLECTED_OBJECT( LdpFecTlvPwIdElement, LdpFecTlvElement )

 public:
   ~LdpFecTlvPwIdElement() override;
   LdpFecElementType type() const override { return pwIdElement; }
   /// What the element carried, and nothing that it did not.
   Vorn::String stringValue() const override;

   /// Which interface parameters were there.
   LdpPwIntfParamFlags parsedIntfParams() const noexcept { return parsedIntfParams_; }
   void parsedIntfParamsIs( LdpPwIntfParamFlags flags ) noexcept { parsedIntfParams_ = flags; }

 private:
   LdpPwIntfParamFlags parsedIntfParams_;
};
/// A new element without a value.
VORN_API Vorn::Ptr< LdpFecTlvPwIdElement > ldpFecTlvPwIdElementFactory();

/// Parses the PW ID element at `currOffset` of the parser's packet, in a FEC TLV whose value ends at
/// `endOffset`. On success the element has its value and `currOffset` stands behind it. On failure it gives
/// the code and leaves the reason with the parser; the element keeps the flags gathered so far and no value.
VORN_API LdpStatusCode parseFecTlvPwIdElement( LdpFecTlvParser * parser, U32 & currOffset, U32 endOffset,
                                               LdpFecTlvPwIdElement & element );

} // namespace Ldp
