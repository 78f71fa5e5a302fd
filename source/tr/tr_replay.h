// What stands of a stream and of those that it leads to, told as if it happened now: for who begins to listen late.
#ifndef TR_REPLAY_H
#define TR_REPLAY_H

#include "tr/tr_system.h"

PB_DECLS_BEGIN

struct trStream;

#define TR_REPLAY_WITHOUT_END -1

// An anchor leads from the stream of who made it to the stream of who completed it; one of the kind
// TR_ANCHOR_KIND_ORIGIN the other way, from the object on whose behalf work is done to that work.
PB_API pbBool trAnchorKindLeadsBack( pbInt kind );

// Calls the listener for the stream and for each stream that is reached over at most depth links, each once: created,
// configuration, properties, notable, and then its links, also those to streams that are farther away. The calls come
// from this thread, with no monitor held, and tell one moment; what happened meanwhile other listeners have heard.
PB_API void trStreamReplay( const struct trStream *stream, pbInt depth,
                            void ( *listener )( const struct trEvent *event, void *context ), void *context );

PB_DECLS_END

#endif
