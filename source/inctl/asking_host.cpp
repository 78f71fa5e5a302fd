// The host of a command that looks names up.
#include "inctl/asking_host.hpp"

#include "inctl/host.hpp"

#include <optional>
#include <unistd.h>

namespace inctl {
namespace {

// Of the main thread.
std::optional<Host> host;
bool lookUpRuns = false;

} // namespace

void startAskingHost()
{
    host.emplace();
}

void leaveLookUpBehind()
{
    lookUpRuns = true;
}

void endAskingHost( Exit exit )
{
    if ( lookUpRuns )
        _exit( static_cast<int>( exit ) ); // every line was flushed when it was written
    host.reset();
}

} // namespace inctl
