// The module of this library.
#include "pb/pb_module.h"
#include "pb/pb_timer.hpp"
#include "pb/pb_wake.hpp"

namespace {

constexpr pbModuleRecord record = {
    .name = "pb",
    .description = "Objects, values, signals, threads and modules",
    .version = "17.1",
    .requiredModules = "",
    .productName = "Internetworking",
    .productVersion = { 17, 1, 0 },
    .buildTime = "",
    .vendor = "",
};
constexpr pbModule module = {
    .record = &record,
    // Timers would start their thread themselves, but could not tell anybody when the system refuses it.
    .startup = [] { return pbBool{ pb::timerTryStart() }; },
    .reserved = nullptr,
    .shutdown = [] {},
    .shutdownWait = [] { pb___TimerShutdown(); },
    .personality = nullptr,
};

} // namespace

extern "C" const struct pbModule *pbModuleDescriptor( void ) { return &module; }
