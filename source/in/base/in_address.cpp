// inAddress: creation, access, text, classification and comparison of IP addresses.
#include "in/base/in_address.hpp"

#include "in/base/in_address_text.hpp"
#include "iri/iri_gens.h"
#include "pb/pb_buffer.h"

#include <algorithm>

namespace {

pb::Ref<struct inAddress> made( int length, const uint8_t *bytes )
{
    return length == 4 ? inAddress::fromV4( bytes ) : length == 16 ? inAddress::fromV6( bytes ) : nullptr;
}

pb::String ascii( const char *first, const char *end )
{
    return pb::adopt( pb___StringCreateFromAscii( first, end - first ) );
}

bool begins( const struct inAddress &ina, std::initializer_list<uint8_t> prefix )
{
    return std::equal( prefix.begin(), prefix.end(), ina.bytes );
}

bool isIn( uint8_t byte, uint8_t first, uint8_t last )
{
    return byte >= first && byte <= last;
}

} // namespace

pb::String inAddress::toString() const
{
    return pb::adopt( inAddressToStringShrink( this ) );
}

PB_OBJECT_DEFINE( inAddress, in___sort_IN_ADDRESS )

struct inAddress *inAddressCreate( pbInt ver )
{
    PB_ASSERT( IN_ADDRESS_VERSION_OK( ver ) );
    auto address = pb::make<struct inAddress>();
    address->version = ver;
    return address.release();
}

struct inAddress *inAddressCreateFrom( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return pb::make<struct inAddress>( *ina ).release();
}

struct inAddress *inAddressCreateV4( const void *addr )
{
    PB_ASSERT( addr );
    return inAddress::fromV4( addr ).release();
}

struct inAddress *inAddressCreateV6( const void *addr )
{
    PB_ASSERT( addr );
    return inAddress::fromV6( addr ).release();
}

struct inAddress *inAddressCreateV6FromV4( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    PB_ASSERT( inAddressVersion( ina ) == IN_ADDRESS_VERSION_4 );
    uint8_t bytes[16] = {};
    memcpy( bytes + 12, ina->bytes, 4 );
    return inAddress::fromV6( bytes ).release();
}

struct inAddress *inAddressTryCreateFromString( const struct pbString *source )
{
    PB_ASSERT( source );
    uint8_t bytes[16];
    if ( const int length = in::text::quick( pb::view( source ), bytes ) )
        return made( length, bytes ).release();
    if ( in::text::patientV4( source, bytes ) )
        return made( 4, bytes ).release();
    return in::text::patientV6( source, bytes ) ? made( 16, bytes ).release() : nullptr;
}

struct inAddress *inAddressTryCreateV4FromString( const struct pbString *source )
{
    PB_ASSERT( source );
    uint8_t bytes[16];
    if ( in::text::quick( pb::view( source ), bytes ) == 4 || in::text::patientV4( source, bytes ) )
        return made( 4, bytes ).release();
    return nullptr;
}

struct inAddress *inAddressTryCreateV6FromString( const struct pbString *source )
{
    PB_ASSERT( source );
    uint8_t bytes[16];
    if ( in::text::quick( pb::view( source ), bytes ) == 16 || in::text::patientV6( source, bytes ) )
        return made( 16, bytes ).release();
    return nullptr;
}

struct inAddress *inAddressTryCreateFromChars( const pbChar *chars, pbInt count )
{
    return inAddressTryCreateFromString( pb::adopt( pbStringCreateFromChars( chars, count ) ).get() );
}

struct inAddress *inAddressTryCreateFromCstr( const char *bytes, pbInt byteCount )
{
    return inAddressTryCreateFromString( pb::adopt( pbStringCreateFromCstr( bytes, byteCount ) ).get() );
}

struct inAddress *inAddressTryCreateFromWcstr( const wchar_t *chars, pbInt count )
{
    return inAddressTryCreateFromString( pb::adopt( pbStringCreateFromWcstr( chars, count ) ).get() );
}

struct inAddress *inAddressTryCreateFromHost( const struct pbString *source )
{
    PB_ASSERT( source );
    if ( !iriGensValidatePart( source, IRI_GENS_PART_HOST ) )
        return nullptr;
    if ( !pbStringBeginsWithChar( source, '[' ) || !pbStringEndsWithChar( source, ']' ) )
        return inAddressTryCreateV4FromString( source );
    pb::String literal = pb::share( source );
    pbStringDelLeading( literal.address(), 1 );
    pbStringDelTrailing( literal.address(), 1 );
    return inAddressTryCreateV6FromString( literal.get() );
}

struct inAddress *inAddressTryCreateFromBuffer( const struct pbBuffer *buffer )
{
    PB_ASSERT( buffer );
    const pbInt length = pbBufferLength( buffer );
    return length == 4 || length == 16 ? made( static_cast<int>( length ), pbBufferBacking( buffer ) ).release()
                                       : nullptr;
}

