// Mends the lengths of a mutated input, so that the mutations behind a changed length are not lost on a
// framing error.
#pragma once

#include "Vorn/Api.h"

#include <cstddef>
#include <span>

// The fuzzer's own mutations; in a program that only replays inputs nobody calls it.
extern "C" std::size_t LLVMFuzzerMutate( U8 * data, std::size_t size, std::size_t maxSize );

namespace Fuzz {

inline void lengthIs( std::span< U8 > unit, std::size_t length ) {
   unit[2] = U8( length >> 8 );
   unit[3] = U8( length );
}

// Makes a run of units end with the run: the unit that reaches past it is cut short, what is left over goes
// to the last. `inner` is applied to each unit.
template< class Inner >
void mendUnits( std::span< U8 > run, Inner inner ) {
   while ( run.size() >= 4 ) {
      std::size_t total = ( run[2] * 256u + run[3] ) + 4;
      if ( total > run.size() || run.size() - total < 4 ) {
         total = run.size();
         lengthIs( run, total - 4 );
      }
      inner( run.first( total ) );
      run = run.subspan( total );
   }
}

inline void mendMessage( std::span< U8 > message ) {
   if ( message.size() < 8 ) return;
   mendUnits( message.subspan( 8 ), []( std::span< U8 > ) {} );
}

inline void mendPdu( std::span< U8 > pdu ) {
   if ( pdu.size() < 14 ) return;
   pdu[0] = 0;
   pdu[1] = 1;
   lengthIs( pdu, pdu.size() - 4 );
   mendUnits( pdu.subspan( 10 ), mendMessage );
}

// The custom mutator of inputs whose first octet says where behind it a PDU begins: half of the results have
// lengths that fit.
inline std::size_t mutatePdu( U8 * data, std::size_t size, std::size_t maxSize, unsigned seed ) {
   size = LLVMFuzzerMutate( data, size, maxSize );
   std::size_t const pdu = 1 + ( size ? data[0] & 0x1fu : 0 );
   if ( seed % 2 && size > pdu ) mendPdu( { data + pdu, size - pdu } );
   return size;
}

} // namespace Fuzz
