// pbBuffer, bytes and bits; reading it through a decoder and as text.
#include "pb/pb_buffer.h"
#include "pb/pb_charset.h"
#include "pb/pb_decoder.h"
#include "pb/pb_string.hpp"
#include "support/death_table.hpp"

#include <random>

namespace {

using Buffer = pb::Ref<struct pbBuffer>;

Buffer buffer( std::string_view bytes )
{
    return pb::adopt( pbBufferCreateFromBytes( bytes.data(), static_cast<pbInt>( bytes.size() ) ) );
}
std::string bytes( const Buffer &buffer )
{
    return { reinterpret_cast<const char *>( pbBufferBacking( buffer.get() ) ),
             static_cast<size_t>( pbBufferLength( buffer.get() ) ) };
}
// A buffer of the bits that the text shows.
Buffer bits( const std::string &text )
{
    Buffer result = pb::adopt( pbBufferCreate() );
    pbBufferBitAppendZero( result.address(), static_cast<pbInt>( text.size() ) );
    for ( size_t i = 0; i < text.size(); ++i )
        if ( text[i] == '1' )
            pbBufferBackingForWrite( result.address() )[i / 8] |= static_cast<uint8_t>( 0x80 >> i % 8 );
    return result;
}

TEST( Buffer, AppendsPartsEvenOfItself )
{
    Buffer target = buffer( "abc" );
    const Buffer kept = target;
    pbBufferAppend( target.address(), target.get() );
    EXPECT_EQ( bytes( target ), "abcabc" );
    EXPECT_EQ( bytes( kept ), "abc" );
    pbBufferAppendOuter( target.address(), target.get(), 1, 4 );
    EXPECT_EQ( bytes( target ), "abcabcac" );
    pbBufferDelLeading( target.address(), 6 );
    pbBufferAppendInner( target.address(), kept.get(), 1, 1 );
    pbBufferAppendLeading( target.address(), kept.get(), 2 );
    pbBufferAppendTrailing( target.address(), kept.get(), 2 );
    pbBufferAppendInner( target.address(), kept.get(), 3, 0 );
    EXPECT_EQ( bytes( target ), "acbabbc" );
    for ( int i = 0; i < 8; ++i ) { // own bytes by address, across moves and growth
        const uint8_t *own = pbBufferBacking( target.get() ) + 2;
        pbBufferAppendBytes( target.address(), own, pbBufferLength( target.get() ) - 2 );
    }
    EXPECT_EQ( pbBufferLength( target.get() ), 2 + 5 * 256 );
    pbBufferClear( target.address() );
    EXPECT_EQ( bytes( target ), "" );
}

TEST( Buffer, ServesAsAByteQueue )
{
    std::mt19937 random( 11 );
    std::string model;
    Buffer queue = pb::adopt( pbBufferCreate() ), copy;
    for ( int step = 0; step < 3000; ++step ) {
        const std::string more( random() % 50, static_cast<char>( 'a' + step % 26 ) );
        model += more;
        pbBufferAppendBytes( queue.address(), more.data(), static_cast<pbInt>( more.size() ) );
        if ( step % 100 == 0 )
            copy = queue;
        const size_t less = std::min<size_t>( model.size(), random() % 55 );
        model.erase( 0, less );
        pbBufferDelLeading( queue.address(), static_cast<pbInt>( less ) );
        ASSERT_EQ( bytes( queue ), model ) << "step " << step;
    }
}

TEST( Buffer, KeepsAndAppendsBits )
{
    const std::string pattern = "1011001110001111000011111";
    for ( size_t offset = 0; offset <= pattern.size(); ++offset )
        for ( size_t count = 0; offset + count <= pattern.size(); ++count ) {
            SCOPED_TRACE( testing::Message() << offset << "+" << count );
            Buffer kept = bits( pattern );
            pbBufferBitDelOuter( kept.address(), static_cast<pbInt>( offset ), static_cast<pbInt>( count ) );
            const std::string expected = pattern.substr( offset, count );
            EXPECT_EQ( pbBufferCompare( kept.get(), bits( expected ).get() ), 0 );
            EXPECT_EQ( pbBufferBitLength( kept.get() ), static_cast<pbInt>( count ) );
            EXPECT_EQ( pbBufferLength( kept.get() ), static_cast<pbInt>( count + 7 ) / 8 );
            pbBufferAppend( kept.address(), bits( pattern ).get() ); // behind a byte that is not full
            pbBufferBitAppendZero( kept.address(), 3 );
            pbBufferAppend( kept.address(), kept.get() );
            const std::string twice = expected + pattern + "000";
            EXPECT_EQ( pbBufferCompare( kept.get(), bits( twice + twice ).get() ), 0 );
        }
}

TEST( Buffer, OrdersUnsignedBytesThenLength )
{
    const Buffer ascending[] = { buffer( "" ), bits( "0" ), buffer( { "\0", 1 } ), buffer( "\x7F" ), bits( "1" ),
                                 buffer( "\x80" ), buffer( "\x80\x01" ) };
    for ( const Buffer &a : ascending )
        for ( const Buffer &b : ascending )
            EXPECT_EQ( pbBufferCompare( a.get(), b.get() ), &a < &b ? -1 : &a > &b );
}

TEST( Buffer, AssertsItsContract )
{
    Buffer three = buffer( "abc" );
    const char *const range = "count >= 0 && count <= source->length";
    support::expectDeaths( {
        { [&] { pbBufferByteAt( three.get(), 3 ); }, "index >= 0 && index < buffer->length" },
        { [&] { pbBufferAppendTrailing( three.address(), three.get(), 4 ); }, range },
        { [&] { pbBufferAppendLeading( three.address(), three.get(), -1 ); }, range },
        { [&] { pbBufferAppendInner( three.address(), three.get(), 1, PB_INT_MAX ); },
          "count >= 0 && count <= source->length - offset" },
        { [&] { pbBufferAppendOuter( three.address(), three.get(), 4, 0 ); },
          "offset >= 0 && offset <= source->length" },
        { [&] { pbBufferDelLeading( three.address(), 4 ); }, "count >= 0 && count <= ( *buffer )->length" },
        { [&] { pbBufferBitDelOuter( three.address(), 25, 0 ); },
          "bitOffset >= 0 && bitOffset <= ( *buffer )->bits()" },
        { [] { pbBufferCreateFromBytes( nullptr, 1 ); }, "bytes || count == 0" },
    } );
}

TEST( Decoder, DoesNotMoveWhenBytesAreMissing )
{
    const auto decoder = pb::adopt( pbDecoderCreate( buffer( "abcde" ).get() ) );
    uint8_t read[5] = {};
    Buffer part = buffer( "old" );
    EXPECT_TRUE( pbDecoderTryReadByte( decoder.get(), read ) );
    EXPECT_TRUE( pbDecoderTrySkip( decoder.get(), 1 ) );
    EXPECT_FALSE( pbDecoderTryReadBytes( decoder.get(), read, 4 ) );
    EXPECT_FALSE( pbDecoderTryRead( decoder.get(), part.address(), 4 ) );
    EXPECT_FALSE( pbDecoderTrySkip( decoder.get(), PB_INT_MAX ) );
    EXPECT_EQ( bytes( part ), "old" );
    EXPECT_EQ( pbDecoderOffset( decoder.get() ), 2 );
    EXPECT_TRUE( pbDecoderTryReadBytes( decoder.get(), read + 1, 1 ) );
    EXPECT_EQ( std::string( read, read + 2 ), "ac" );
    EXPECT_TRUE( pbDecoderTryRead( decoder.get(), part.address(), 2 ) );
    EXPECT_EQ( bytes( part ), "de" );
    EXPECT_EQ( pbDecoderRemaining( decoder.get() ), 0 );
    EXPECT_FALSE( pbDecoderTryReadByte( decoder.get(), read ) );
    EXPECT_TRUE( pbDecoderTryRead( decoder.get(), part.address(), 0 ) );
    EXPECT_EQ( bytes( part ), "" );
}

TEST( Charset, ConvertsWholeBuffers )
{
    static const struct {
        pbInt charset;
        uint64_t flags;
        const char *bytes;
        const char *text; // null: fails
    } rows[] = {
        { PB_CHARSET_UTF8, 0, "\xEF\xBB\xBF\xC3\xBC", "\xC3\xBC" },
        { PB_CHARSET_UTF8, 0, "a\xC3", nullptr },
        { PB_CHARSET_UTF8, PB_CHARSET_FLAG_REPLACE, "a\xC3", "a\xEF\xBF\xBD" },
        { PB_CHARSET_ASCII, 0, "plain", "plain" },
        { PB_CHARSET_ASCII, 0, "a\x80", nullptr },
        { PB_CHARSET_ASCII, PB_CHARSET_FLAG_REPLACE, "a\x80z", "a\xEF\xBF\xBDz" },
    };
    for ( const auto &row : rows ) {
        SCOPED_TRACE( row.bytes );
        const auto text = pb::adopt(
            pbCharsetTryConvertBufferToStringWithFlags( row.charset, buffer( row.bytes ).get(), row.flags ) );
        EXPECT_EQ( pb::utf8( text ), row.text ? row.text : "null" );
    }
}

} // namespace
