// trAnchor: one end of a link between streams. The creator makes it on its own stream and hands it on; the receiver
// completes it with its stream, and the link stands. Completing it again changes nothing.
#ifndef TR_ANCHOR_H
#define TR_ANCHOR_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct trAnchor;
struct trStream;

// Kinds of links.
#define TR_ANCHOR_KIND_PLAIN 0
#define TR_ANCHOR_KIND_USE 9      // toward a shared object that is used
#define TR_ANCHOR_KIND_STACK 18   // toward the stack
#define TR_ANCHOR_KIND_ORIGIN 20  // toward the object on whose behalf work is done

PB_API const struct pbSort *trAnchorSort( void );
PB_API struct trAnchor *trAnchorRetain( const struct trAnchor *obj );
PB_API void trAnchorRelease( const struct trAnchor *obj );
PB_API struct pbObj *trAnchorObj( const struct trAnchor *obj );
PB_API struct trAnchor *trAnchorFrom( struct pbObj *obj );
PB_API struct pbString *trAnchorToString( const struct trAnchor *obj );
PB_API pbInt trAnchorCompare( const struct trAnchor *a, const struct trAnchor *b );
PB_API pbBool trAnchorEquals( const struct trAnchor *a, const struct trAnchor *b );

PB_API struct trAnchor *trAnchorCreate( struct trStream *stream, pbInt kind );
PB_API struct trAnchor *trAnchorCreateWithAnnotationCstr( struct trStream *stream, pbInt kind, const char *annotation, pbInt annotationLength );
PB_API void trAnchorComplete( struct trAnchor *anchor, struct trStream *stream );

PB_DECLS_END

#endif
