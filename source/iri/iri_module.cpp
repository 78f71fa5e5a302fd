// The module of the IRI library: nothing to start and nothing to stop.
#include "iri/iri_module.h"

#include "pb/pb_idle_module.hpp"

namespace {

constexpr pbModuleRecord record = pb::idleModuleRecord( "iri", "IRI grammar" );
constexpr pbModule module = pb::idleModule( &record );

} // namespace

extern "C" const struct pbModule *iriModule( void ) { return &module; }
