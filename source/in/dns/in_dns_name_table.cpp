// Names of a message, with each suffix kept once.
#include "in/dns/in_dns_name_table.hpp"

#include "in/dns/in_dns_label.hpp"

#include <algorithm>

namespace in::dns {

namespace {

constexpr uint8_t pointerBits = 0xC0; // both set: a pointer; one alone is reserved

} // namespace

NameTable::NameTable( const struct pbBuffer *message )
    : message_( message ), bytes_( pbBufferBacking( message ) ), end_( bytes_ + pbBufferLength( message ) )
{
    suffixes_.reserve( usual );
    std::fill_n( at_, std::min( static_cast<size_t>( end_ - bytes_ ), pointable ), uint16_t( none ) );
}

bool NameTable::tryRead( pb::ByteReader &reader, Name &name )
{
    const size_t first = suffixes_.size();
    const auto end = readLabels( reader );
    if ( !end )
        return false;
    name = nameOf( complete( first, *end ) );
    return true;
}

// Appends the labels to the suffixes; what they are followed by is known when the name has ended.
std::optional<NameTable::End> NameTable::readLabels( pb::ByteReader &reader )
{
    bool mayPrecede = true, mayBeLast = true; // the label before
    for ( ;; ) {
        if ( !reader.remaining() )
            return std::nullopt;
        const auto offset = static_cast<uint32_t>( reader.offset() );
        const uint8_t first = *reader.bytes();
        if ( first == 0 || first >= pointerBits ) {
            const Index rest = readEnd( reader );
            if ( rest == none || !( rest == root ? mayBeLast : mayPrecede ) )
                return std::nullopt;
            return End{ offset, rest };
        }
        if ( first > longestWireLabel || !mayPrecede || !reader.trySkip( 1 + first ) )
            return std::nullopt;
        if ( !appendLabel( offset, first, mayPrecede, mayBeLast ) )
            return std::nullopt;
    }
}

NameTable::Index NameTable::readEnd( pb::ByteReader &reader ) const
{
    const uint8_t *bytes = reader.bytes();
    if ( bytes[0] == 0 )
        return reader.trySkip( 1 ) ? root : none;
    if ( !reader.trySkip( 2 ) )
        return none;
    const auto target = static_cast<uint32_t>( ( bytes[0] & ~pointerBits ) << 8 | bytes[1] );
    return target < static_cast<size_t>( end_ - bytes_ ) ? at_[target] : none;
}

bool NameTable::appendLabel( uint32_t offset, size_t length, bool &mayPrecede, bool &mayBeLast )
{
    Suffix &suffix = suffixes_.emplace_back( Suffix{ offset, static_cast<uint32_t>( length ), root, 0, true, {} } );
    const uint8_t *label = bytes_ + offset + 1;
    if ( isPlainLabel( label, length, end_ ) )
        return mayPrecede = mayBeLast = true;
    auto read = readLabel( label, length );
    if ( !read || !read->mayBeLast )
        return false;
    mayBeLast = read->mayBeLast;
    mayPrecede = read->mayPrecede;
    suffix.length = static_cast<uint32_t>( pbStringLength( read->text.get() ) );
    suffix.ascii = false;
    texts_.push_back( std::move( read->text ) );
    suffix.text = static_cast<uint32_t>( texts_.size() );
    return true;
}

// Joins the labels from the first on, which from now on may be pointed at, as may the pointer or zero behind them.
NameTable::Index NameTable::complete( size_t first, End end )
{
    remember( end.offset, end.rest );
    Index rest = end.rest;
    for ( size_t i = suffixes_.size(); i-- > first; ) {
        Suffix &suffix = suffixes_[i];
        suffix.rest = rest;
        if ( rest != root ) {
            suffix.length += 1 + at( rest ).length;
            suffix.ascii = suffix.ascii && at( rest ).ascii;
        }
        rest = static_cast<Index>( i ) + firstSuffix;
        remember( suffix.offset, rest );
    }
    return rest;
}

void NameTable::remember( uint32_t offset, Index suffix )
{
    if ( offset < pointable )
        at_[offset] = static_cast<uint16_t>( suffix ); // no more suffixes than offsets come before it
}

const Name &NameTable::nameOf( Index index )
{
    if ( index == root )
        return root_;
    Suffix &suffix = at( index );
    if ( !suffix.name )
        suffix.name = suffix.length > Name::longestText ? Name::inMessage( message_, suffix.offset )
                                                        : Name( ( suffix.ascii ? asciiText( suffix ) : text( suffix ) ).get() );
    return suffix.name;
}

pb::String NameTable::asciiText( const Suffix &suffix ) const
{
    constexpr size_t step = 16; // most labels are shorter: copied at once, with what follows them
    char text[Name::longestText + step];
    char *out = text;
    for ( const Suffix *part = &suffix;; part = &at( part->rest ) ) {
        const uint8_t *label = bytes_ + part->offset;
        const size_t length = *label++;
        if ( length <= step && static_cast<size_t>( end_ - label ) >= step )
            std::memcpy( out, label, step );
        else
            std::memcpy( out, label, length );
        out += length;
        if ( part->rest == root )
            break;
        *out++ = '.';
    }
    return pb::adopt( pb___StringCreateFromAscii( text, out - text ) );
}

pb::String NameTable::text( const Suffix &suffix ) const
{
    char32_t text[Name::longestText];
    char32_t *out = text;
    for ( const Suffix *part = &suffix;; part = &at( part->rest ) ) {
        const uint8_t *label = bytes_ + part->offset;
        if ( part->text ) {
            const auto chars = pb::view( texts_[part->text - 1].get() );
            out = std::copy( chars.begin(), chars.end(), out );
        }
        else
            out = std::copy_n( label + 1, *label, out );
        if ( part->rest == root )
            break;
        *out++ = U'.';
    }
    return pb::adopt( pbStringCreateFromChars( reinterpret_cast<const pbChar *>( text ), out - text ) );
}

} // namespace in::dns
