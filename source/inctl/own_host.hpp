// A host of its own for this process: loopback alone, and a resolver that asks a name server there.
#ifndef INCTL_OWN_HOST_HPP
#define INCTL_OWN_HOST_HPP

#include <optional>
#include <string>
#include <vector>

namespace inctl {

// Moves the process, which must have a single thread, into namespaces of its own, as the owner of a user namespace when
// it is not privileged. The kernel removes all of it with the process. Returns why that cannot be, if it cannot.
std::optional<std::string> tryEnterOwnHost();

// dnsmasq on 127.0.0.1, which knows what the arguments say and asks nobody else; it ends with this object, or with the
// process.
class NameServer {
  public:
    // Answers when it is constructed. Throws Failure when the program is not there or does not start.
    explicit NameServer( const std::vector<std::string> &arguments );
    ~NameServer();
    NameServer( const NameServer & ) = delete;
    NameServer &operator=( const NameServer & ) = delete;

  private:
    int process_;
};

} // namespace inctl

#endif
