// csKey: one key of a stored configuration, as messages, printers and editors need it. Static tables.
#ifndef CS_KEY_H
#define CS_KEY_H

#include "pb/pb_base.h"

PB_DECLS_BEGIN

#define CS_KEY_TEXT 0
#define CS_KEY_INT 1
#define CS_KEY_BOOL 2
#define CS_KEY_ENUM 3  // one of names
#define CS_KEY_FLAGS 4 // names joined by "|"
#define CS_KEY_STORE 5 // keys
#define CS_KEY_ARRAY 6 // entries as described by keys[0], whose own key is ""

struct pbString;

struct csKey {
    const char *key;
    pbInt kind;               // CS_KEY_...
    const char *expected;     // "an IP address", "1..65535"; null: told from the kind and what follows
    pbInt minimum, maximum;   // of CS_KEY_INT; both 0: any integer
    const char *const *names; // of CS_KEY_ENUM and CS_KEY_FLAGS, null-terminated
    const struct csKey *keys; // of CS_KEY_STORE and CS_KEY_ARRAY; null: not described
    pbInt keyCount;
    const char *description; // a sentence for people, without its full stop; null: none
    const char *pattern;     // of CS_KEY_TEXT: a regular expression (ECMA-262) of the whole text; null: not told
    const char *recordSort;  // of CS_KEY_TEXT: the name of a record of this sort; null: no name of a record
    uint64_t flags;          // CS_KEY_FLAG_...
    pbBool ( *accepts )( const struct pbString *text ); // of CS_KEY_TEXT: whether the text is valid; null: not told
};

#define CS_KEY_FLAG_WHOLE 1  // of CS_KEY_STORE: restored only when every key is there
#define CS_KEY_FLAG_UNIQUE 2 // objects of one sort with the same value here get in each other's way
#define CS_KEY_FLAG_REQUIRED 4 // of a key in a CS_KEY_STORE: nothing is restored without it

PB_DECLS_END

#endif
