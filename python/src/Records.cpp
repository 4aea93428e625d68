// The type records themselves, for whoever makes something of them: the stubs, a schema.
#include "Entities.h"
#include "Module.h"
#include "Values.h"

#include "views/Tree.h"

namespace LdpPython {

using Vorn::VornAttr;
using Vorn::VornKind;
using Vorn::VornType;

namespace {

std::string attributeForm( VornAttr const & attr ) {
   std::string const form = pythonForm( *attr.type );
   bool const reference = LdpTool::isReference( *attr.type );
   if ( !attr.keyed() ) return reference ? form + " | None" : form;
   std::string const key = pythonForm( *attr.keyType );
   if ( attr.isSet() ) return "Set[" + key + "]";
   if ( attr.kind() == VornKind::queue ) return "Queue[" + form + "]";
   return "Mapping[" + key + ", " + form + "]";
}

py::list records() {
   py::list all;
   auto types = Vorn::typeNodes();
   types.insert( types.begin(), &Vorn::Entity::_vornType ); // which is in no table, being nobody's type
   for ( VornType const * type : types ) {
      bool const entity = type->isDerived( &Vorn::Entity::_vornType );
      bool const tuple = !entity && isTuple( *type );
      if ( !entity && !tuple && !type->isEnum() ) continue;
      py::dict row;
      row["name"] = shortName( *type );
      row["full_name"] = type->name;
      row["kind"] = entity ? "entity" : tuple ? "tuple" : "enum";
      row["base"] = type->base ? py::object( py::str( shortName( *type->base ) ) ) : py::none();
      py::list attributes;
      for ( VornAttr const * attr = type->attributes; attr && attr->name; ++attr ) {
         if ( type->isEnum() ) {
            attributes.append( py::make_tuple( attr->name, attr->id() ) );
         } else if ( entity ? isShown( *attr ) : LdpTool::isPart( *attr ) ) {
            attributes.append(
                 py::make_tuple( attr->name, attributeForm( *attr ), shortName( *attr->owner ) ) );
         }
      }
      row["attributes"] = attributes;
      all.append( row );
   }
   return all;
}

} // namespace

void addRecords( py::module_ & module ) {
   module.def( "records", records,
               "The types that have a class or a set of names here, from their records: a dict for each, "
               "with name,\n"
               "kind (entity, tuple or enum), base and attributes, each of which has a name, the type that "
               "it has in\n"
               "Python, and the type that declares it; of an enumeration, a name and a number." );
}

} // namespace LdpPython
