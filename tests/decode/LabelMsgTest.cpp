// The five label messages: what each requires, and where its TLVs may stand. How each treats its FEC is the
// subject of LabelFecTest.

#include "Expect.h"

#include "Ldp/LdpMsgParser.h"

using namespace Ldp;
using namespace Wire;

namespace {

Hex const fec = tlv( fecTlv, "02 0001 08 0a" );
Hex const label = tlv( genLabelTlv, "00000064" );
Hex const hops = tlv( hopCountTlv, "05" );
Hex const path = tlv( pathVectorTlv, "0a000001 0a000002" );
Hex const reqId = tlv( labelReqMsgIdTlv, "00000009" );
Hex const pwStatusOk = tlv( pwStatusTlv, "00000000" );
Hex const status = tlv( statusTlv, "0000000d 00000005 0401" );
Hex const ignored = tlv( uBit | 258, "ff" );

char const * const notFirst = "FecTlv is not the 1st TLV in the message";
char const * const missingFec = "Missing LdpFecTlv";
char const * const labelSize = "Invalid size for LdpGenLabelTlv";
char const * const hopsSize = "Invalid size for LdpHopCountTlv";
char const * const pathSize = "Invalid size for LdpPathVectorTlv";
char const * const pathInvalid = "LdpPathVectorTlv validation failure";
char const * const reqIdSize = "Invalid size for LdpLabelReqMsgIdTlv";
char const * const pwStatusSize = "Invalid size for LdpPwStatusTlv";
char const * const statusSize = "Invalid size for LdpStatusTlv";

/// A TLV with a value of so many octets.
Hex of( LdpTlvType type, U32 octets ) { return tlv( type, repeat( octets, 0 ) ); }

TEST( LabelMapping, judgement ) {
   auto const m = []( std::initializer_list< Hex > tlvs ) { return msg( LdpLabelMapping, 7, tlvs ); };
   char const * const two = "Message does not have at least 2 TLV";
   char const * const notSecond = "LdpGenLabelTlv is not the 2nd TLV in the message";
   char const * const missingLabel = "Missing LdpGenLabelTlv";
   expectRows(
        ldpLabelMappingMsgParserFactory, "Invalid LDP Label Mapping Msg: ",
        {
             { "FEC and label", m( { fec, label } ), success, "" },
             { "all of them", m( { fec, label, reqId, hops, path, pwStatusOk } ), success, "" },
             { "in another order", m( { fec, label, pwStatusOk, path, hops, reqId } ), success, "" },
             { "repeats", m( { fec, label, hops, hops, path, path, reqId, reqId, pwStatusOk, pwStatusOk } ),
               success, "" },
             { "others are passed over, a bad Status among them",
               m( { fec, label, tlv( statusTlv ), ignored, tlv( addrListTlv ) } ), success, "" },

             { "no TLV", m( {} ), missingMessageParams, two },
             { "one TLV", m( { fec } ), missingMessageParams, two },
             { "one TLV, whatever its type", m( { ignored } ), missingMessageParams, two },
             { "FEC second", m( { ignored, fec } ), missingMessageParams, notFirst },
             { "FEC twice", m( { fec, fec } ), missingMessageParams, notFirst },
             { "FEC third", m( { fec, label, fec } ), missingMessageParams, notFirst },
             { "FEC third, good TLVs behind it", m( { fec, label, fec, hops } ), missingMessageParams,
               notFirst },
             { "label first", m( { label, fec } ), missingMessageParams, notSecond },
             { "label third, good TLVs behind it", m( { fec, hops, label, hops } ), missingMessageParams,
               notSecond },
             { "label third", m( { fec, hops, label } ), missingMessageParams, notSecond },
             { "label twice", m( { fec, label, label } ), missingMessageParams, notSecond },
             { "label's position is judged before its size", m( { fec, hops, of( genLabelTlv, 3 ) } ),
               missingMessageParams, notSecond },
             { "no FEC", m( { hops, label } ), missingMessageParams, missingFec },
             { "no FEC comes before no label", m( { hops, hops } ), missingMessageParams, missingFec },
             { "no label", m( { fec, hops } ), missingMessageParams, missingLabel },
             { "ATM label", m( { fec, tlv( atmLabelTlv, "00000064" ) } ), missingMessageParams,
               missingLabel },
             { "Frame Relay label", m( { fec, tlv( frLabelTlv, "00000064" ) } ), missingMessageParams,
               missingLabel },
             { "a bad TLV comes before a missing one", m( { hops, of( hopCountTlv, 2 ) } ), malformedTlv,
               hopsSize },

             { "label of 3", m( { fec, of( genLabelTlv, 3 ) } ), malformedTlv, labelSize },
             { "label of 5", m( { fec, of( genLabelTlv, 5 ) } ), malformedTlv, labelSize },
             { "hop count of 0", m( { fec, label, of( hopCountTlv, 0 ) } ), malformedTlv, hopsSize },
             { "hop count of 2", m( { fec, label, of( hopCountTlv, 2 ) } ), malformedTlv, hopsSize },
             { "path vector of 0", m( { fec, label, of( pathVectorTlv, 0 ) } ), malformedTlv, pathSize },
             { "path vector of 1", m( { fec, label, of( pathVectorTlv, 1 ) } ), badTlvLength, pathInvalid },
             { "path vector of 3", m( { fec, label, of( pathVectorTlv, 3 ) } ), badTlvLength, pathInvalid },
             { "path vector of 4", m( { fec, label, of( pathVectorTlv, 4 ) } ), success, "" },
             { "path vector of 6", m( { fec, label, of( pathVectorTlv, 6 ) } ), badTlvLength, pathInvalid },
             // Length ffff, total 3; behind it a TLV to be ignored.
             { "path vector of a wrapped length", m( { fec, label, "0104 ffff 3f 0000" } ), malformedTlv,
               pathSize },
             { "request id of 3", m( { fec, label, of( labelReqMsgIdTlv, 3 ) } ), malformedTlv, reqIdSize },
             { "request id of 5", m( { fec, label, of( labelReqMsgIdTlv, 5 ) } ), malformedTlv, reqIdSize },
             { "PW status of 3", m( { fec, label, of( pwStatusTlv, 3 ) } ), malformedTlv, pwStatusSize },
             { "PW status of 5", m( { fec, label, of( pwStatusTlv, 5 ) } ), malformedTlv, pwStatusSize },
             { "what the header says stands", m( { fec, label, tlv( 258 ) } ), unknownTlv,
               "Unknown TLV Type: 258" },
        } );
}

TEST( LabelRequest, judgement ) {
   auto const m = []( std::initializer_list< Hex > tlvs ) { return msg( LdpLabelRequest, 7, tlvs ); };
   expectRows( ldpLabelRequestMsgParserFactory, "Invalid LDP Label Request Msg: ",
               {
                    { "FEC alone", m( { fec } ), success, "" },
                    { "all of them", m( { fec, hops, path } ), success, "" },
                    { "in another order, repeated", m( { fec, path, hops, path, hops } ), success, "" },
                    { "others are passed over, however bad",
                      m( { fec, tlv( labelReqMsgIdTlv ), tlv( statusTlv ), tlv( genLabelTlv ),
                           tlv( pwStatusTlv ) } ),
                      success, "" },

                    { "no TLV", m( {} ), missingMessageParams, "Message does not have at least 1 TLV" },
                    { "no FEC", m( { hops } ), missingMessageParams, missingFec },
                    { "FEC second", m( { hops, fec } ), missingMessageParams, notFirst },
                    { "FEC twice", m( { fec, fec } ), missingMessageParams, notFirst },
                    { "hop count of 2", m( { fec, of( hopCountTlv, 2 ) } ), malformedTlv, hopsSize },
                    { "path vector of 0", m( { fec, of( pathVectorTlv, 0 ) } ), malformedTlv, pathSize },
                    { "path vector of 1", m( { fec, of( pathVectorTlv, 1 ) } ), badTlvLength, pathInvalid },
               } );
}

/// Withdraw and Release have the same rows for all but the FEC.
template< class Parser >
void expectWithdrawal( Factory< Parser > factory, LdpMsgType type, char const * prefix ) {
   auto const m = [type]( std::initializer_list< Hex > tlvs ) { return msg( type, 7, tlvs ); };
   char const * const notSecond = "Label Tlv is not the 2nd TLV in the message";
   expectRows(
        factory, prefix,
        {
             { "FEC alone", m( { fec } ), success, "" },
             { "FEC and label", m( { fec, label } ), success, "" },
             { "all of them", m( { fec, label, status } ), success, "" },
             { "status without a label, twice", m( { fec, status, status } ), success, "" },
             { "others are passed over, however bad",
               m( { fec, tlv( hopCountTlv ), tlv( pathVectorTlv ), tlv( labelReqMsgIdTlv ) } ), success, "" },

             { "no TLV", m( {} ), missingMessageParams, "Message does not have at least 1 TLV" },
             { "no FEC", m( { status } ), missingMessageParams, missingFec },
             { "no FEC, but a label in its place", m( { hops, label } ), missingMessageParams, missingFec },
             { "FEC second", m( { status, fec } ), missingMessageParams, notFirst },
             { "FEC twice", m( { fec, fec } ), missingMessageParams, notFirst },
             { "label first", m( { label, fec } ), missingMessageParams, notSecond },
             { "label behind the status", m( { fec, status, label } ), missingMessageParams, notSecond },
             { "label twice", m( { fec, label, label } ), missingMessageParams, notSecond },
             { "label of 5", m( { fec, of( genLabelTlv, 5 ) } ), malformedTlv, labelSize },
             { "status of 9", m( { fec, of( statusTlv, 9 ) } ), malformedTlv, statusSize },
             { "status of 11", m( { fec, of( statusTlv, 11 ) } ), malformedTlv, statusSize },
        } );
}

TEST( LabelWithdraw, judgement ) {
   expectWithdrawal( ldpLabelWithdrawMsgParserFactory, LdpLabelWithdraw, "Invalid LDP Label Withdraw Msg: " );
}

TEST( LabelRelease, judgement ) {
   // A refused Release names a Request in its text, which tools that search logs depend on.
   expectWithdrawal( ldpLabelReleaseMsgParserFactory, LdpLabelRelease, "Invalid LDP Label Request Msg: " );
}

TEST( LabelAbortReq, judgement ) {
   auto const m = []( std::initializer_list< Hex > tlvs ) { return msg( LdpLabelAbortReq, 7, tlvs ); };
   char const * const two = "Message does not have at least 2 TLV";
   char const * const notSecond = "LdpLabelReqMsgIdTlv is not the 2nd TLV in the message";
   expectRows(
        ldpLabelAbortReqMsgParserFactory, "Invalid LDP Label Abort Request Msg: ",
        {
             { "FEC and request id", m( { fec, reqId } ), success, "" },
             { "others are passed over, however bad",
               m( { fec, reqId, tlv( genLabelTlv ), tlv( hopCountTlv ), tlv( statusTlv ) } ), success, "" },

             { "no TLV", m( {} ), missingMessageParams, two },
             { "FEC alone", m( { fec } ), missingMessageParams, two },
             { "FEC second", m( { hops, fec } ), missingMessageParams, notFirst },
             { "FEC twice", m( { fec, fec } ), missingMessageParams, notFirst },
             { "request id first", m( { reqId, fec } ), missingMessageParams, notSecond },
             { "request id third", m( { fec, hops, reqId } ), missingMessageParams, notSecond },
             { "request id twice", m( { fec, reqId, reqId } ), missingMessageParams, notSecond },
             { "no FEC", m( { hops, reqId } ), missingMessageParams, missingFec },
             { "no FEC comes before no request id", m( { hops, hops } ), missingMessageParams, missingFec },
             { "no request id", m( { fec, hops } ), missingMessageParams, "Missing LdpLabelReqMsgIdTlv" },
             { "request id of 3", m( { fec, of( labelReqMsgIdTlv, 3 ) } ), malformedTlv, reqIdSize },
             { "request id of 5", m( { fec, of( labelReqMsgIdTlv, 5 ) } ), malformedTlv, reqIdSize },
        } );
}

TEST( LabelMsg, assertsItsType ) {
   Hex const other = msg( LdpHello, 7, { fec, label } );
   EXPECT_ASSERTION( parse( ldpLabelMappingMsgParserFactory, other ), "msgHdr_->type() == LdpLabelMapping_" );
   EXPECT_ASSERTION( parse( ldpLabelRequestMsgParserFactory, other ), "msgHdr_->type() == LdpLabelRequest_" );
   EXPECT_ASSERTION( parse( ldpLabelWithdrawMsgParserFactory, other ),
                     "msgHdr_->type() == LdpLabelWithdraw_" );
   EXPECT_ASSERTION( parse( ldpLabelReleaseMsgParserFactory, other ), "msgHdr_->type() == LdpLabelRelease_" );
   EXPECT_ASSERTION( parse( ldpLabelAbortReqMsgParserFactory, other ),
                     "msgHdr_->type() == LdpLabelAbortReq_" );
   // Before the number of TLVs is judged.
   EXPECT_ASSERTION( parse( ldpLabelMappingMsgParserFactory, msg( LdpHello, 7 ) ),
                     "msgHdr_->type() == LdpLabelMapping_" );
}

} // namespace
