// The module of the trace library: nothing to start and nothing to stop.
#include "tr/tr_module.h"

#include "pb/pb_idle_module.hpp"

namespace {

constexpr pbModuleRecord record = pb::idleModuleRecord( "tr", "Trace streams" );
constexpr pbModule module = pb::idleModule( &record );

} // namespace

extern "C" const struct pbModule *trModule( void ) { return &module; }
