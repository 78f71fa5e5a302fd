// The module of the Unix support library: nothing to start and nothing to stop.
#include "unix/unix_module.h"

#include "pb/pb_idle_module.hpp"

namespace {

constexpr pbModuleRecord record = pb::idleModuleRecord( "unix", "Descriptor observer and system error texts" );
constexpr pbModule module = pb::idleModule( &record );

} // namespace

extern "C" const struct pbModule *unixModule( void ) { return &module; }
