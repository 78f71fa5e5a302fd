// Host: the library and its platform running inside this process, from construction to destruction.
#ifndef INCTL_HOST_HPP
#define INCTL_HOST_HPP

#include "pb/pb_module.h"
#include "pb/pb_object.hpp"

#include <span>

namespace inctl {

// Every module that the host starts, lowest first; the last is the library itself.
std::span<const struct pbModule *const> modules();

class Host {
public:
    // Once per process. Throws Failure.
    Host();
    // Every channel and stack must be gone: the library's I/O threads insist on it.
    ~Host();
    Host( const Host & ) = delete;
    Host &operator=( const Host & ) = delete;

private:
    pb::Ref<struct pbHost> host_;
};

} // namespace inctl

#endif
