// An object that counts its wakes and, when asked to, says what happens to it. One source of a program includes it.
#ifndef SUPPORT_TARGET_HPP
#define SUPPORT_TARGET_HPP

#include "pb/pb_wake.hpp"

#include <functional>

PB_SORT_DECLARE( test___sort_TARGET )

namespace support {

struct Target final : pb::Object<Target, test___sort_TARGET> {
    int wakes = 0; // plain memory: ThreadSanitizer sees two wakes that are not ordered
    std::function<void()> onWake, onFree;

    explicit Target( std::function<void()> onWake = nullptr ) : onWake( std::move( onWake ) ) {}
    ~Target()
    {
        if ( onFree )
            onFree();
    }
    static void wake( pbObj *obj )
    {
        auto *target = static_cast<Target *>( obj );
        ++target->wakes;
        if ( target->onWake )
            target->onWake();
    }
};

inline auto signalableOf( const pb::Ref<Target> &target )
{
    return pb::adopt( pb___SignalableCreate( Target::wake, target.get() ) );
}
inline auto alertableOf( const pb::Ref<Target> &target )
{
    return pb::adopt( pb___AlertableCreate( Target::wake, target.get() ) );
}

} // namespace support

constinit const struct pbSort test___sort_TARGET = pb::detail::makeSort<support::Target>( "TARGET" );

#endif
