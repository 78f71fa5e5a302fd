// csMigration: what the registered updates (cs_update_backend.h) make of a stored file. A value: the file is read once.
#ifndef CS_MIGRATION_H
#define CS_MIGRATION_H

#include "cs/cs_diagnosis.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csMigration;
struct pbBuffer;
struct pbString;
struct pbVector;

PB_API const struct pbSort *csMigrationSort( void );
PB_API struct csMigration *csMigrationRetain( const struct csMigration *obj );
PB_API void csMigrationRelease( const struct csMigration *obj );
PB_API struct pbObj *csMigrationObj( const struct csMigration *obj );
PB_API struct csMigration *csMigrationFrom( struct pbObj *obj );
PB_API struct pbString *csMigrationToString( const struct csMigration *obj );
PB_API pbInt csMigrationCompare( const struct csMigration *a, const struct csMigration *b );
PB_API pbBool csMigrationEquals( const struct csMigration *a, const struct csMigration *b );

// Reads the file and runs the updates on it. It need not be what csConfigurationTryLoad accepts: objects of modules that
// do not run here are brought up to date all the same. Null when it cannot be read, is not JSON, has a key or name twice
// or no "objects"; *diagnoses is then a vector of csDiagnoses, otherwise empty. What it held before is released.
PB_API struct csMigration *csMigrationTryLoad( const struct pbString *path, struct pbVector **diagnoses );

// Whether the text differs from what the file holds.
PB_API pbBool csMigrationChanged( const struct csMigration *migration );
// The file's text brought up to date, comments, order and layout kept as csConfigurationTrySave does; byte for byte the
// old one when the updates had nothing to do.
PB_API struct pbBuffer *csMigrationText( const struct csMigration *migration );
// From the old text to the new one as diff -u shows it; empty when nothing changed.
PB_API struct pbBuffer *csMigrationDiff( const struct csMigration *migration );
// Each update that ran, in their order, as a pbStore: "date", "module", "before" (the version recorded for the module,
// left out where none was), "after", "objects" (an array of the names of those that it changed) and "info" (true when it
// changed what is stored of modules). One that finds its target version or a later one recorded does not run.
PB_API struct pbVector *csMigrationUpdates( const struct csMigration *migration );
// Replaces the file by the new text, as csConfigurationTrySave does; nothing is written when nothing changed. False when
// it could not be, also when the file is not what was read any more: *problem is then "PATH: what went wrong",
// *optionalOrigin is CS_DIAGNOSIS_OF_PERMISSION or CS_DIAGNOSIS_OF_SYSTEM, and the old file is whole.
PB_API pbBool csMigrationTryWrite( const struct csMigration *migration, struct pbString **problem,
                                   pbInt *optionalOrigin );

PB_DECLS_END

#endif
