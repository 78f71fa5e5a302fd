// The run directory, where hosts put their sockets: $RUNTIME_DIRECTORY, else /run/inctl for root, else
// $XDG_RUNTIME_DIR/inctl, else /tmp/inctl-UID. NAME.sock is the socket of the host NAME; NAME.lock is held while
// that runs; a service manager may give each service a directory of its own inside.
#ifndef INCTL_RUN_DIRECTORY_HPP
#define INCTL_RUN_DIRECTORY_HPP

#include <string>
#include <vector>

namespace inctl {

std::string runDirectory();

// Makes it where it is missing, for its owner alone. Throws Failure when it is a symbolic link, belongs to somebody
// else or lets others in: whoever can write there could take the place of a host.
void requireRunDirectory( const std::string &path );

// A host that may run.
struct HostPlace {
    std::string name;
    std::string socket;
};
// Those that have a socket in the directory or in one directly below it, by name.
std::vector<HostPlace> hostPlaces( const std::string &directory );

// The name of the host that runs the file: its stem, each character but letters, digits, "_", "-" and "." as "_".
std::string hostName( const std::string &file );

} // namespace inctl

#endif
