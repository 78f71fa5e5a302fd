// The records of a running configuration, and their objects as ones of their sorts.
#ifndef INCTL_RECORDS_HPP
#define INCTL_RECORDS_HPP

#include "inctl/items.hpp"

#include "cs/cs_condition.h"
#include "cs/cs_configuration.h"
#include "cs/cs_record.h"
#include "pb/pb_object.hpp"
#include "pb/pb_string.hpp"

#include <string>

namespace inctl {

// In the order of the file.
inline std::vector<pb::Ref<struct csRecord>> recordsOf( const struct csConfiguration *configuration )
{
    return items( pb::adopt( csConfigurationRecords( configuration ) ), csRecordFrom );
}

// Null when there is none.
inline pb::Ref<struct csRecord> recordNamed( const struct csConfiguration *configuration, const std::string &name )
{
    for ( auto &record : recordsOf( configuration ) )
        if ( pb::utf8( pb::adopt( csRecordName( record.get() ) ) ) == name )
            return std::move( record );
    return nullptr;
}

// Null while there is none, and where it is of another sort.
template <class T> pb::Ref<T> objectOf( const struct csRecord *record, const struct pbSort *sort )
{
    struct pbObj *object = csRecordObject( record );
    if ( object && pbObjSort( object ) == sort )
        return pb::adopt( reinterpret_cast<T *>( object ) );
    pbObjRelease( object );
    return nullptr;
}

inline pb::Ref<struct csCondition> conditionOf( const struct csRecord *record )
{
    return objectOf<struct csCondition>( record, csConditionSort() );
}

} // namespace inctl

#endif
