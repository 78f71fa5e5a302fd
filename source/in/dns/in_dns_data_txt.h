// inDnsDataTxt: descriptive text (RFC 1035, 3.3.14), a value: byte strings of at most 255 bytes each, in their order.
#ifndef IN_DNS_DATA_TXT_H
#define IN_DNS_DATA_TXT_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inDnsDataTxt;
struct pbBuffer;
struct pbVector;

IN_API const struct pbSort *inDnsDataTxtSort( void );
IN_API struct inDnsDataTxt *inDnsDataTxtRetain( const struct inDnsDataTxt *obj );
IN_API void inDnsDataTxtRelease( const struct inDnsDataTxt *obj );
IN_API struct pbObj *inDnsDataTxtObj( const struct inDnsDataTxt *obj );
IN_API struct inDnsDataTxt *inDnsDataTxtFrom( struct pbObj *obj );
IN_API struct pbString *inDnsDataTxtToString( const struct inDnsDataTxt *obj );
IN_API pbInt inDnsDataTxtCompare( const struct inDnsDataTxt *a, const struct inDnsDataTxt *b );
IN_API pbBool inDnsDataTxtEquals( const struct inDnsDataTxt *a, const struct inDnsDataTxt *b );

// Without strings.
IN_API struct inDnsDataTxt *inDnsDataTxtCreate( void );
IN_API struct inDnsDataTxt *inDnsDataTxtCreateFrom( const struct inDnsDataTxt *source );

IN_API pbInt inDnsDataTxtBuffersLength( const struct inDnsDataTxt *txt );
IN_API struct pbVector *inDnsDataTxtBuffersVector( const struct inDnsDataTxt *txt );
IN_API struct pbBuffer *inDnsDataTxtBufferAt( const struct inDnsDataTxt *txt, pbInt index );
IN_API void inDnsDataTxtSetBufferAt( struct inDnsDataTxt **txt, pbInt index, const struct pbBuffer *buf );
IN_API void inDnsDataTxtDelBufferAt( struct inDnsDataTxt **txt, pbInt index );
IN_API void inDnsDataTxtPrependBuffer( struct inDnsDataTxt **txt, const struct pbBuffer *buf );
IN_API void inDnsDataTxtAppendBuffer( struct inDnsDataTxt **txt, const struct pbBuffer *buf );
// index 0..length
IN_API void inDnsDataTxtInsertBuffer( struct inDnsDataTxt **txt, pbInt index, const struct pbBuffer *buf );
// A vector of buffers, whose lengths are not looked at.
IN_API void inDnsDataTxtSetBuffersVector( struct inDnsDataTxt **txt, const struct pbVector *vec );

PB_DECLS_END

#endif
