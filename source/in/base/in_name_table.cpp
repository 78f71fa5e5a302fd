// Fills the tables of names behind enumerations and flag words.
#include "in/base/in_name_table.hpp"

#include <string>

namespace in {

void startEnum( pb::Global<struct pbEnum> &table, const char *const *names )
{
    table.set( pb::adopt( pbEnumCreate() ) );
    for ( pbInt value = 0; names[value]; ++value )
        pbEnumAddEnumerantCstr( table.address(), names[value], -1, value );
}

void startFlagset( pb::Global<struct pbFlagset> &table, const char *globalName, const char *const *names )
{
    table.set( pb::adopt( pbFlagsetCreate() ) );
    for ( int bit = 0; names[bit]; ++bit ) {
        const std::string text =
            std::string( "!pbFlagsetHasFlagCstr( *(&" ) + globalName + "), \"" + names[bit] + "\", -1 )";
        PB_ASSERT_TEXT( !pbFlagsetHasFlagCstr( table.get(), names[bit], -1 ), text.c_str() );
        pbFlagsetAddFlagCstr( table.address(), names[bit], -1, uint64_t{ 1 } << bit );
    }
}

} // namespace in
