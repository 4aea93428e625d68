// From tapes to dicts.
#include "Tape.h"

#include "ByAddress.h"
#include "Values.h"

#include "reporters/Shape.h"

namespace LdpPython {

using namespace LdpTool;

namespace {

/// A str for each literal that is a key.
PyObject * keyOf( Tape::Item const & item ) {
   static auto & keys = *new ByAddress< char, PyObject * >;
   return keys.of( item.key, [&] {
      PyObject * made = PyUnicode_FromStringAndSize( item.key, py::ssize_t( item.keySize ) );
      if ( !made ) throw py::error_already_set();
      PyUnicode_InternInPlace( &made );
      return made;
   } );
}

} // namespace

py::dict Player::next() {
   Tape::Item const * item = &tape_.items()[at_++];
   if ( item->op == Tape::Op::pdu ) {
      pdu_ = py::dict();
      fill( pdu_.ptr() );
      item = &tape_.items()[at_++];
   }
   PyObject * const object = item->op == Tape::Op::message ? PyDict_Copy( pdu_.ptr() ) : PyDict_New();
   if ( !object ) throw py::error_already_set();
   auto const held = py::reinterpret_steal< py::dict >( object );
   fill( object );
   return held;
}

void Player::fill( PyObject * object ) {
   for ( ;; ) {
      Tape::Item const & item = tape_.items()[at_++];
      if ( item.op == Tape::Op::endObject ) return;
      py::object const value = read( item );
      if ( PyDict_SetItem( object, keyOf( item ), value.ptr() ) < 0 ) throw py::error_already_set();
   }
}

py::object Player::read( Tape::Item const & item ) {
   switch ( item.op ) {
   case Tape::Op::boolean: return py::bool_( item.number != 0 );
   case Tape::Op::number: return py::int_( item.number );
   case Tape::Op::real: return py::float_( item.real );
   case Tape::Op::text: return textOf( { tape_.at( item ), item.octets.size } );
   case Tape::Op::octets: return py::bytes( tape_.at( item ), item.octets.size );
   case Tape::Op::typed: return toPython( *item.type, tape_.at( item ), nullptr );
   case Tape::Op::array: {
      py::list list;
      while ( tape_.items()[at_].op != Tape::Op::endArray )
         list.append( read( tape_.items()[at_++] ) );
      ++at_;
      return list;
   }
   default: {
      py::dict object;
      fill( object.ptr() );
      return object;
   }
   }
}

void TapeReporter::onPdu( Pdu const & pdu ) {
   begin_ = pdu.origin.arrival.frame;
   tape_->pdu();
   Shape::writeGoodPdu( *tape_, pdu );
   tape_->endObject();
}

void TapeReporter::onMessage( Message const & message ) {
   tape_->message();
   Shape::writeMessage( *tape_, message, texts_ );
   tape_->endObject();
   if ( message.bad() && !defect_.found )
      note( message.judge().statusCode(), message.judge().reason(), begin_ + faultOf( message ).offset );
}

void TapeReporter::onBadPdu( Pdu const & pdu ) {
   tape_->object();
   Shape::writeBadPdu( *tape_, pdu, texts_ );
   tape_->endObject();
   if ( !defect_.found )
      note( pdu.pdu.statusCode(), pdu.pdu.reason(), pdu.origin.arrival.frame + faultOf( pdu ).offset );
}

void TapeReporter::onFatalPdu( Pdu const & pdu, Ldp::LdpPduGuardResult const & fatal ) {
   tape_->object();
   Shape::writeFatalPdu( *tape_, pdu, fatal );
   tape_->endObject();
   if ( !defect_.found )
      note( pdu.pdu.statusCode(), pdu.pdu.reason(), pdu.origin.arrival.frame + fatal.offset );
}

void TapeReporter::note( Ldp::LdpStatusCode status, Vorn::String const & reason, std::uint64_t offset ) {
   defect_ = { true, status, std::string( reason.view() ), offset };
}

} // namespace LdpPython
