// The module of the IRI library: nothing to start and nothing to stop.
#include "iri/iri_module.h"

namespace {

constexpr pbModuleRecord record = {
    .name = "iri",
    .description = "IRI grammar",
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

extern "C" const struct pbModule *iriModule( void ) { return &module; }
