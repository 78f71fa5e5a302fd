// Filling a new vector without counting references up and down. In-tree only.
#ifndef PB_VECTOR_HPP
#define PB_VECTOR_HPP

#include "pb/pb_object.hpp"
#include "pb/pb_vector.h"

extern "C" {
// An empty vector that takes count objects before it grows.
PB_API struct pbVector *pb___VectorCreateWithRoom( pbInt count );
// Takes over the reference to the object. The vector must not be shared.
PB_API void pb___VectorAppendAdopted( struct pbVector *vector, struct pbObj *obj );
}

#endif
