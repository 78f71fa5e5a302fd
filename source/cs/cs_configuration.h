// The loaded configuration: named records of sort and store, each with a live object once started.
// A file is JSON with // and /* */ comments: {"objects": {NAME: {"sort": "IN_STACK", "config": {...}}}}; "config" may
// be left out. Objects become stores, arrays store arrays; numbers and booleans their text as written. Beside "objects"
// a file that was saved has {"modules": {NAME: {"version": "17.1", "info": {...}}}}: which version of each module wrote
// it, and what the module told of the host. Where "modules" is missing the file counts as never brought up to date.
//
// Loading runs the registered updates (cs_update_backend.h) on what the file says and checks what they make of it; the
// file itself is left alone until it is saved.
//
// Threads: any. Start, Stop, Apply, TryReload, TrySave and Tree of one configuration wait for each other; they call
// into the sorts without a monitor held, and none of them may be called from inside a callback of a sort.
#ifndef CS_CONFIGURATION_H
#define CS_CONFIGURATION_H

#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csConfiguration;
struct csStatusReporter;
struct pbSignalable;
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
// The same, with the problems as csDiagnoses (cs_diagnosis.h).
PB_API struct csConfiguration *csConfigurationTryLoadDiagnosed( const struct pbString *path,
                                                                struct pbVector **diagnoses );
// The same from memory; name stands for the file in messages.
PB_API struct csConfiguration *csConfigurationTryParse( const void *bytes, pbInt byteCount, const struct pbString *name,
                                                        struct pbVector **problems );

// Creates the live objects, in the order of the file. A started configuration is left as it is.
PB_API void csConfigurationStart( struct csConfiguration *configuration );
// Releases them, in reverse order; once started it must be stopped before the module backends go.
PB_API void csConfigurationStop( struct csConfiguration *configuration );

// What applying another configuration did to a record; see csConfigurationApply.
#define CS_CONFIGURATION_CREATED "created"       // the record is new, or its object could not be created before
#define CS_CONFIGURATION_CONFIGURED "configured" // its object was given the new configuration
#define CS_CONFIGURATION_REPLACED "replaced" // another sort: the object was released and one of the new sort created
#define CS_CONFIGURATION_REMOVED "removed"   // the record is gone, and its object released
#define CS_CONFIGURATION_FAILED "failed"     // its object could not be created; it is tried again next time

// Makes a configuration, running or not, what another one says; that is parsed and stopped, and stays as it is.
// A record that says the same as before (by its sort's normalised form, so that order and explicit defaults do not
// matter) keeps its object untouched, with what was set on it at run time. First what is removed or replaced is
// released, in reverse order, then the rest is configured or created in the order of the new file. *optionalChanges,
// when asked for, becomes a vector of pbStores { "name", "sort", "change" (above) } of the records that were touched,
// removed ones first; what it held before is released. While stopped nothing is touched and it is empty.
PB_API void csConfigurationApply( struct csConfiguration *configuration, const struct csConfiguration *next,
                                  struct pbVector **optionalChanges );
// Loads the file and applies it. False when anything is wrong with the file: everything stays as it was, *problems is
// as after csConfigurationTryLoad and *optionalChanges is untouched.
PB_API pbBool csConfigurationTryReload( struct csConfiguration *configuration, const struct pbString *path,
                                        struct pbVector **problems, struct pbVector **optionalChanges );

// The whole stored tree as it is now: "objects" with the configuration of every record, what was set at run time
// included, and "modules" with versions and information (see above). csJsonFromStore takes objects that are named "0",
// "1", ... for an array: a text that is to be loaded again is written by csConfigurationTrySave.
PB_API struct pbStore *csConfigurationTree( struct csConfiguration *configuration );
// Writes that tree to the file, which at any moment holds the old or the new text whole: a temporary file beside it
// (".NAME.cs-save-XXXXXX"; leftovers of killed processes are swept up by the next save), synced and renamed. A symbolic
// link is followed; owner and mode of the old file are kept, a new one is for its owner alone. Nothing is written when
// no record and no version differ from what the file holds. The file that the configuration was loaded from is
// somebody's text: only the values that differ are replaced in it, comments, order and layout stay (an array that
// changes is rewritten whole, with the comments inside it). It gets the version of each module, and their information
// only where it has one already. When the file no longer is what was loaded or saved last, nothing is written: somebody
// edits it, and a re-load comes first. Any other file is replaced. False when it could not be saved: *problem is then
// "PATH: what went wrong" for a person, and the old file is whole.
PB_API pbBool csConfigurationTrySave( struct csConfiguration *configuration, const struct pbString *path,
                                      struct pbString **problem );

// Signalled when a record or its object appears, goes or is configured; register before reading.
PB_API void csConfigurationUpdateAddSignalable( struct csConfiguration *configuration,
                                                struct pbSignalable *signalable );
PB_API void csConfigurationUpdateDelSignalable( struct csConfiguration *configuration,
                                                struct pbSignalable *signalable );

// Records in the order of the file, index 0..length - 1. Applying another configuration changes length and order: while
// that may happen, read them together by csConfigurationRecords.
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
// All records at one moment: a vector of csRecords in the order of the file.
PB_API struct pbVector *csConfigurationRecords( const struct csConfiguration *configuration );

// "modules" with the information of every module backend.
PB_API struct pbStore *csConfigurationModules( void );
// A record name: 1 to 255 letters, digits, "_", "-", "." (ASCII).
PB_API pbBool csObjectRecordNameOk( const struct pbString *name );

PB_DECLS_END

#endif
