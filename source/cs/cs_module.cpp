// The module of the configuration service: it has no tables of its own to start; sorts and modules come and go with
// their backends.
#include "cs/cs_module.h"

static const struct pbModuleRecord cs___module_record = {
    "cs", "Configuration service", "17.1", "pb tr", "Internetworking", { 17, 1, 0 }, "", "",
};
static const struct pbModule cs___module = {
    &cs___module_record, []() -> pbBool { return true; }, nullptr, [] {}, [] {}, nullptr,
};

extern "C" const struct pbModule *csModule( void ) { return &cs___module; }
