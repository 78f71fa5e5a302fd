// Configuration files of any bytes: parsed and judged against a sort with and without a table of keys. A file is
// accepted exactly when no problem is told.
#include "cs/cs_configuration.h"
#include "cs/test_sort.hpp"
#include "pb/pb_vector.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    for ( const bool withKeys : { true, false } ) {
        const test::TestSort sort( withKeys );
        struct pbVector *problems = nullptr;
        const auto configuration = pb::adopt(
            csConfigurationTryParse( data, static_cast<pbInt>( size ), pb::string( "fuzz" ).get(), &problems ) );
        const auto told = pb::adopt( problems );
        if ( static_cast<bool>( configuration ) != ( pbVectorLength( told.get() ) == 0 ) )
            abort();
        if ( configuration ) {
            csConfigurationStart( configuration.get() );
            testPhone::events.clear();
        }
    }
    testPhone::events.clear();
    return 0;
}
