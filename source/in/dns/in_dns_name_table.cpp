// Names of a message, with each suffix kept once.
#include "in/dns/in_dns_name_table.hpp"

#include "in/dns/in_dns_label.hpp"

#include <algorithm>

namespace in::dns {

namespace {

constexpr unsigned pointerBits = 0xC0; // both set: a pointer; one alone is reserved

} // namespace

NameTable::NameTable( const struct pbBuffer *message )
    : message_( message ), bytes_( pbBufferBacking( message ) ), end_( bytes_ + pbBufferLength( message ) )
{
    std::fill_n( at_, std::min( static_cast<size_t>( end_ - bytes_ ), pointable ), uint16_t( none ) );
}

NameTable::~NameTable()
{
    if ( !longNames_ )
        return;
    longNames_->suffixes.assign( suffixes_, suffixes_ + count_ );
    longNames_->texts = std::move( texts_ );
}

[[gnu::always_inline]] inline NameTable::Suffix &NameTable::append( const Suffix &suffix )
{
    if ( count_ == room_ )
        grow();
    return suffixes_[count_++] = suffix;
}

void NameTable::grow()
{
    auto larger = std::make_unique_for_overwrite<Suffix[]>( 2 * room_ );
    std::copy_n( suffixes_, count_, larger.get() );
    many_ = std::move( larger );
    suffixes_ = many_.get();
    room_ *= 2;
}

bool NameTable::appendSpecialLabel( Suffix &suffix, Places &places )
{
    auto label = readLabel( bytes_ + suffix.offset + 1, suffix.length );
    if ( !label )
        return false;
    places = { label->mayPrecede, label->mayBeLast };
    suffix.length = static_cast<uint32_t>( pbStringLength( label->text.get() ) );
    suffix.ascii = false;
    texts_.push_back( std::move( label->text ) );
    suffix.text = static_cast<uint32_t>( texts_.size() );
    return true;
}

// What follows is all that a usual name needs, as one function.

[[gnu::always_inline]] inline bool NameTable::appendLabel( const uint8_t *lengthByte, Places &places )
{
    const uint32_t length = *lengthByte;
    Suffix &suffix = append( { offsetOf( lengthByte ), length, root, 0, nullptr, true } );
    if ( !isPlainLabel( lengthByte + 1, length, end_ ) )
        return appendSpecialLabel( suffix, places );
    places = { true, true };
    return true;
}

[[gnu::always_inline]] inline void NameTable::remember( uint32_t offset, Index suffix )
{
    if ( offset < pointable )
        at_[offset] = static_cast<uint16_t>( suffix ); // no more suffixes than offsets come before it
}

// The zero or pointer behind the labels.
[[gnu::always_inline]] inline NameTable::Index NameTable::readEnd( const uint8_t *&position, const uint8_t *limit,
                                                                   Places last ) const
{
    Index rest = root;
    if ( const unsigned first = *position++ ) {
        if ( first < pointerBits || position == limit )
            return none;
        const size_t target = ( first & ~pointerBits ) << 8 | *position++;
        rest = target < offsetOf( limit ) ? at_[target] : none;
    }
    return ( rest == root ? last.mayBeLast : last.mayPrecede ) ? rest : none;
}

// Joins the labels from the first on, which from now on may be pointed at, as may the pointer or zero behind them.
[[gnu::always_inline]] inline NameTable::Index NameTable::complete( size_t first, Index rest, uint32_t endOffset )
{
    remember( endOffset, rest );
    for ( size_t i = count_; i-- > first; ) {
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

[[gnu::always_inline]] inline void NameTable::assign( Name &name, Index index )
{
    if ( index == root )
        return;
    Suffix &suffix = at( index );
    if ( suffix.name ) {
        name = *suffix.name;
        return;
    }
    if ( suffix.length > Name::longestText )
        name = longName( index );
    else
        name = suffix.ascii ? asciiText( suffix ) : text( suffix );
    suffix.name = &name;
}

bool NameTable::tryRead( pb::ByteReader &reader, Name &name )
{
    const size_t first = count_;
    const uint8_t *position = reader.bytes();
    const uint8_t *const limit = position + reader.remaining();
    Places places{ true, true }; // of the label before
    while ( position < limit && *position && *position <= longestWireLabel ) {
        const uint8_t *const label = position;
        if ( *label >= limit - label || !places.mayPrecede || !appendLabel( label, places ) )
            return false;
        position += 1 + *label;
    }
    if ( position == limit )
        return false;
    const uint32_t endOffset = offsetOf( position );
    const Index rest = readEnd( position, limit, places );
    if ( rest == none )
        return false;
    assign( name, complete( first, rest, endOffset ) );
    return reader.trySkip( position - reader.bytes() );
}

[[gnu::noinline]] Name NameTable::longName( Index index )
{
    if ( !longNames_ ) {
        longNames_ = pb::make<MessageNames>();
        longNames_->message = pb::share( message_ );
    }
    return Name::inMessage( longNames_, index );
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
