// Stores made of text, for fuzz drivers: lines, of which "key value" sets a value, "key {" opens a store and "}" closes
// it.
#ifndef FUZZ_STORE_LINES_HPP
#define FUZZ_STORE_LINES_HPP

#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

#include <algorithm>
#include <string_view>

namespace fuzz {

inline std::string_view takeLine( std::string_view &rest )
{
    const size_t end = std::min( rest.find( '\n' ), rest.size() );
    const auto line = rest.substr( 0, end );
    rest.remove_prefix( std::min( end + 1, rest.size() ) );
    return line;
}

inline pb::Ref<struct pbStore> takeStore( std::string_view &rest, int depth = 0 )
{
    auto store = pb::adopt( pbStoreCreate() );
    while ( !rest.empty() ) {
        const auto line = takeLine( rest );
        if ( line == "}" )
            break;
        const size_t blank = std::min( line.find( ' ' ), line.size() );
        const auto key = pb::string( line.substr( 0, blank ) );
        const auto value = line.substr( std::min( blank + 1, line.size() ) );
        if ( value == "{" && depth < 8 )
            pbStoreSetStore( store.address(), key.get(), takeStore( rest, depth + 1 ).get() );
        else
            pbStoreSetValue( store.address(), key.get(), pb::string( value ).get() );
    }
    return store;
}

} // namespace fuzz

#endif
