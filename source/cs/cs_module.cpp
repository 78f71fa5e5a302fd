// The module of the configuration service: the sort of its own, conditions.
#include "cs/cs_module.h"

#include "cs/cs_condition_internal.h"
#include "cs/cs_module_backend.h"
#include "pb/pb_global.hpp"

namespace {

constinit pb::Global<struct csModuleBackend> backend;

const struct pbModuleRecord record = {
    "cs", "Configuration service", "17.1", "pb tr", "Internetworking", { 17, 1, 0 }, "", "",
};

pbBool startup()
{
    cs___ConditionCsStartup();
    backend.set( pb::adopt( csModuleBackendCreate( csModule(), nullptr ) ) );
    return true;
}

void shutdown()
{
    backend.invalidate();
    cs___ConditionCsShutdown();
}

const struct pbModule module = { &record, startup, nullptr, shutdown, [] {}, nullptr };

} // namespace

extern "C" const struct pbModule *csModule( void )
{
    return &module;
}
