// Octets from a peer into the attribute log. The first octet of the input says whether this end writes too,
// and whether the rest is a whole stream or records for a tree that is there already, whose heads are put
// together here. What is refused must leave the model as it was.
#include "framework/LogKinds.h"
#include "framework/LogText.h"

#include "Vorn/Assert.h"
#include "Vorn/NboAttrLog.h"

#include <set>
#include <vector>

using namespace Test;
using Vorn::Ptr;
using Vorn::StreamAdapter;
using Vorn::NboAttrLog::Demuxer;
using Vorn::NboAttrLog::Out;

namespace {

using Octets = std::vector< U8 >;

/// Takes one record after the other and compares what a refused one left.
class Reader {
 public:
   explicit Reader( Vorn_BitSet flags )
        : out_( Vorn::newObject< Out >( 512u ) ), demuxer_( Vorn::newObject< Demuxer >( out_, flags ) ) {}
   ~Reader() {
      // A peer can tie twigs to rings, which nobody else would ever release.
      for ( Twig * twig : twigs_ ) {
         twig->palIs( nullptr );
         twig->referenceDec();
      }
   }
   Reader( Reader const & ) = delete;
   Reader & operator=( Reader const & ) = delete;

   /// False when it was refused.
   bool take( U8 const * octets, std::size_t bytes ) {
      std::string const before = text();
      try {
         demuxer_->bytesIs( octets, bytes );
      } catch ( Vorn::AttrLogRecordException const & ) {
         VORN_ASSERT( text() == before );
         return false;
      }
      VORN_ASSERT( !out_->takeException() );
      out_->drained( out_->bytes() );
      for ( auto const & root : demuxer_->roots() ) {
         gather( *root );
      }
      return true;
   }

 private:
   std::string text() const {
      std::string all;
      for ( auto const & root : demuxer_->roots() ) {
         all += logged( *root ) + "\n";
      }
      return all;
   }

   void gather( Vorn::Entity & entity ) {
      if ( auto * const twig = dynamic_cast< Twig * >( &entity ) ) {
         if ( twigs_.insert( twig ).second ) twig->referenceInc();
      } else if ( auto * const branch = dynamic_cast< Branch * >( &entity ) ) {
         for ( auto it = branch->twigColl().begin(); it; it.advance() ) {
            gather( *it );
         }
      } else if ( auto * const tree = dynamic_cast< Tree * >( &entity ) ) {
         if ( tree->top() ) gather( *tree->top() );
         if ( tree->crown() ) gather( *tree->crown() );
         for ( auto it = tree->branchColl().begin(); it; it.advance() ) {
            gather( *it );
         }
      }
   }

   Ptr< Out > out_;
   Ptr< Demuxer > demuxer_;
   std::set< Twig * > twigs_; // each is counted once
};

U32 number( U8 const * at ) { return U32( at[0] ) << 24 | U32( at[1] ) << 16 | U32( at[2] ) << 8 | at[3]; }

/// A whole stream, cut where its lengths say.
void stream( Reader & reader, U8 const * at, std::size_t left ) {
   std::size_t piece = 8;
   while ( left ) {
      piece = std::min( piece, left );
      if ( !reader.take( at, piece ) ) return;
      at += piece;
      left -= piece;
      piece = left < 4 ? left : std::size_t( number( at ) ) + 4;
   }
}

/// Records for a tree with a branch and a twig: kind, entity, attribute, number of octets, octets.
void records( Reader & reader, U8 const * at, std::size_t left ) {
   Ptr< Tree > const tree = treeFactory( Vorn::Name( "tree" ) );
   tree->branchIs( Vorn::Name( "b" ) )->twigIs( 1U, Vorn::String( "oak" ), U16( 2 ) );
   {
      auto const out = Vorn::newObject< Out >();
      tree->vornNboAttrLogSaIs( 0, 0, out );
      reader.take( out->data(), out->bytes() );
   }
   while ( left >= 4 ) {
      std::size_t const bytes = std::min< std::size_t >( at[3], left - 4 );
      // The ids are small numbers, and their negatives.
      U32 const attribute = at[2] & 0x80   ? 0u - ( 0x100u + ( at[2] & 0x7fu ) )
                            : at[2] < 0x40 ? 0x100u + at[2]
                                           : at[2] + 0x50u;
      U32 const length = U32( bytes ) + 11;
      Octets record{ U8( length >> 24 ),
                     U8( length >> 16 ),
                     U8( length >> 8 ),
                     U8( length ),
                     at[0],
                     at[1] & 0x80u ? U8( 0x80 ) : U8( 0 ),
                     0,
                     0,
                     U8( at[1] & 0x7fu ),
                     U8( attribute >> 24 ),
                     U8( attribute >> 16 ),
                     U8( attribute >> 8 ),
                     U8( attribute ),
                     0 };
      record.insert( record.end(), at + 4, at + 4 + bytes );
      record.push_back( 2 );
      if ( !reader.take( record.data(), record.size() ) ) return;
      at += 4 + bytes;
      left -= 4 + bytes;
   }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 2 ) return 0;
   Reader reader( data[0] & 1 ? Vorn_BitSet( 0 ) : Vorn_BitSet( StreamAdapter::readOnly ) );
   data[0] & 2 ? records( reader, data + 1, size - 1 ) : stream( reader, data + 1, size - 1 );
   return 0;
}
