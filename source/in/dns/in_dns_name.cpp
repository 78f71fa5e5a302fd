// Domain names longer than any that DNS allows.
#include "in/dns/in_dns_name.hpp"

#include <tuple>

PB_SORT_DECLARE( in___sort_IN___DNS_LONG_NAME )

namespace {

struct in___DnsLongName final : pb::Object<struct in___DnsLongName, in___sort_IN___DNS_LONG_NAME> {
    pb::Ref<in::dns::MessageNames> names;
    in::dns::MessageNames::Index suffix = in::dns::MessageNames::root;

    pb::String toString() const { return names->text( suffix ); }
};

const in___DnsLongName &asLong( const struct pbObj *held )
{
    return *static_cast<const in___DnsLongName *>( held );
}

} // namespace

constinit const struct pbSort in___sort_IN___DNS_LONG_NAME =
    pb::detail::makeSort<struct in___DnsLongName>( "IN___DNS_LONG_NAME" );

namespace in::dns {

Name Name::inMessage( pb::Ref<MessageNames> names, MessageNames::Index suffix )
{
    auto longName = pb::make<struct in___DnsLongName>();
    longName->names = std::move( names );
    longName->suffix = suffix;
    Name name;
    name.held_ = pb::adopt( static_cast<struct pbObj *>( longName.release() ) );
    return name;
}

pb::String Name::text() const
{
    if ( !isLong() )
        return pb::share( pbStringFrom( held_.get() ) );
    return pb::adopt( pbObjToString( held_.get() ) );
}

pb::String Name::shownText() const
{
    return isLong() ? asLong( held_.get() ).names->text( asLong( held_.get() ).suffix, longestText ) : text();
}

size_t Name::length() const
{
    if ( isLong() )
        return asLong( held_.get() ).names->at( asLong( held_.get() ).suffix ).length;
    return held_ ? pb::view( pbStringFrom( held_.get() ) ).size() : 0;
}

std::strong_ordering Name::compareLong( const Name &a, const Name &b )
{
    const auto &left = asLong( a.held_.get() ), &right = asLong( b.held_.get() );
    return MessageNames::compare( *left.names, left.suffix, *right.names, right.suffix );
}

std::strong_ordering operator<=>( const Name &a, const Name &b )
{
    return a.isLong() && b.isLong() ? Name::compareLong( a, b ) : a.text() <=> b.text();
}

Name::Rank::Rank( const Name &name, uint64_t seed )
    : name_( name ), length_( name.length() ),
      hash_( name.isLong() ? asLong( name.held_.get() ).names->hash( asLong( name.held_.get() ).suffix, seed ) : 0 )
{
}

std::weak_ordering Name::Rank::operator<=>( const Rank &other ) const
{
    if ( !name_.isLong() && !other.name_.isLong() )
        return name_ <=> other.name_;
    return std::tie( length_, hash_ ) <=> std::tie( other.length_, other.hash_ );
}

} // namespace in::dns
