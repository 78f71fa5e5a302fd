// The struct behind pbBoxedInt, for keys that are looked up without an allocation. In-tree only.
#ifndef PB_BOXED_INT_HPP
#define PB_BOXED_INT_HPP

#include "pb/pb_boxed_int.h"
#include "pb/pb_string.hpp"

PB_SORT_DECLARE( pb___sort_PB_BOXED_INT )

struct pbBoxedInt final : pb::Object<struct pbBoxedInt, pb___sort_PB_BOXED_INT> {
    const pbInt value;

    explicit pbBoxedInt( pbInt value ) : value( value ) {}
    auto operator<=>( const pbBoxedInt & ) const = default;
    pb::String toString() const;
};

#endif
