// pbStore: an ordered set of keys, each holding a text value or a sub-store; the form of stored configuration.
// A store array is a store whose keys are "0", "1", ...; the array functions read them by number.
// Comparison is of content and does not depend on the order of keys.
#ifndef PB_STORE_H
#define PB_STORE_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbStore;
struct pbString;

PB_API const struct pbSort *pbStoreSort( void );
PB_API struct pbStore *pbStoreRetain( const struct pbStore *obj );
PB_API void pbStoreRelease( const struct pbStore *obj );
PB_API struct pbObj *pbStoreObj( const struct pbStore *obj );
PB_API struct pbStore *pbStoreFrom( struct pbObj *obj );
PB_API struct pbString *pbStoreToString( const struct pbStore *obj );
PB_API pbInt pbStoreCompare( const struct pbStore *a, const struct pbStore *b );
PB_API pbBool pbStoreEquals( const struct pbStore *a, const struct pbStore *b );

PB_API struct pbStore *pbStoreCreate( void );
PB_API struct pbStore *pbStoreCreateFrom( const struct pbStore *source );

// Setters replace what the key holds, in its place; a new key goes to the end.
PB_API void pbStoreSetValueCstr( struct pbStore **store, const char *key, pbInt keyLength, const struct pbString *value );
PB_API void pbStoreSetValueIntCstr( struct pbStore **store, const char *key, pbInt keyLength, pbInt value );
PB_API void pbStoreSetValueBoolCstr( struct pbStore **store, const char *key, pbInt keyLength, pbBool value );
PB_API void pbStoreSetStoreCstr( struct pbStore **store, const char *key, pbInt keyLength, const struct pbStore *value );
PB_API void pbStoreSetValue( struct pbStore **store, const struct pbString *key, const struct pbString *value );
PB_API void pbStoreSetStore( struct pbStore **store, const struct pbString *key, const struct pbStore *value );
PB_API void pbStoreDelValueCstr( struct pbStore **store, const char *key, pbInt keyLength );
PB_API void pbStoreDelStoreCstr( struct pbStore **store, const char *key, pbInt keyLength );

// Null when the key is absent or of the other kind.
PB_API struct pbString *pbStoreValueCstr( const struct pbStore *store, const char *key, pbInt keyLength );
PB_API struct pbStore *pbStoreStoreCstr( const struct pbStore *store, const char *key, pbInt keyLength );
PB_API struct pbString *pbStoreValue( const struct pbStore *store, const struct pbString *key );
PB_API struct pbStore *pbStoreStore( const struct pbStore *store, const struct pbString *key );
// True, and *value written, when the whole text is an integer in 64 bits: decimal, or hexadecimal behind "0x" or "0X";
// an optional "-" first.
PB_API pbBool pbStoreValueIntCstr( const struct pbStore *store, pbInt *value, const char *key, pbInt keyLength );
// True, and *value written, when the text is exactly "true" or "false".
PB_API pbBool pbStoreValueBoolCstr( const struct pbStore *store, pbBool *value, const char *key, pbInt keyLength );
PB_API pbBool pbStoreHasValueCstr( const struct pbStore *store, const char *key, pbInt keyLength );
PB_API pbBool pbStoreHasStoreCstr( const struct pbStore *store, const char *key, pbInt keyLength );

// Keys in order, index 0..length - 1.
PB_API pbInt pbStoreLength( const struct pbStore *store );
PB_API struct pbString *pbStoreKeyAt( const struct pbStore *store, pbInt index );
PB_API pbBool pbStoreIsValueAt( const struct pbStore *store, pbInt index );
// Null when the key at the index is of the other kind.
PB_API struct pbString *pbStoreValueAt( const struct pbStore *store, pbInt index );
PB_API struct pbStore *pbStoreStoreAt( const struct pbStore *store, pbInt index );

// Entries "0", "1", ... up to the first number that is missing.
PB_API pbInt pbStoreArrayLength( const struct pbStore *array );
PB_API void pbStoreArrayAppendValue( struct pbStore **array, const struct pbString *value );
PB_API void pbStoreArrayAppendStore( struct pbStore **array, const struct pbStore *value );
// Null when the entry is absent or of the other kind.
PB_API struct pbString *pbStoreArrayValueAt( const struct pbStore *array, pbInt index );
PB_API struct pbStore *pbStoreArrayStoreAt( const struct pbStore *array, pbInt index );

PB_DECLS_END

#endif
