/// \file
/// The adapters of a log by the numbers of their entities. Either end numbers from 1 without a gap, so a
/// number is a place.
#pragma once

#include "Vorn/Impl/StreamAdapter.h"

#include <array>
#include <memory>
#include <vector>

namespace Vorn::NboAttrLog {

class Numbers {
 public:
   using Adapter = Entity::VornNboAttrLogSa;

   /// The adapter of a number, as this end counts, or null.
   Adapter * adapter( U32 number ) const noexcept {
      auto const & pages = pagesOf( number );
      std::size_t const page = pageOf( number );
      return page < pages.size() && pages[page] ? pages[page]->adapters[number % pageNumbers] : nullptr;
   }
   /// Gives a number that is free, or above all others by no more than one.
   void adapterIs( U32 number, Adapter & adapter ) {
      auto & pages = pagesOf( number );
      std::size_t const page = pageOf( number );
      if ( page >= pages.size() ) pages.resize( page + 1 );
      if ( !pages[page] ) pages[page] = std::make_unique< Page >();
      pages[page]->used += !std::exchange( pages[page]->adapters[number % pageNumbers], &adapter );
   }
   /// Takes back a number that was given. A page goes when it is empty.
   void del( U32 number ) noexcept {
      auto & page = pagesOf( number )[pageOf( number )];
      page->adapters[number % pageNumbers] = nullptr;
      if ( !--page->used ) page = nullptr;
   }

 private:
   static constexpr U32 pageNumbers = 256;
   struct Page {
      std::array< Adapter *, pageNumbers > adapters{};
      U32 used = 0;
   };
   using Pages = std::vector< std::unique_ptr< Page > >;

   static std::size_t pageOf( U32 number ) noexcept { return ( number & ~numberedByPeer ) / pageNumbers; }
   Pages & pagesOf( U32 number ) noexcept { return number & numberedByPeer ? peers_ : own_; }
   Pages const & pagesOf( U32 number ) const noexcept { return number & numberedByPeer ? peers_ : own_; }

   Pages own_;
   Pages peers_;
};

} // namespace Vorn::NboAttrLog
