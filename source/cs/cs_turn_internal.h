// Turn: lets one operation at a time through that calls into sorts, and so must not hold a monitor.
#ifndef CS_TURN_INTERNAL_H
#define CS_TURN_INTERNAL_H

#include "pb/pb_monitor.hpp"

#include <thread>

namespace cs {

class PB_CAPABILITY( "turn" ) Turn {
public:
    void take() PB_ACQUIRE() PB_NO_THREAD_SAFETY_ANALYSIS
    {
        pb::Guard guard( monitor_ );
        PB_ASSERT_TEXT( owner_ != std::this_thread::get_id(), "called from inside a callback of a sort" );
        while ( owner_ != std::thread::id() )
            given_.wait( monitor_ );
        owner_ = std::this_thread::get_id();
    }
    void give() PB_RELEASE() PB_NO_THREAD_SAFETY_ANALYSIS
    {
        pb::Guard guard( monitor_ );
        owner_ = {};
        given_.wakeOne();
    }

private:
    pb::Monitor monitor_;
    pb::Condition given_;
    std::thread::id owner_ PB_GUARDED_BY( monitor_ );
};

// Has the turn for a scope.
class PB_SCOPED_CAPABILITY TurnTaken {
public:
    explicit TurnTaken( Turn &turn ) PB_ACQUIRE( turn ) : turn_( turn ) { turn_.take(); }
    ~TurnTaken() PB_RELEASE() { turn_.give(); }
    TurnTaken( const TurnTaken & ) = delete;
    TurnTaken &operator=( const TurnTaken & ) = delete;

private:
    Turn &turn_;
};

} // namespace cs

#endif
