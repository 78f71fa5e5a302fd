// Host: starts and shuts down the modules.
#include "inctl/host.hpp"

#include "cs/cs_module.h"
#include "in/base/in_module.h"
#include "inctl/exit_code.hpp"
#include "iri/iri_module.h"
#include "pb/pb_string.hpp"
#include "pr/pr_module.h"
#include "rfc/rfc_module.h"
#include "tr/tr_module.h"
#include "unix/unix_module.h"

#include <fmt/format.h>

namespace inctl {

std::span<const struct pbModule *const> modules()
{
    static const struct pbModule *const all[] = { pbModuleDescriptor(), trModule(),  prModule(), unixModule(),
                                                  rfcModule(),          iriModule(), csModule(), inModule() };
    return all;
}

Host::Host()
{
    pb::String reason;
    host_ = pb::adopt( pbHostTryStart( modules().data(), static_cast<pbInt>( modules().size() ), reason.address() ) );
    if ( !host_ )
        throw Failure{ Exit::System, fmt::format( "the modules do not start: {}", pb::utf8( reason ) ) };
}

Host::~Host()
{
    pbHostShutdown( host_.get() );
}

} // namespace inctl
