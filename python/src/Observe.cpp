// Callbacks of Python for changes of live objects.
#include "Observe.h"

#include "Entities.h"
#include "Errors.h"
#include "Values.h"

#include "Vorn/GenericIf.h"

#include <algorithm>

namespace LdpPython {

using Vorn::Entity;
using Vorn::PtrInterface;
using Vorn::VornAttr;

/// The observer of one entity alone.
class Observation::Own : public Vorn::GenericIf::NotifieeConst {
 public:
   Own( Observation & all, Entity & entity )
        : all_( all ), entity_( entity ), bound_( entity.fwkType()->genericIfNotifiee( *this ) ) {
      notifiee().isRegisteredNotifieeIs( true );
      notifiee().notifierIs( Vorn::Ptr< PtrInterface const >( &entity ) );
      notifiee().isWeakReferenceIs( true );
   }
   ~Own() override { notifiee().notifierIs( nullptr ); }

   void onRawAttribute( U32 attributeId ) override { tell( attributeId, nullptr ); }
   void onRawAttribute( U32 attributeId, void const * key, bool ) override { tell( attributeId, key ); }

 private:
   void tell( U32 attributeId, void const * key ) {
      all_.tell( entity_, *entity_.fwkType()->attribute( attributeId ), key );
   }
   PtrInterface::NotifieeConst & notifiee() const {
      return static_cast< PtrInterface::NotifieeConst & >( *bound_ );
   }

   Observation & all_;
   Entity & entity_; // tells for as long as it is there
   Vorn::Ptr< PtrInterface > bound_;
};

Observation::Observation( Entity & entity, SourcePtr const & source, py::object callback, bool below )
     : source_( source ), callback_( std::move( callback ) ) {
   if ( below ) {
      below_ =
           std::make_unique< LdpTool::TreeWatcher >( entity, [this]( LdpTool::TreeChange const & change ) {
              tell( change.entity, change.attr, change.key );
           } );
   } else {
      own_ = std::make_unique< Own >( *this, entity );
   }
}

Observation::~Observation() = default;

// While something writes, what observes may be under way further up; it goes when that is done.
void Observation::stop() {
   auto const source = source_.lock();
   callback_ = {};
   if ( source && !source->busy ) source->sweep();
}

// What goes is not told of what goes with it: nobody could keep the object that the callback gets.
void Observation::tell( Entity const & entity, VornAttr const & attr, void const * key ) {
   auto const source = source_.lock();
   if ( !callback_ || !source || entity.vornMarkedForDeletion() ) return;
   try {
      py::object const called = callback_;
      called( wrap( &entity, source ), py::str( attr.name ),
              key ? toPython( *attr.keyType, key, source ) : py::none() );
   } catch ( py::error_already_set & error ) {
      if ( error.matches( PyExc_Exception ) ) {
         error.discard_as_unraisable( attr.name );
      } else if ( !source->pending ) {
         source->pending = std::current_exception();
      }
   } catch ( std::exception const & error ) {
      PyErr_SetString( errors.error, error.what() );
      PyErr_WriteUnraisable( nullptr );
   }
}

void Source::stopAll() {
   for ( auto const & one : std::vector( observations ) )
      one->stop();
}

// A callback may be the last that holds others, which stop others when they go.
void Source::sweep() {
   auto const gone = std::stable_partition( observations.begin(), observations.end(),
                                            []( auto const & one ) { return one->active(); } );
   std::vector const held( std::make_move_iterator( gone ), std::make_move_iterator( observations.end() ) );
   observations.erase( gone, observations.end() );
}

int Source::visitCallbacks( visitproc visit, void * arg ) const {
   for ( auto const & one : observations )
      Py_VISIT( one->callback() );
   return 0;
}

Busy::Busy( bool & busy ) : busy_( busy ) {
   if ( busy ) raise( errors.error, "this is under way already: in a callback of it, or in another thread" );
   busy_ = true;
}

py::object observe( Entity & entity, SourcePtr const & source, py::handle callback, bool below ) {
   if ( !PyCallable_Check( callback.ptr() ) ) throw py::type_error( "a callback can be called" );
   auto const made = std::make_shared< Observation >(
        entity, source, py::reinterpret_borrow< py::object >( callback ), below );
   source->observations.push_back( made );
   return py::cast( made );
}

void addObservation( py::module_ & module ) {
   py::class_< Observation, std::shared_ptr< Observation > >(
        module, "Observation",
        "A callback that is told of changes, until stop() or the end of a with block." )
        .def( "stop", &Observation::stop, "No call comes any more." )
        .def_property_readonly( "active", &Observation::active, "Whether calls still come." )
        .def( "__enter__", []( py::object self ) { return self; } )
        .def( "__exit__", []( Observation & self, py::args const & ) { self.stop(); } );
}

} // namespace LdpPython
