// The loaded configuration: named records of sort and store, each with a live object once started.
// A file is JSON with // and /* */ comments: {"objects": {NAME: {"sort": "IN_STACK", "config": {...}}}}; "config" may
// be left out. Objects become stores, arrays store arrays; numbers and booleans their text as written.
#ifndef CS_CONFIGURATION_H
#define CS_CONFIGURATION_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csConfiguration;
struct csStatusReporter;
struct pbSort;
struct pbStore;
struct pbString;
struct pbVector;

PB_API const struct pbSort *csConfigurationSort( void );
PB_API struct csConfiguration *csConfigurationRetain( const struct csConfiguration *obj );
PB_API void csConfigurationRelease( const struct csConfiguration *obj );
PB_API struct pbObj *csConfigurationObj( const struct csConfiguration *obj );
PB_API struct csConfiguration *csConfigurationFrom( struct pbObj *obj );
PB_API struct pbString *csConfigurationToString( const struct csConfiguration *obj );
PB_API pbInt csConfigurationCompare( const struct csConfiguration *a, const struct csConfiguration *b );
PB_API pbBool csConfigurationEquals( const struct csConfiguration *a, const struct csConfiguration *b );

// Reads and checks a whole file; nothing is started. Null when anything is wrong, and then *problems holds one pbString
// "FILE:LINE:COLUMN: error: OBJECT.key: what is wrong, what was expected" per problem, in the order of the file;
// otherwise *problems is an empty vector. What it held before is released. Lines and columns count from 1, columns in
// code points. All problems are found in one pass; one that makes the rest unreadable (not JSON, not UTF-8) ends it.
// Limits: 16 MiB, nesting of 64, 100,000 values, 1,000 problems told.
// Needs the module backends of the sorts that the file names: their own normalisation says which values are dropped.
PB_API struct csConfiguration *csConfigurationTryLoad( const struct pbString *path, struct pbVector **problems );
// The same from memory; name stands for the file in messages.
PB_API struct csConfiguration *csConfigurationTryParse( const void *bytes, pbInt byteCount, const struct pbString *name,
                                                        struct pbVector **problems );

// Creates the live objects, in the order of the file. A started configuration is left as it is.
PB_API void csConfigurationStart( struct csConfiguration *configuration );
// Releases them, in reverse order; once started it must be stopped before the module backends go.
PB_API void csConfigurationStop( struct csConfiguration *configuration );

// Records in the order of the file, index 0..length - 1.
PB_API pbInt csConfigurationLength( const struct csConfiguration *configuration );
PB_API struct pbString *csConfigurationNameAt( const struct csConfiguration *configuration, pbInt index );
PB_API struct pbString *csConfigurationSortNameAt( const struct csConfiguration *configuration, pbInt index );
// As written in the file; empty when the record gives none.
PB_API struct pbStore *csConfigurationStoreAt( const struct csConfiguration *configuration, pbInt index );
// Null while stopped and when the object could not be created.
PB_API struct pbObj *csConfigurationObjectAt( const struct csConfiguration *configuration, pbInt index );
// Null also when the sort has no status.
PB_API struct csStatusReporter *csConfigurationStatusAt( const struct csConfiguration *configuration, pbInt index );
// The live object of that name and sort, or null.
PB_API struct pbObj *csConfigurationObject( const struct csConfiguration *configuration, const struct pbString *name,
                                            const struct pbSort *sort );
// "modules" with the information of every module backend.
PB_API struct pbStore *csConfigurationModules( void );
// A record name: 1 to 255 letters, digits, "_", "-", "." (ASCII).
PB_API pbBool csObjectRecordNameOk( const struct pbString *name );

PB_DECLS_END

#endif
