// ModuleHost: the library and all that it requires, running as modules while it lives. Once per process: a test program
// holds one for all its cases, or each scenario runs in a child process of its own.
#ifndef SUPPORT_MODULE_HOST_HPP
#define SUPPORT_MODULE_HOST_HPP

#include "cs/cs_module.h"
#include "in/base/in_module.h"
#include "iri/iri_module.h"
#include "pb/pb_module.h"
#include "pb/pb_string.hpp"
#include "pb/pb_wake.hpp"
#include "pr/pr_module.h"
#include "pr/pr_test.hpp"
#include "rfc/rfc_module.h"
#include "tr/tr_module.h"
#include "unix/unix_module.h"

#include <stdexcept>

namespace support {

class ModuleHost {
public:
    ModuleHost()
    {
        const struct pbModule *modules[] = { pbModuleDescriptor(), trModule(), unixModule(), rfcModule(),
                                             iriModule(),          prModule(), csModule(),   inModule() };
        pb::String reason;
        host_ = pb::adopt( pbHostTryStart( modules, PB_SIZEOF_ARRAY( modules ), reason.address() ) );
        if ( !host_ )
            throw std::runtime_error( pb::utf8( reason ) );
    }
    ~ModuleHost() { pbHostShutdown( host_.get() ); }
    ModuleHost( const ModuleHost & ) = delete;
    ModuleHost &operator=( const ModuleHost & ) = delete;

private:
    pb::Ref<struct pbHost> host_;
};

// The clock stands still while it lives; advance moves it and returns when everything that came due has run.
class DrivenClock {
public:
    DrivenClock() { pb___ClockDrive( true ); }
    ~DrivenClock() { pb___ClockDrive( false ); }
    DrivenClock( const DrivenClock & ) = delete;
    DrivenClock &operator=( const DrivenClock & ) = delete;

    void advance( pbInt milliseconds )
    {
        pb___ClockAdvance( milliseconds );
        pr___Quiesce();
    }
};

} // namespace support

#endif
