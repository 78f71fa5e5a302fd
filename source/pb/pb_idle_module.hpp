// The module of a library with nothing to start and nothing to stop. In-tree only.
#ifndef PB_IDLE_MODULE_HPP
#define PB_IDLE_MODULE_HPP

#include "pb/pb_module.h"

namespace pb {

constexpr pbModuleRecord idleModuleRecord( const char *name, const char *description )
{
    return { .name = name,
             .description = description,
             .version = "17.1",
             .requiredModules = "pb",
             .productName = "Internetworking",
             .productVersion = { 17, 1, 0 },
             .buildTime = "",
             .vendor = "" };
}

// The record outlives the module: both are static.
constexpr pbModule idleModule( const pbModuleRecord *record )
{
    return { .record = record,
             .startup = [] { return pbBool{ 1 }; },
             .reserved = nullptr,
             .shutdown = [] {},
             .shutdownWait = [] {},
             .personality = nullptr };
}

} // namespace pb

#endif