pbInt inAddressVersion( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->version;
}

pbBool inAddressIsV4( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->isV4();
}

pbBool inAddressIsV6( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return !ina->isV4();
}

pbInt inAddressLength( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->length();
}

const uint8_t *inAddressBacking( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->bytes;
}

pbInt inAddressByteAt( const struct inAddress *ina, pbInt byteIdx )
{
    PB_ASSERT( ina );
    PB_ASSERT( byteIdx >= 0 );
    PB_ASSERT( byteIdx < inAddressLength( ina ) );
    return ina->bytes[byteIdx];
}

void inAddressSetByteAt( struct inAddress **ina, pbInt byteIdx, pbInt value )
{
    PB_ASSERT( ina );
    PB_ASSERT( *ina );
    PB_ASSERT( byteIdx >= 0 );
    PB_ASSERT( byteIdx < inAddressLength( *ina ) );
    pb::edit( ina ).bytes[byteIdx] = static_cast<uint8_t>( value );
}

struct pbBuffer *inAddressToBuffer( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return pbBufferCreateFromBytes( ina->bytes, ina->length() );
}

struct pbString *inAddressToStringShrink( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    char text[in::text::capacity];
    if ( ina->isV4() )
        return ascii( text, in::text::writeV4( text, ina->bytes ) ).release();
    PB_ASSERT_TEXT( ina->length() == in::text::groupCount * 2, "inAddressLength( ina ) == PB_SIZEOF_ARRAY(group) * 2" );
    return ascii( text, in::text::writeV6( text, ina->bytes ) ).release();
}

struct pbString *inAddressToStringExpand( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    char text[in::text::capacity];
    char *const end =
        ina->isV4() ? in::text::writeV4( text, ina->bytes ) : in::text::writeV6Expanded( text, ina->bytes );
    return ascii( text, end ).release();
}

struct pbString *inAddressToHost( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    if ( ina->isV4() )
        return inAddressToStringShrink( ina );
    char text[in::text::capacity] = { '[' };
    char *end = in::text::writeV6( text + 1, ina->bytes );
    *end++ = ']';
    return ascii( text, end ).release();
}

pbBool inAddressIsAllZero( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return std::all_of( ina->bytes, ina->bytes + ina->length(), []( uint8_t byte ) { return byte == 0; } );
}

pbBool inAddressIsAllOne( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return std::all_of( ina->bytes, ina->bytes + ina->length(), []( uint8_t byte ) { return byte == 255; } );
}

pbBool inAddressIsLoopback( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->isV4() ? begins( *ina, { 127 } ) : begins( *ina, { 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1 } );
}

pbBool inAddressIsPrivate( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    if ( !ina->isV4() )
        return ( ina->bytes[0] & 0xfe ) == 0xfc;
    return begins( *ina, { 10 } ) || ( begins( *ina, { 172 } ) && isIn( ina->bytes[1], 16, 31 ) )
           || begins( *ina, { 192, 168 } );
}

pbBool inAddressIsMulticast( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->isV4() ? isIn( ina->bytes[0], 224, 239 ) : begins( *ina, { 0xff } );
}

pbBool inAddressIsLinkLocalUnicast( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    return ina->isV4() ? begins( *ina, { 169, 254 } ) : begins( *ina, { 0xfe } ) && isIn( ina->bytes[1], 0x80, 0xbf );
}

pbBool inAddressIsDocumentation( const struct inAddress *ina )
{
    PB_ASSERT( ina );
    if ( !ina->isV4() )
        return begins( *ina, { 0x20, 0x01, 0x0d, 0xb8 } );
    return begins( *ina, { 192, 0, 2 } ) || begins( *ina, { 198, 51, 100 } ) || begins( *ina, { 203, 0, 113 } );
}

pbBool inAddressIsGlobalUnicast( const struct inAddress *ina )
{
    return !inAddressIsAllZero( ina ) && !inAddressIsMulticast( ina ) && !inAddressIsLinkLocalUnicast( ina )
           && !inAddressIsLoopback( ina );
}

pbBool inAddressIsUnicast( const struct inAddress *ina )
{
    return inAddressIsGlobalUnicast( ina ) || inAddressIsLinkLocalUnicast( ina ) || inAddressIsLoopback( ina );
}

pbInt inAddressMatchingBits( const struct inAddress *inaA, const struct inAddress *inaB )
{
    PB_ASSERT( inaA );
    PB_ASSERT( inaB );
    if ( inaA->version != inaB->version )
        return 0;
    pbInt bits = 0;
    for ( pbInt i = 0; i < inaA->length(); ++i ) {
        const pbInt difference = inaA->bytes[i] ^ inaB->bytes[i];
        bits += 8 - ( pbIntBitHighest( difference ) + 1 );
        if ( difference )
            break;
    }
    return bits;
}
