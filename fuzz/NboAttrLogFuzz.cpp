// Octets from a peer into the attribute log. The first octet of the input says what they meet: whether this
// end writes, whether the other may, what is there already, and whether the rest is a whole stream or records
// for that, whose heads are put together here. What is refused must leave the model as it was.
#include "support/LogKinds.h"
#include "support/LogText.h"

#include "Acl/PrefixList.h"
#include "Ldp/LdpFec.h"
#include "Ldp/LdpFecFilter.h"
#include "Ldp/LdpP2mpOpaqueTable.h"
#include "Ldp/LdpStatus.h"
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

/// Bits of the first octet.
enum Mode : U8 {
   thisWrites = 1,
   forRecords = 2,      ///< records for what is there, else a stream
   otherReads = 4,      ///< what comes is refused, with what this end carries of its own left alone
   modelTypes = 8,      ///< what is there is of the model's own types
   cutInTheMiddle = 16, ///< the second half comes by another connection, which is offered what the first left
};

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

   Ptr< Out > const & out() const { return out_; }
   std::vector< Ptr< Vorn::Entity > > const & roots() const { return demuxer_->roots(); }
   void rootIs( Ptr< Vorn::Entity > const & entity ) { demuxer_->rootIs( entity ); }

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

/// Something of most kinds, of the types of the tests or of the model's own, with references to roots.
std::vector< Ptr< Vorn::Entity > > originals( U8 mode ) {
   using Vorn::Name;
   if ( !( mode & modelTypes ) ) {
      Ptr< Tree > const tree = treeFactory( Name( "tree" ) );
      tree->branchIs( Name( "b" ) )->twigIs( 1U, Vorn::String( "oak" ), U16( 2 ) );
      return { tree };
   }
   auto const status = Ldp::statusFactory( L3::VrfName( "default" ) );
   Ldp::LdpIdentifier const peer( 0x0a000001, 0 );
   auto const session = status->ldpSessionStatusCollIs( "s" )->sessionStatusIs( Ldp::LdpSessionId( peer ) );
   session->checkInit();
   session->sessionStateLogEntryColl()->sessionStateLogEntryEnq( Ldp::LdpSessionStateLogEntry() );
   session->peerCapabilityIs( Ldp::LdpTlvType( 0x506 ), true );
   status->ldpAdjStatusCollIs( "a" )->adjStatusIs( Ldp::LdpAdjId( peer, Lumo::IntfId( "Ethernet1" ) ) );
   auto const fecs = Ldp::ldpFecConfigCollFactory( Name( "fecs" ) );
   fecs->fecConfigNotifier()->lastFecConfigIs( fecs->fecConfigIs( Mpls::FwdEqvClass( 1, 2 ) ) );
   auto const values = Mpls::mldpOpaqueValueTableFactory( Name( "values" ) );
   auto const table = Ldp::ldpP2mpOpaqueTableFactory( Name( "table" ) );
   table->tableIs( values );
   table->freeIdEnq( 7 );
   auto const list = Acl::prefixListFactory( Name( "list" ) );
   auto const filter = Ldp::ldpFecFilterFactory( Name( "filter" ) );
   filter->prefixListIs( list );
   return { status, fecs, values, table, list, filter };
}

/// Records for the originals, which came by a log of their own: kind, entity, attribute, number of octets,
/// octets.
void records( Reader & reader, U8 mode, U8 const * at, std::size_t left ) {
   {
      // To an end that takes nothing its own entities stand ready.
      auto const all = mode & otherReads ? std::vector< Ptr< Vorn::Entity > >() : originals( mode );
      auto const out = Vorn::newObject< Out >();
      for ( auto const & entity : all ) {
         entity->vornNboAttrLogSaIs( 0, 0, out );
      }
      bool const taken = reader.take( out->data(), out->bytes() );
      VORN_ASSERT( taken );
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

/// One connection.
class Connection {
 public:
   Connection( U8 mode, std::vector< Ptr< Vorn::Entity > > const & offered )
        : mode_( mode ), reader_( flags( mode ) ) {
      for ( auto const & entity : offered ) {
         reader_.rootIs( entity );
      }
      if ( !( mode & otherReads ) ) return;
      // Only what this end carries of its own is there to be written to, and must not be.
      own_ = originals( mode );
      for ( auto const & entity : own_ ) {
         entity->vornNboAttrLogSaIs( StreamAdapter::remoteReadOnly, 0, reader_.out() );
         before_ += logged( *entity );
      }
   }
   void take( U8 const * at, std::size_t bytes ) {
      mode_ & forRecords ? records( reader_, mode_, at, bytes ) : stream( reader_, at, bytes );
      std::string after;
      for ( auto const & entity : own_ ) {
         after += logged( *entity );
      }
      VORN_ASSERT( after == before_ );
   }
   std::vector< Ptr< Vorn::Entity > > const & roots() const { return reader_.roots(); }

 private:
   static Vorn_BitSet flags( U8 mode ) {
      return Vorn_BitSet( ( mode & thisWrites ? 0u : U32( StreamAdapter::readOnly ) ) |
                          ( mode & otherReads ? U32( StreamAdapter::remoteReadOnly ) : 0u ) );
   }

   U8 mode_;
   Reader reader_;
   std::vector< Ptr< Vorn::Entity > > own_;
   std::string before_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput( U8 const * data, std::size_t size ) {
   if ( size < 2 ) return 0;
   U8 const mode = *data++;
   --size;
   std::size_t const first = mode & cutInTheMiddle ? size / 2 : size;
   Connection one( mode, {} );
   one.take( data, first );
   if ( first == size ) return 0;
   Connection other( mode, one.roots() );
   other.take( data + first, size - first );
   return 0;
}
