// Writes DNS messages: header, names in full or as pointers, records of any type with any data.
#ifndef SUPPORT_DNS_WIRE_HPP
#define SUPPORT_DNS_WIRE_HPP

#include <algorithm>
#include <cstdint>
#include <string>
#include <string_view>

namespace support {

enum class DnsSection { question, answer, authority, additional };

// "www.example.com" in wire format, without the zero at its end.
inline std::string dnsLabels( std::string_view name )
{
    std::string wire;
    while ( !name.empty() ) {
        const auto label = name.substr( 0, name.find( '.' ) );
        wire += static_cast<char>( label.size() );
        wire += label;
        name.remove_prefix( std::min( name.size(), label.size() + 1 ) );
    }
    return wire;
}

inline std::string dnsName( std::string_view name )
{
    return dnsLabels( name ) + '\0';
}

inline std::string dns16( uint64_t value )
{
    return { static_cast<char>( value >> 8 ), static_cast<char>( value ) };
}
inline std::string dns32( uint64_t value )
{
    return dns16( value >> 16 ) + dns16( value );
}
inline std::string dnsPointer( size_t offset )
{
    return dns16( 0xC000 + offset );
}

// Grows by records, and counts them in its header.
struct DnsWire {
    std::string bytes;

    explicit DnsWire( unsigned flags = 0x8180, unsigned id = 0x1234 )
        : bytes( dns16( id ) + dns16( flags ) + std::string( 8, '\0' ) )
    {
    }
    // Name and data are wire format. Returns the offset of the name.
    size_t question( std::string_view name, unsigned type, unsigned cls = 1 )
    {
        return append( DnsSection::question, std::string( name ) + dns16( type ) + dns16( cls ) );
    }
    size_t record( DnsSection section, std::string_view name, unsigned type, std::string_view data, unsigned cls = 1,
                   uint64_t ttl = 300 )
    {
        return append( section, std::string( name ) + dns16( type ) + dns16( cls ) + dns32( ttl ) +
                                    dns16( data.size() ) + std::string( data ) );
    }
    size_t answer( std::string_view name, unsigned type, std::string_view data, unsigned cls = 1, uint64_t ttl = 300 )
    {
        return record( DnsSection::answer, name, type, data, cls, ttl );
    }

  private:
    size_t append( DnsSection section, const std::string &record )
    {
        const size_t offset = bytes.size(), count = 4 + 2 * static_cast<size_t>( section );
        if ( !++bytes[count + 1] )
            ++bytes[count];
        bytes += record;
        return offset;
    }
};

} // namespace support

#endif
