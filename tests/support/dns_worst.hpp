// The DNS messages of at most 65,535 bytes that cost the most.
#ifndef SUPPORT_DNS_WORST_HPP
#define SUPPORT_DNS_WORST_HPP

#include "support/dns_wire.hpp"

#include <functional>
#include <utility>
#include <vector>

namespace support {

struct WorstMessage {
    const char *what;
    DnsWire wire;
    int64_t expected; // the length of the text of the last question's name, or the number of different SRV records
};

inline std::string dnsRepeated( std::string_view text, size_t times )
{
    std::string all;
    for ( ; times; --times )
        all += text;
    return all;
}

// As many questions as there is room for; the name may depend on where it stands.
inline DnsWire dnsFilled( DnsWire wire, const std::function<std::string( size_t offset )> &name )
{
    for ( std::string next; ( next = name( wire.bytes.size() ) ).size() + 4 + wire.bytes.size() <= 65535; )
        wire.question( next, 1 );
    return wire;
}

inline std::vector<WorstMessage> dnsWorstNames()
{
    const std::string root( 1, '\0' ), pointer = dnsPointer( 12 ), half = dnsRepeated( "\1a", 16000 );
    const auto named = []( const std::string &labels ) {
        DnsWire wire;
        wire.question( labels + '\0', 1 );
        return wire;
    };
    const auto before = [&]( const std::string &labels ) {
        return [labels, pointer]( size_t ) { return labels + pointer; };
    };
    DnsWire texts, manyTexts;
    texts.answer( root, 16, std::string( 65400, '\0' ) );
    for ( int i = 0; i < 5000; ++i )
        manyTexts.answer( root, 16, std::string( 2, '\0' ) );
    size_t previous = 12;
    const auto chained = [previous]( size_t offset ) mutable {
        return dnsPointer( offset < 0x4000 ? std::exchange( previous, offset ) : previous );
    };
    return { { "32,000 labels", named( half + half ), 63999 },
             { "pointers to a long name", dnsFilled( named( half ), before( "" ) ), 31999 },
             { "another label before a long name each", dnsFilled( named( half ), before( "\1b" ) ), 32001 },
             { "the same with text that is not ASCII",
               dnsFilled( named( dnsLabels( "b\u00FCcher" ) + half ), before( "\1b" ) ), 32008 },
             { "a chain of pointers", dnsFilled( named( half ), chained ), 31999 },
             { "names of the greatest length that is kept as text",
               dnsFilled( named( half.substr( 0, 1022 ) ), before( "\2bb" ) ), 1024 },
             { "empty names", dnsFilled( DnsWire(), [&]( size_t ) { return root; } ), 0 },
             { "empty strings", texts, 0 },
             { "thousands of texts", manyTexts, 0 } };
}

// SRV records in thousands, each with another long target: a suffix of one name, or a label of its own before one of
// two that are hard to tell apart.
inline std::vector<WorstMessage> dnsWorstServices()
{
    const std::string plain = dnsRepeated( "\1a", 8000 ), quarter = plain.substr( 0, 7600 );
    const auto message = []( const std::vector<std::string> &names,
                             const std::function<std::string( size_t index )> &target ) {
        DnsWire wire;
        for ( const auto &name : names )
            wire.question( name + '\0', 1 );
        for ( size_t i = 0;; ++i ) {
            const std::string data = dns16( 1 ) + dns16( 1 ) + dns16( 1 ) + target( i );
            if ( wire.bytes.size() + 11 + data.size() > 65535 )
                return wire;
            wire.answer( std::string( 1, '\0' ), 33, data );
        }
    };
    const auto twins = [&]( const std::string &first, const std::string &second ) {
        return message( { first, second }, [&]( size_t i ) {
            return "\1b" + dnsPointer( i % 2 ? 12 : 12 + first.size() + 5 );
        } );
    };
    return { { "suffixes of a long name", message( { plain }, []( size_t i ) { return dnsPointer( 12 + 2 * i ); } ),
               2606 },
             { "names that differ at their end", twins( quarter + "\1b", quarter + "\1c" ), 2 },
             { "names that are alike in Unicode",
               twins( dnsRepeated( "\7XN--4ca", 900 ), dnsRepeated( "\7xn--4ca", 900 ) ), 1 },
             { "names that are alike as a whole", twins( quarter, dnsRepeated( "\3a.a", 1900 ) ), 1 } };
}

} // namespace support

#endif
