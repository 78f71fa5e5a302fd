// The module of the RFC codec library: nothing to start and nothing to stop.
#include "rfc/rfc_module.h"

namespace {

constexpr pbModuleRecord record = {
    .name = "rfc",
    .description = "RFC codecs",
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

extern "C" const struct pbModule *rfcModule( void ) { return &module; }
