// pb::Global: a module-wide reference that is set at start-up and becomes the invalid marker at shut-down, so that a use
// after shut-down faults. In-tree only.
#ifndef PB_GLOBAL_HPP
#define PB_GLOBAL_HPP

#include "pb/pb_object.hpp"

namespace pb {

template <class T> class Global {
public:
    constexpr Global() noexcept = default;
    Global( const Global & ) = delete;
    Global &operator=( const Global & ) = delete;

    void set( Ref<T> value ) noexcept { obj_ = value.release(); }
    // For tables that are filled in place at start-up.
    T **address() noexcept { return &obj_; }
    T *get() const noexcept { return obj_; }
    void invalidate() noexcept { adopt( std::exchange( obj_, static_cast<T *>( PB___INVALID ) ) ).reset(); }

private:
    T *obj_ = nullptr;
};

} // namespace pb

#endif
