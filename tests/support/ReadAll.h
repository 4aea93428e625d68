// Reads all that a parser offers, so that a sanitizer sees every octet that an agent could come to read:
// every attribute by its record, and what that leads to.
#pragma once

#include "Ldp/LdpUtils.h"

namespace Fuzz {

// Takes values in, so that no read of one can be left out.
class Sink {
 public:
   ~Sink();
   void take( U64 number ) noexcept { sum_ = sum_ * 31 + number; }
   void take( Vorn::String const & text ) noexcept { take( text.hash() ); }

 private:
   U64 sum_ = 0;
};

// Every attribute of an object that is known by its record.
void readRecord( Sink & sink, void * object, Vorn::VornType const & type );
inline void readObject( Sink & sink, Vorn::PtrInterface const & object ) {
   readRecord( sink, const_cast< Vorn::PtrInterface * >( &object ), *object.fwkType() );
}
template< class View >
void readView( Sink & sink, View const & view ) {
   Vorn::NrcPtrInterface const & base = view;
   readRecord( sink, const_cast< Vorn::NrcPtrInterface * >( &base ), View::_vornType );
}

// The PDU and every message in it; the caller has asked the guard.
void readPdu( Sink & sink, Vorn::Ptr< Lumo::Pkt > const & pkt, U32 offset );
// A parser of any class, its TLVs and its FEC.
void readMessage( Sink & sink, Ldp::LdpMsgParser const & parser );
void readFecTlv( Sink & sink, Ldp::LdpFecTlvParser const & parser );

} // namespace Fuzz
