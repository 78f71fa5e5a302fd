// Writes rfc_nameprep_table.cpp: the code points that nameprep leaves alone, by asking GNU libidn about each.
//     nameprep_table > source/rfc/rfc_nameprep_table.cpp
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <map>
#include <set>
#include <vector>

#include <stringprep.h>
#include <uninorm.h>
#include <unictype.h>

namespace {

constexpr uint32_t count = 0x110000;

bool isScalar( uint32_t c ) { return c < 0xD800 || c > 0xDFFF; }

bool nameprepKeeps( std::vector<uint32_t> text )
{
    const std::vector<uint32_t> before = text;
    size_t length = text.size();
    text.resize( 64 );
    if ( stringprep_4i( text.data(), &length, text.size(), Stringprep_profile_flags{}, stringprep_nameprep ) != STRINGPREP_OK )
        return false;
    text.resize( length );
    return text == before;
}

// What can be joined to the code point before it. libunistring's Unicode is newer than nameprep's, and as compositions
// are never taken back, it knows a few more of them.
std::set<uint32_t> joining()
{
    std::set<uint32_t> result;
    for ( uint32_t c = 0; c < count; ++c ) {
        ucs4_t parts[UC_DECOMPOSITION_MAX_LENGTH];
        const int length = isScalar( c ) ? uc_canonical_decomposition( c, parts ) : -1;
        for ( int i = 1; i < length; ++i )
            result.insert( parts[i] );
    }
    return result;
}

} // namespace

int main()
{
    const std::set<uint32_t> joins = joining();
    const auto stays = [&joins]( uint32_t c ) {
        // Behind a letter that runs from left to right, one that runs from right to left is refused.
        return isScalar( c ) && ( c == 0 || nameprepKeeps( { 'a', c } ) ) && uc_combining_class( c ) == 0 && !joins.contains( c );
    };

    using Leaf = std::array<uint64_t, 4>;
    std::vector<Leaf> leaves;
    std::vector<size_t> index;
    for ( uint32_t first = 0; first < count; first += 256 ) {
        Leaf leaf{};
        for ( uint32_t c = 0; c < 256; ++c )
            leaf[c / 64] |= uint64_t{ stays( first + c ) } << c % 64;
        const auto place = std::find( leaves.begin(), leaves.end(), leaf );
        index.push_back( static_cast<size_t>( place - leaves.begin() ) );
        if ( place == leaves.end() )
            leaves.push_back( leaf );
    }

    std::puts( "// Written by tools/nameprep_table.cpp from GNU libidn: what nameprep leaves alone.\n"
               "#include \"rfc/rfc_nameprep.hpp\"\n\nconst uint8_t rfc::detail::nameprepIndex[] = {" );
    for ( size_t i = 0; i < index.size(); ++i )
        std::printf( "%s%zu,%s", i % 32 == 0 ? "    " : "", index[i], i % 32 == 31 ? "\n" : "" );
    std::puts( "};\n\nconst rfc::detail::Leaf rfc::detail::nameprepLeaves[] = {" );
    for ( const Leaf &leaf : leaves )
        std::printf( "    { 0x%016lx, 0x%016lx, 0x%016lx, 0x%016lx },\n", leaf[0], leaf[1], leaf[2], leaf[3] );
    std::puts( "};" );
    return leaves.size() <= 256 ? 0 : 1;
}
