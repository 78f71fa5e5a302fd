// ServiceManager: sd_notify(3).
#include "inctl/service_manager.hpp"

#include <fmt/format.h>
#include <systemd/sd-daemon.h>

#include <time.h>

namespace inctl {

void ServiceManager::ready()
{
    send( "READY=1" );
}

void ServiceManager::reloading()
{
    timespec now;
    (void)clock_gettime( CLOCK_MONOTONIC, &now ); // fails for a wrong clock only
    send( fmt::format( "RELOADING=1\nMONOTONIC_USEC={}", now.tv_sec * 1'000'000LL + now.tv_nsec / 1000 ) );
}

void ServiceManager::stopping()
{
    send( "STOPPING=1" );
}

void ServiceManager::status( const std::string &text )
{
    if ( text != status_ )
        send( "STATUS=" + text );
    status_ = text;
}

void ServiceManager::alive()
{
    send( "WATCHDOG=1" );
}

std::optional<std::chrono::microseconds> ServiceManager::aliveInterval()
{
    uint64_t microseconds = 0;
    if ( sd_watchdog_enabled( 0, &microseconds ) <= 0 )
        return std::nullopt;
    return std::chrono::microseconds( microseconds / 2 );
}

// A manager that does not listen is no reason to end.
void ServiceManager::send( const std::string &state )
{
    (void)sd_notify( 0, state.c_str() );
}

} // namespace inctl
