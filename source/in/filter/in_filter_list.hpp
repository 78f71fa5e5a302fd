// FilterList: the addresses and networks that a filter lets in, as one rebuild has found them, with where each comes
// from. Immutable. In-tree only.
#ifndef IN_FILTER_LIST_HPP
#define IN_FILTER_LIST_HPP

#include "in/base/in_address.hpp"
#include "in/filter/in_filter_options.h"
#include "in/filter/in_filter_ranges.hpp"
#include "pb/pb_string.hpp"

#include <string>
#include <vector>

struct pbStore;
struct pbVector;

namespace in {

// What a rebuild collects.
struct FilterFindings {
    struct Source {
        uint32_t entry;   // index among the entries of the options
        uint32_t address; // index in the vectors
        pb::String name;  // what was looked up; null: the entry's host is the address
    };
    // Why a name, or a host, contributes nothing.
    struct Note {
        uint32_t entry;
        pb::String name;
        std::string text;
    };

    pb::Ref<struct pbVector> addresses;    // of struct inAddress
    pb::Ref<struct pbVector> matchingBits; // of struct pbBoxedInt, one for each address; -1: all
    std::vector<Source> sources;           // one for each address
    std::vector<Note> notes;

    // The first of those that agree in address and bits stays; sources point to it.
    void removeDuplicates();
};

class FilterList {
public:
    FilterList( pb::Ref<struct inFilterOptions> options, FilterFindings findings );

    bool permits( const struct inAddress &address ) const
    {
        return address.version == IN_ADDRESS_VERSION_4 ? v4_.contains( keyV4( address ) )
                                                       : v6_.contains( keyV6( address ) );
    }
    pbInt length() const;
    // An array of "ADDRESS/BITS", in order.
    pb::Ref<struct pbStore> keys() const;
    // The first few notes as a text; empty without any.
    std::string notesText() const;

    const struct inFilterOptions *options() const { return options_.get(); }
    const FilterFindings &findings() const { return findings_; }

private:
    static uint32_t keyV4( const struct inAddress &address )
    {
        uint32_t key;
        memcpy( &key, address.bytes, sizeof key );
        return __builtin_bswap32( key );
    }
    static Uint128 keyV6( const struct inAddress &address )
    {
        uint64_t halves[2];
        memcpy( halves, address.bytes, sizeof halves );
        return Uint128( __builtin_bswap64( halves[0] ) ) << 64 | __builtin_bswap64( halves[1] );
    }

    FilterRanges<uint32_t> v4_;
    FilterRanges<Uint128> v6_;
    pb::Ref<struct inFilterOptions> options_;
    FilterFindings findings_;
};

// Of a DNS query's failure, for a note.
const char *whyNotFound( pbInt failure );

// The store of inFilterExplain, but for what the list does not know: "permitted", "stackAddress", "rebuilding".
pb::Ref<struct pbStore> explain( const FilterList &list, const struct inAddress *optionalAddress );
// Why the list refuses or permits the address: "entry 1 matches 22 of 24 bits; entry 2 resolved to ...".
std::string explanation( const FilterList &list, const struct inAddress *address );

} // namespace in

#endif
