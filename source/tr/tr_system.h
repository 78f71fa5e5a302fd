// The trace system: who listens, and whether per-packet messages are wanted.
#ifndef TR_SYSTEM_H
#define TR_SYSTEM_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct trStream;
struct pbBuffer;
struct pbString;
struct pbStore;

#define TR_EVENT_CREATED 0       // text: the stream's name
#define TR_EVENT_RELEASED 1
#define TR_EVENT_TEXT 2
#define TR_EVENT_MESSAGE 3       // text and payload
#define TR_EVENT_PROPERTY 4      // key and value or store; both null: deleted
#define TR_EVENT_CONFIGURATION 5 // store
#define TR_EVENT_NOTABLE 6       // value "true" or "false"
#define TR_EVENT_LINKED 7        // kind, annotation in text, other

// What a listener sees. All pointers are borrowed for the call and null where the kind has none.
struct trEvent {
    pbInt kind;
    pbInt time;          // nanoseconds since 1970-01-01 00:00:00 UTC
    pbInt stream;        // identifier
    const struct pbString *name;
    const struct pbString *text;
    const struct pbString *key;
    const struct pbString *value;
    const struct pbStore *store;
    const struct pbBuffer *payload;
    const struct pbString *payloadType; // of the stream, such as "PB_BUFFER"; null where it has none
    pbInt anchorKind;
    pbInt other;         // identifier of the linked stream
};

// A listener runs in tracing threads, one call at a time, with monitors held: it must be quick and must not call into
// the traced libraries. This is the one for the whole trace; null removes it, and no call runs after that returns.
PB_API void trSystemSetListener( void ( *listener )( const struct trEvent *event, void *context ), void *context );
// Further listeners beside that one, under the same rules, each once; the same function and context again changes the
// wish. Del returns when no call runs any more, and is harmless when there is nothing to remove.
PB_API void trSystemAddListener( void ( *listener )( const struct trEvent *event, void *context ), void *context,
                                 pbBool acceptsHighVolumeMessages );
PB_API void trSystemDelListener( void ( *listener )( const struct trEvent *event, void *context ), void *context );
// Per-packet texts are written only while this is true, which needs a listener too: the one above and the wish set
// here, or a further one with that wish. While it is true, messages with a payload go to those who wish for them only.
PB_API pbBool trSystemAcceptsHighVolumeMessages( void );
PB_API void trSystemSetAcceptsHighVolumeMessages( pbBool accepts );

PB_DECLS_END

#endif
