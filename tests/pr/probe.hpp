// Probe: an argument of processes that runs what a test gives it and counts its own destructions.
#ifndef PR_PROBE_HPP
#define PR_PROBE_HPP

#include "pb/pb_object.hpp"
#include "pb/pb_signal.h"
#include "pb/pb_signalable.h"
#include "pr/pr_domain.h"
#include "pr/pr_process.h"
#include "pr/pr_test.hpp"

#include <functional>

PB_SORT_DECLARE( prProbeSort )
struct Probe final : pb::Object<Probe, prProbeSort> {
    const std::function<void()> body;
    std::atomic<int> *const destroyed;

    explicit Probe( std::function<void()> run, std::atomic<int> *destructions = nullptr )
        : body( std::move( run ) ), destroyed( destructions )
    {
    }
    ~Probe()
    {
        if ( destroyed )
            ++*destroyed;
    }
};
inline constinit const struct pbSort prProbeSort = pb::detail::makeSort<Probe>( "PROBE" );

using Process = pb::Ref<struct prProcess>;

inline void runProbe( struct pbObj *argument ) { static_cast<Probe *>( argument )->body(); }

// A process that runs the body, in the domain if there is one. The process alone holds the probe.
inline Process process( std::function<void()> body, std::atomic<int> *destroyed = nullptr, pbInt priority = 1,
                        struct prDomain *domain = nullptr )
{
    const pb::Ref<Probe> probe = pb::make<Probe>( std::move( body ), destroyed );
    return pb::adopt( domain ? prProcessCreateInDomainCstr( domain, priority, runProbe, probe.get(), "probe", -1 )
                             : prProcessCreateWithPriorityCstr( priority, runProbe, probe.get(), "probe", -1 ) );
}

#endif
