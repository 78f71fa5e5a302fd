// prDomain: a pool of threads of its own whose processes may block. The processes hold the pool's scheduler, not the
// domain, so that the domain's last release can stop it.
#include "pr/pr_domain.h"

#include "pb/pb_string.hpp"
#include "pr/pr_scheduler.hpp"

PB_SORT_DECLARE( pr___sort_PR_DOMAIN )
struct prDomain final : pb::Object<struct prDomain, pr___sort_PR_DOMAIN> {
    const pb::Ref<struct prScheduler> scheduler;

    prDomain( pbInt threads, pbInt priority )
        : scheduler( pb::make<struct prScheduler>( "prDomain", threads, priority ) )
    {
    }
    ~prDomain() { scheduler->stop(); }
};
PB_OBJECT_DEFINE( prDomain, pr___sort_PR_DOMAIN )

extern "C" struct prDomain *prDomainTryCreate( pbInt threads, pbInt priority, uint64_t flags )
{
    PB_ASSERT( threads >= 1 && threads <= 64 );
    PB_ASSERT( priority >= 0 && priority <= 4 );
    PB_ASSERT( !flags );
    pb::Ref<struct prDomain> domain = pb::make<struct prDomain>( threads, priority );
    return domain->scheduler->start() == threads ? domain.release() : nullptr;
}

extern "C" struct prScheduler *pr___DomainScheduler( const struct prDomain *domain ) { return domain->scheduler.get(); }
