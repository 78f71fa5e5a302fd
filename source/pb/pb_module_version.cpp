// pbModuleVersion.
#include "pb/pb_module_version.h"
#include "pb/pb_format.hpp"
#include "pb/pb_string.hpp"

#include <charconv>

PB_SORT_DECLARE( pb___sort_PB_MODULE_VERSION )

struct pbModuleVersion final : pb::Object<struct pbModuleVersion, pb___sort_PB_MODULE_VERSION> {
    const pbInt major;
    const pbInt minor;

    pbModuleVersion( pbInt major, pbInt minor ) : major( major ), minor( minor ) {}
    auto operator<=>( const pbModuleVersion & ) const = default;
    pb::String toString() const { return pb::format( "%i.%i", major, minor ); }
};

PB_OBJECT_DEFINE( pbModuleVersion, pb___sort_PB_MODULE_VERSION )

namespace {

// A number that is the whole text: from_chars alone would take a sign and leave a rest.
bool tryParse( std::string_view text, pbInt &value )
{
    if ( text.find_first_not_of( "0123456789" ) != text.npos )
        return false;
    return std::from_chars( text.data(), text.data() + text.size(), value ).ec == std::errc();
}

} // namespace

extern "C" {

struct pbModuleVersion *pbModuleVersionTryCreateFromCstr( const char *text, pbInt textLength )
{
    PB_ASSERT( text );
    PB_ASSERT( textLength >= -1 );
    const std::string_view whole =
        textLength < 0 ? std::string_view( text ) : std::string_view( text, static_cast<size_t>( textLength ) );
    const size_t dot = whole.find( '.' );
    pbInt major, minor;
    if ( dot == whole.npos || !tryParse( whole.substr( 0, dot ), major )
         || !tryParse( whole.substr( dot + 1 ), minor ) )
        return nullptr;
    return new pbModuleVersion( major, minor );
}

pbInt pbModuleVersionMajor( const struct pbModuleVersion *version )
{
    PB_ASSERT( version );
    return version->major;
}

pbInt pbModuleVersionMinor( const struct pbModuleVersion *version )
{
    PB_ASSERT( version );
    return version->minor;
}

} // extern "C"
