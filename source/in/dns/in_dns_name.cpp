// Domain names longer than any that DNS allows.
#include "in/dns/in_dns_name.hpp"

#include "in/dns/in_dns_label.hpp"

PB_SORT_DECLARE( in___sort_IN___DNS_LONG_NAME )

namespace {

constexpr unsigned pointerBits = 0xC0;

struct in___DnsLongName final : pb::Object<struct in___DnsLongName, in___sort_IN___DNS_LONG_NAME> {
    pb::Ref<struct pbBuffer> message;
    size_t offset = 0;

    pb::String toString() const;
};

void append( std::u32string &text, const uint8_t *label, size_t length, const uint8_t *endOfMessage )
{
    if ( !text.empty() )
        text.push_back( U'.' );
    if ( in::dns::isPlainLabel( label, length, endOfMessage ) )
        text.append( label, label + length );
    else
        text.append( pb::view( in::dns::readLabel( label, length )->text.get() ) );
}

} // namespace

constinit const struct pbSort in___sort_IN___DNS_LONG_NAME =
    pb::detail::makeSort<struct in___DnsLongName>( "IN___DNS_LONG_NAME" );

// What the decoder accepted is only followed: every pointer leads to an offset that was read before it.
pb::String in___DnsLongName::toString() const
{
    const uint8_t *const bytes = pbBufferBacking( message.get() );
    const uint8_t *const end = bytes + pbBufferLength( message.get() );
    std::u32string text;
    for ( const uint8_t *position = bytes + offset; *position; )
        if ( *position >= pointerBits )
            position = bytes + ( ( position[0] & ~pointerBits ) << 8 | position[1] );
        else {
            append( text, position + 1, *position, end );
            position += 1 + *position;
        }
    return pb::adopt(
        pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
}

namespace in::dns {

Name Name::inMessage( const struct pbBuffer *message, size_t offset )
{
    auto longName = pb::make<struct in___DnsLongName>();
    longName->message = pb::share( message );
    longName->offset = offset;
    Name name;
    name.held_ = pb::adopt( static_cast<struct pbObj *>( longName.release() ) );
    return name;
}

pb::String Name::text() const
{
    if ( !held_ || held_->sort == pbStringSort() )
        return pb::share( pbStringFrom( held_.get() ) );
    return pb::adopt( pbObjToString( held_.get() ) );
}

} // namespace in::dns
