// Two configurations of any bytes, split at the first NUL: parse A, start it, parse B, apply it, apply it again, write
// it, parse what was written. After the first apply a second one touches nothing, and what is written says what B says;
// edited into the text of A it does, too.
#include "cs/cs_configuration.h"
#include "cs/cs_json.h"
#include "cs/cs_json_internal.h"
#include "cs/cs_json_patch_internal.h"
#include "cs/cs_update_internal.h"
#include "cs/test_sort.hpp"
#include "pb/pb_vector.h"

#include <cstdlib>

namespace {

using Configuration = pb::Ref<struct csConfiguration>;

Configuration parse( std::string_view text )
{
    struct pbVector *problems = nullptr;
    auto configuration = pb::adopt( csConfigurationTryParse( text.data(), static_cast<pbInt>( text.size() ),
                                                             pb::string( "fuzz" ).get(), &problems ) );
    pbVectorRelease( problems );
    return configuration;
}

pbInt changeCount( const Configuration &configuration, const Configuration &next )
{
    struct pbVector *changes = nullptr;
    csConfigurationApply( configuration.get(), next.get(), &changes );
    return pbVectorLength( pb::adopt( changes ).get() );
}

void require( bool condition )
{
    if ( !condition )
        abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    const std::string_view bytes( reinterpret_cast<const char *>( data ), size );
    const size_t split = std::min( bytes.find( '\0' ), size );
    const std::string_view textA = bytes.substr( 0, split ), textB = bytes.substr( std::min( split + 1, size ) );
    const test::TestSort sort;
    const Configuration a = parse( textA ), b = parse( textB );
    if ( a && b ) {
        csConfigurationStart( a.get() );
        (void)changeCount( a, b );
        bool allCreated = true; // what could not be is tried again
        for ( pbInt i = 0; i < csConfigurationLength( a.get() ); ++i )
            allCreated = allCreated && pb::adopt( csConfigurationObjectAt( a.get(), i ) );
        require( !allCreated || changeCount( a, b ) == 0 );
        const auto tree = pb::adopt( csConfigurationTree( a.get() ) );
        require( tree == pb::adopt( csConfigurationTree( b.get() ) ) );
        const std::string written = pb::utf8( cs::jsonFromObjects( tree.get(), CS_JSON_PRETTY, cs::TreeObjectLevels ) );
        const Configuration again = parse( written );
        require( again && pb::adopt( csConfigurationTree( again.get() ) ) == tree );
        require( cs::storeFromJsonText( cs::editedText( textA, cs::jsonEdits( textA, tree ) ) ) == tree );
    }
    testPhone::events.clear();
    return 0;
}
