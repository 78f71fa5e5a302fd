// inDnsDataTxt: the data of a TXT record.
#include "in/dns/in_dns_data_txt.hpp"

#include "pb/pb_buffer.h"

PB_OBJECT_DEFINE( inDnsDataTxt, in___sort_IN_DNS_DATA_TXT )

namespace {

struct pbVector **editBuffers( struct inDnsDataTxt **txt )
{
    return pb::edit( txt ).buffers.address();
}

} // namespace

struct inDnsDataTxt *inDnsDataTxtCreate( void )
{
    return pb::make<struct inDnsDataTxt>().release();
}

struct inDnsDataTxt *inDnsDataTxtCreateFrom( const struct inDnsDataTxt *source )
{
    PB_ASSERT( source );
    return pb::make<struct inDnsDataTxt>( *source ).release();
}

pbInt inDnsDataTxtBuffersLength( const struct inDnsDataTxt *txt )
{
    PB_ASSERT( txt );
    return pbVectorLength( txt->buffers.get() );
}

struct pbVector *inDnsDataTxtBuffersVector( const struct inDnsDataTxt *txt )
{
    PB_ASSERT( txt );
    return txt->buffers.share();
}

struct pbBuffer *inDnsDataTxtBufferAt( const struct inDnsDataTxt *txt, pbInt index )
{
    PB_ASSERT( txt );
    return pbBufferFrom( pbVectorObjAt( txt->buffers.get(), index ) );
}

void inDnsDataTxtSetBufferAt( struct inDnsDataTxt **txt, pbInt index, const struct pbBuffer *buf )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    PB_ASSERT( buf );
    PB_ASSERT( pbBufferLength( buf ) <= 255 );
    pbVectorSetObjAt( editBuffers( txt ), index, pbBufferObj( buf ) );
}

void inDnsDataTxtDelBufferAt( struct inDnsDataTxt **txt, pbInt index )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    pbVectorDelAt( editBuffers( txt ), index );
}

void inDnsDataTxtPrependBuffer( struct inDnsDataTxt **txt, const struct pbBuffer *buf )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    PB_ASSERT( buf );
    PB_ASSERT( pbBufferLength( buf ) <= 255 );
    pbVectorPrepend( editBuffers( txt ), pbBufferObj( buf ) );
}

void inDnsDataTxtAppendBuffer( struct inDnsDataTxt **txt, const struct pbBuffer *buf )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    PB_ASSERT( buf );
    PB_ASSERT( pbBufferLength( buf ) <= 255 );
    pbVectorAppend( editBuffers( txt ), pbBufferObj( buf ) );
}

void inDnsDataTxtInsertBuffer( struct inDnsDataTxt **txt, pbInt index, const struct pbBuffer *buf )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    PB_ASSERT( buf );
    PB_ASSERT( pbBufferLength( buf ) <= 255 );
    pbVectorInsert( editBuffers( txt ), index, pbBufferObj( buf ) );
}

void inDnsDataTxtSetBuffersVector( struct inDnsDataTxt **txt, const struct pbVector *vec )
{
    PB_ASSERT( txt );
    PB_ASSERT( *txt );
    PB_ASSERT( vec );
    PB_ASSERT( pbVectorContainsOnly( vec, pbBufferSort() ) );
    pb::edit( txt ).buffers = pb::share( vec );
}
