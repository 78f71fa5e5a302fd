// Any file in place of /proc/net/dev: the reader of interface names ends and makes names of whole lines only.
#include "in/nw/in_nw_interfaces_internal.h"
#include "pb/pb_dict.h"
#include "pb/pb_fd.hpp"
#include "pb/pb_string.hpp"

#include <cstdlib>
#include <string>
#include <sys/mman.h>

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *data, size_t size )
{
    static const pb::Fd file( memfd_create( "dev", MFD_CLOEXEC ) );
    static const std::string path = "/proc/self/fd/" + std::to_string( file.get() );
    if ( ftruncate( file.get(), 0 ) != 0 || pwrite( file.get(), data, size, 0 ) != static_cast<ssize_t>( size ) )
        std::abort();
    auto names = pb::adopt( pbDictCreate() );
    in___NwInterfacesAddNamesFromProcNetDev( names.address(), path.c_str() );
    for ( pbInt index = 0; index < pbDictLength( names.get() ); ++index ) {
        const auto name = pb::adopt( pbStringFrom( pbDictKeyAt( names.get(), index ) ) );
        if ( pbStringFindChar( name.get(), 0, ':' ) >= 0 || pbStringFindChar( name.get(), 0, '\n' ) >= 0 )
            std::abort();
    }
    return 0;
}
