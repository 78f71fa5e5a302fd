// The module of the process library: the default scheduler's threads run between start-up and shut-down phase two.
#include "pr/pr_module.h"

#include "pr/pr_scheduler.hpp"

namespace {

constexpr pbModuleRecord record = {
    .name = "pr",
    .description = "Scheduled processes",
    .version = "17.1",
    .requiredModules = "pb",
    .productName = "Internetworking",
    .productVersion = { 17, 1, 0 },
    .buildTime = "",
    .vendor = "",
};
constexpr pbModule module = {
    .record = &record,
    .startup = []() -> pbBool { return pr___SchedulerDefault()->start() > 0; },
    .reserved = nullptr,
    .shutdown = [] {},
    .shutdownWait = [] { pr___SchedulerDefault()->stop(); },
    .personality = nullptr,
};

} // namespace

extern "C" const struct pbModule *prModule( void ) { return &module; }
