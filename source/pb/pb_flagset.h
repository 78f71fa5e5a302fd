// pbFlagset: a table of flag names and their bit masks, with the text form "NAME|NAME" in ascending order of value.
#ifndef PB_FLAGSET_H
#define PB_FLAGSET_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct pbFlagset;
struct pbString;

PB_API const struct pbSort *pbFlagsetSort( void );
PB_API struct pbFlagset *pbFlagsetRetain( const struct pbFlagset *obj );
PB_API void pbFlagsetRelease( const struct pbFlagset *obj );
PB_API struct pbObj *pbFlagsetObj( const struct pbFlagset *obj );
PB_API struct pbFlagset *pbFlagsetFrom( struct pbObj *obj );
PB_API struct pbString *pbFlagsetToString( const struct pbFlagset *obj );
PB_API pbInt pbFlagsetCompare( const struct pbFlagset *a, const struct pbFlagset *b );
PB_API pbBool pbFlagsetEquals( const struct pbFlagset *a, const struct pbFlagset *b );

PB_API struct pbFlagset *pbFlagsetCreate( void );
PB_API void pbFlagsetAddFlagCstr( struct pbFlagset **flagset, const char *name, pbInt nameLength, uint64_t mask );
PB_API pbBool pbFlagsetHasFlagCstr( const struct pbFlagset *flagset, const char *name, pbInt nameLength );
// Names of the known bits that are set; no flags give the empty text.
PB_API struct pbString *pbFlagsetGenerate( const struct pbFlagset *flagset, uint64_t flags );
// Pieces between "|" are trimmed; unknown names are ignored.
PB_API uint64_t pbFlagsetParse( const struct pbFlagset *flagset, const struct pbString *text );

PB_DECLS_END

#endif
