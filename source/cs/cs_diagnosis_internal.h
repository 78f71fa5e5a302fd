// Problems as csDiagnoses.
#ifndef CS_DIAGNOSIS_INTERNAL_H
#define CS_DIAGNOSIS_INTERNAL_H

#include "cs/cs_problems_internal.h"

namespace cs {

// In the order of the text, as a vector of struct csDiagnosis. bytes is the text that the offsets belong to.
pb::Ref<struct pbVector> diagnosesOf( const Problems &problems, const std::string &file, std::string_view bytes );

} // namespace cs

#endif
