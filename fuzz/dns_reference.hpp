// A DNS decoder in the plainest words, to compare the real one with: which messages are accepted, and the names in the
// order of the wire. Every name is copied in full and checked in full.
#ifndef DNS_REFERENCE_HPP
#define DNS_REFERENCE_HPP

#include "in/dns/in_dns_idna.h"
#include "pb/pb_string.hpp"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace support {

class DnsReference {
  public:
    explicit DnsReference( std::string_view bytes ) : bytes_( bytes )
    {
        accepted = header();
        size = at_;
    }

    bool accepted;
    size_t size;                       // of what was read
    std::vector<std::u32string> names; // empty for the root

  private:
    bool has( size_t count ) const { return bytes_.size() - at_ >= count; }
    size_t number( size_t count )
    {
        size_t value = 0;
        while ( count-- )
            value = value << 8 | static_cast<unsigned char>( bytes_[at_++] );
        return value;
    }

    bool header()
    {
        if ( !has( 12 ) )
            return false;
        number( 4 );
        const size_t questions = number( 2 ), records = number( 2 ) + number( 2 ) + number( 2 );
        for ( size_t i = 0; i < questions; ++i )
            if ( !name() || !has( 4 ) || ( number( 4 ), false ) )
                return false;
        for ( size_t i = 0; i < records; ++i )
            if ( !record() )
                return false;
        return true;
    }

    bool label( std::u32string &text, size_t length )
    {
        const auto wire = pb::adopt( pbStringTryCreateFromUtf8( bytes_.data() + at_, static_cast<pbInt>( length ) ) );
        at_ += length;
        if ( !wire || !inDnsIdnaLabelOk( wire.get() ) )
            return false;
        text = pb::view( pb::adopt( inDnsIdnaLabelToUnicode( wire.get() ) ).get() );
        return true;
    }

    bool name()
    {
        std::vector<std::pair<size_t, std::u32string>> pieces;
        for ( size_t length = 1; length; ) {
            if ( !has( 1 ) )
                return false;
            auto &[offset, text] = pieces.emplace_back( at_, U"" );
            length = number( 1 );
            if ( length >= 0xC0 ) {
                if ( !has( 1 ) || !table_.contains( ( length & 63 ) << 8 | static_cast<unsigned char>( bytes_[at_] ) ) )
                    return false;
                text = table_[( length & 63 ) << 8 | number( 1 )];
                length = 0;
            }
            else if ( length >= 0x40 || !has( length ) || ( length && !label( text, length ) ) )
                return false;
        }
        std::u32string suffix;
        for ( ; !pieces.empty(); pieces.pop_back() ) {
            auto &[offset, text] = pieces.back();
            suffix = suffix.empty() ? text : text + U'.' + suffix;
            table_[offset] = suffix;
        }
        names.push_back( suffix );
        const auto whole = pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( suffix.data() ),
                                                               static_cast<pbInt>( suffix.size() ) ) );
        return suffix.empty() || inDnsIdnaDomainNameOk( whole.get() );
    }

    bool record()
    {
        if ( !name() || !has( 10 ) )
            return false;
        const size_t type = number( 2 ), cls = number( 2 ), ttl = number( 4 ), length = number( 2 ), end = at_ + length;
        return ttl <= 0x7FFFFFFF && has( length ) && data( type, cls, length, end ) && at_ == end;
    }

    bool present() { return name() && !names.back().empty(); }

    bool data( size_t type, size_t cls, size_t length, size_t end )
    {
        switch ( type ) {
        case 1:
        case 28:
            return length == ( type == 1 ? 4 : 16 ) && cls == 1 && skip( length );
        case 2:
        case 5:
        case 12:
            return present();
        case 15:
            return length >= 2 && skip( 2 ) && present();
        case 6:
            if ( !present() || !present() || !has( 20 ) )
                return false;
            for ( int i = 0; i < 5; ++i )
                if ( number( 4 ) > 0x7FFFFFFF && i )
                    return false;
            return true;
        case 16:
            while ( at_ < end )
                if ( const size_t count = number( 1 ); count > end - at_ || !skip( count ) )
                    return false;
            return true;
        case 33:
            return length >= 6 && cls == 1 && skip( 6 ) && name();
        default:
            return skip( length );
        }
    }
    bool skip( size_t count )
    {
        at_ += count;
        return true;
    }

    std::string_view bytes_;
    size_t at_ = 0;
    std::map<size_t, std::u32string> table_;
};

} // namespace support

#endif
