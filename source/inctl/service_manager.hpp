// ServiceManager: tells the service manager that started the program how it stands, by sd_notify(3). Without one, which
// is told by NOTIFY_SOCKET, everything here does nothing.
#ifndef INCTL_SERVICE_MANAGER_HPP
#define INCTL_SERVICE_MANAGER_HPP

#include <chrono>
#include <optional>
#include <string>

namespace inctl {

class ServiceManager {
public:
    void ready();
    // Until ready is told again.
    void reloading();
    void stopping();
    // Nothing is sent when it is the same as before.
    void status( const std::string &text );
    void alive();

    // How often it wants to be told alive: half of WATCHDOG_USEC; none when it does not watch this process.
    static std::optional<std::chrono::microseconds> aliveInterval();

private:
    void send( const std::string &state );

    std::string status_;
};

} // namespace inctl

#endif
