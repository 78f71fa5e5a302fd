// Reading names that consist of linked labels.
#include "in/dns/in_dns_message_names.hpp"

#include <algorithm>

using in::dns::MessageNames;

constinit const struct pbSort in___sort_IN___DNS_MESSAGE_NAMES =
    pb::detail::makeSort<MessageNames>( "IN___DNS_MESSAGE_NAMES" );

namespace {

// Goes through the text of a name: pieces of labels, each behind the first label after a full stop.
class Reader {
  public:
    Reader( const MessageNames &names, MessageNames::Index suffix )
        : names_( names ), bytes_( pbBufferBacking( names.message.get() ) ), suffix_( suffix )
    {
        enter();
    }

    bool atEnd() const { return suffix_ == MessageNames::root; }
    bool atSameSuffix( const Reader &other ) const
    {
        return suffix_ == other.suffix_ && &names_ == &other.names_ && rest_ == other.rest_;
    }
    // What is left of the label; nothing when a full stop comes next.
    size_t rest() const { return rest_; }
    const uint8_t *ascii() const { return ascii_; } // null when the label is not
    char32_t charAt( size_t index ) const { return ascii_ ? ascii_[index] : wide_[index]; }
    char32_t next() const { return rest_ ? charAt( 0 ) : U'.'; }

    void skip( size_t count )
    {
        rest_ -= count;
        ( ascii_ ? ascii_ += count : nullptr, wide_ ? wide_ += count : nullptr );
        if ( rest_ == 0 && names_.at( suffix_ ).rest == MessageNames::root )
            suffix_ = MessageNames::root;
    }
    void skipStop()
    {
        suffix_ = names_.at( suffix_ ).rest;
        enter();
    }

  private:
    void enter()
    {
        if ( atEnd() )
            return;
        const auto &suffix = names_.at( suffix_ );
        if ( suffix.text ) {
            const auto chars = pb::view( names_.texts[suffix.text - 1].get() );
            ascii_ = nullptr;
            wide_ = chars.data();
            rest_ = chars.size();
        }
        else {
            ascii_ = bytes_ + suffix.offset + 1;
            wide_ = nullptr;
            rest_ = bytes_[suffix.offset];
        }
    }

    const MessageNames &names_;
    const uint8_t *const bytes_;
    MessageNames::Index suffix_;
    const uint8_t *ascii_ = nullptr;
    const char32_t *wide_ = nullptr;
    size_t rest_ = 0;
};

std::strong_ordering comparePieces( const Reader &a, const Reader &b, size_t count )
{
    for ( size_t i = 0; i < count; ++i )
        if ( a.charAt( i ) != b.charAt( i ) )
            return a.charAt( i ) <=> b.charAt( i );
    return std::strong_ordering::equal;
}

} // namespace

pb::String MessageNames::text( Index suffix, size_t most ) const
{
    std::u32string text;
    for ( Reader reader( *this, suffix ); !reader.atEnd() && text.size() < most; ) {
        const size_t count = std::min( reader.rest(), most - text.size() );
        for ( size_t i = 0; i < count; ++i )
            text.push_back( reader.charAt( i ) );
        if ( count )
            reader.skip( count );
        else {
            text.push_back( reader.next() );
            reader.skipStop();
        }
    }
    return pb::adopt(
        pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text.data() ), static_cast<pbInt>( text.size() ) ) );
}

uint64_t MessageNames::hash( Index suffix, uint64_t seed ) const
{
    uint64_t hash = seed;
    const auto add = [&]( char32_t c ) {
        hash = ( hash ^ c ) * 0x9E3779B97F4A7C15; // the golden ratio
        hash ^= hash >> 29;
    };
    for ( Reader reader( *this, suffix ); !reader.atEnd(); ) {
        const size_t count = reader.rest();
        for ( size_t i = 0; i < count; ++i )
            add( reader.charAt( i ) );
        if ( count )
            reader.skip( count );
        else {
            add( U'.' );
            reader.skipStop();
        }
    }
    return hash;
}

std::strong_ordering MessageNames::compare( const MessageNames &namesA, Index a, const MessageNames &namesB, Index b )
{
    Reader left( namesA, a ), right( namesB, b );
    while ( !left.atEnd() && !right.atEnd() ) {
        if ( left.atSameSuffix( right ) )
            return std::strong_ordering::equal;
        if ( const size_t count = std::min( left.rest(), right.rest() ) ) {
            if ( const auto order = comparePieces( left, right, count ); order != 0 )
                return order;
            left.skip( count );
            right.skip( count );
        }
        else if ( left.next() != right.next() )
            return left.next() <=> right.next();
        else {
            left.rest() ? left.skip( 1 ) : left.skipStop();
            right.rest() ? right.skip( 1 ) : right.skipStop();
        }
    }
    return right.atEnd() <=> left.atEnd();
}
