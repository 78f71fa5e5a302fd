// pb::Region: a region inside an object, a capability of Clang's thread-safety analysis with a rank, as pb::Monitor is.
// In-tree only.
#ifndef PB_REGION_HPP
#define PB_REGION_HPP

#include "pb/pb_monitor.hpp"
#include "pb/pb_object.hpp"
#include "pb/pb_region.h"

namespace pb {

class PB_CAPABILITY( "region" ) Region {
public:
    explicit Region( int rank ) : rank_( rank ) {}
    Region( const Region & ) = delete;
    Region &operator=( const Region & ) = delete;

    void enterShared() PB_THREAD_ANNOTATION( acquire_shared_capability() ) PB_NO_THREAD_SAFETY_ANALYSIS
    {
        enterRank();
        pbRegionEnterShared( region_.get() );
    }
    void enterExclusive() PB_ACQUIRE() PB_NO_THREAD_SAFETY_ANALYSIS
    {
        enterRank();
        pbRegionEnterExclusive( region_.get() );
    }
    void leave() PB_THREAD_ANNOTATION( release_generic_capability() ) PB_NO_THREAD_SAFETY_ANALYSIS
    {
#ifndef NDEBUG
        pb___MonitorRankLeave( rank_ );
#endif
        pbRegionLeave( region_.get() );
    }

private:
    void enterRank()
    {
#ifndef NDEBUG
        pb___MonitorRankEnter( rank_ );
#endif
    }

    const Ref<struct pbRegion> region_ = adopt( pbRegionCreate() );
    [[maybe_unused]] const int rank_;
};

// Hold a region for a scope.
class PB_SCOPED_CAPABILITY SharedGuard {
public:
    explicit SharedGuard( Region &region ) PB_THREAD_ANNOTATION( acquire_shared_capability( region ) )
        : region_( region )
    {
        region_.enterShared();
    }
    ~SharedGuard() PB_THREAD_ANNOTATION( release_generic_capability() ) { region_.leave(); }
    SharedGuard( const SharedGuard & ) = delete;
    SharedGuard &operator=( const SharedGuard & ) = delete;

private:
    Region &region_;
};

class PB_SCOPED_CAPABILITY ExclusiveGuard {
public:
    explicit ExclusiveGuard( Region &region ) PB_ACQUIRE( region ) : region_( region ) { region_.enterExclusive(); }
    ~ExclusiveGuard() PB_RELEASE() { region_.leave(); }
    ExclusiveGuard( const ExclusiveGuard & ) = delete;
    ExclusiveGuard &operator=( const ExclusiveGuard & ) = delete;

private:
    Region &region_;
};

} // namespace pb

#endif
