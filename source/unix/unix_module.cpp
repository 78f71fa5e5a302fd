// The module of the Unix support library: nothing to start and nothing to stop.
#include "unix/unix_module.h"

namespace {

constexpr pbModuleRecord record = {
    .name = "unix",
    .description = "Descriptor observer and system error texts",
    .version = "17.1",
    .requiredModules = "pb",
    .productName = "Internetworking",
    .productVersion = { 17, 1, 0 },
    .buildTime = "",
    .vendor = "",
};
constexpr pbModule module = {
    .record = &record,
    .startup = [] { return pbBool{ 1 }; },
    .reserved = nullptr,
    .shutdown = [] {},
    .shutdownWait = [] {},
    .personality = nullptr,
};

} // namespace

extern "C" const struct pbModule *unixModule( void ) { return &module; }
