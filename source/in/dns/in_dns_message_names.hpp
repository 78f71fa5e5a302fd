// The names of one message, as what is longer than names are keeps them: each label once, and behind it the rest of the
// name. In-tree only.
#ifndef IN_DNS_MESSAGE_NAMES_HPP
#define IN_DNS_MESSAGE_NAMES_HPP

#include "pb/pb_buffer.h"
#include "pb/pb_string.hpp"

#include <limits>
#include <vector>

PB_SORT_DECLARE( in___sort_IN___DNS_MESSAGE_NAMES )

namespace in::dns {

class Name;

struct MessageNames final : pb::Object<MessageNames, in___sort_IN___DNS_MESSAGE_NAMES> {
    // Of a suffix.
    using Index = uint32_t;
    static constexpr Index none = 0; // no suffix
    static constexpr Index root = 1;
    static constexpr Index firstSuffix = 2;

    struct Suffix {
        uint32_t offset;  // of the length byte of the first label
        uint32_t length;  // of the text
        Index rest;       // behind the first label
        uint32_t text;    // of the first label: its place in texts, counted from 1; 0 when the bytes are it
        const Name *name; // while the message is read, the first place that holds it, or null
        bool ascii;       // the whole text
    };

    pb::Ref<struct pbBuffer> message;
    std::vector<Suffix> suffixes;
    std::vector<pb::String> texts;

    const Suffix &at( Index index ) const { return suffixes[index - firstSuffix]; }
    // At most so many code points of the name that the suffix is.
    pb::String text( Index suffix, size_t most = std::numeric_limits<size_t>::max() ) const;
    // Of the whole text.
    uint64_t hash( Index suffix, uint64_t seed ) const;
    // By text. Looks no further than the names differ, and not at all at the end that they share.
    static std::strong_ordering compare( const MessageNames &namesA, Index a, const MessageNames &namesB, Index b );
};

} // namespace in::dns

#endif
