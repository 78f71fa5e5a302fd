// The objects of a pbVector, owned and of their type.
#ifndef INCTL_ITEMS_HPP
#define INCTL_ITEMS_HPP

#include "pb/pb_object.hpp"
#include "pb/pb_vector.h"

#include <vector>

namespace inctl {

// from is the type's From, which checks the sort of each element.
template <class T> std::vector<pb::Ref<T>> items( const pb::Ref<struct pbVector> &vector, T *( *from )(struct pbObj *))
{
    std::vector<pb::Ref<T>> result;
    for ( pbInt i = 0; i < pbVectorLength( vector.get() ); ++i )
        result.push_back( pb::adopt( from( pbVectorObjAt( vector.get(), i ) ) ) );
    return result;
}

} // namespace inctl

#endif
