// The module of the RFC codec library: nothing to start and nothing to stop.
#include "rfc/rfc_module.h"

#include "pb/pb_idle_module.hpp"

namespace {

constexpr pbModuleRecord record = pb::idleModuleRecord( "rfc", "RFC codecs" );
constexpr pbModule module = pb::idleModule( &record );

} // namespace

extern "C" const struct pbModule *rfcModule( void ) { return &module; }
