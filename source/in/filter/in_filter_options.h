// inFilterOptions: the configuration of an address filter, a value.
#ifndef IN_FILTER_OPTIONS_H
#define IN_FILTER_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inFilterEntry;
struct inFilterOptions;
struct inStack;
struct pbStore;
struct pbString;
struct pbVector;

IN_API const struct pbSort *inFilterOptionsSort( void );
IN_API struct inFilterOptions *inFilterOptionsRetain( const struct inFilterOptions *obj );
IN_API void inFilterOptionsRelease( const struct inFilterOptions *obj );
IN_API struct pbObj *inFilterOptionsObj( const struct inFilterOptions *obj );
IN_API struct inFilterOptions *inFilterOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inFilterOptionsToString( const struct inFilterOptions *obj );
IN_API pbInt inFilterOptionsCompare( const struct inFilterOptions *a, const struct inFilterOptions *b );
IN_API pbBool inFilterOptionsEquals( const struct inFilterOptions *a, const struct inFilterOptions *b );

IN_API struct inFilterOptions *inFilterOptionsCreate( void );
IN_API struct inFilterOptions *inFilterOptionsCreateFrom( const struct inFilterOptions *source );

// Of struct inFilterEntry, in the order in which they are looked at.
IN_API pbInt inFilterOptionsEntriesLength( const struct inFilterOptions *options );
IN_API struct pbVector *inFilterOptionsEntriesVector( const struct inFilterOptions *options );
IN_API void inFilterOptionsSetEntriesVector( struct inFilterOptions **options, const struct pbVector *vec );
IN_API void inFilterOptionsClearEntries( struct inFilterOptions **options );
IN_API struct inFilterEntry *inFilterOptionsEntryAt( const struct inFilterOptions *options, pbInt index );
IN_API void inFilterOptionsSetEntryAt( struct inFilterOptions **options, pbInt index,
                                       const struct inFilterEntry *entry );
IN_API void inFilterOptionsDelEntryAt( struct inFilterOptions **options, pbInt index );
IN_API void inFilterOptionsAppendEntry( struct inFilterOptions **options, const struct inFilterEntry *entry );
IN_API void inFilterOptionsPrependEntry( struct inFilterOptions **options, const struct inFilterEntry *entry );
// index 0..length
IN_API void inFilterOptionsInsertEntry( struct inFilterOptions **options, pbInt index,
                                        const struct inFilterEntry *entry );

// The stack that is asked for names, and whose address may be permitted: itself, which goes first and is not stored, or
// by the name of its configuration record, which may appear and change while the filter runs.
IN_API struct inStack *inFilterOptionsStack( const struct inFilterOptions *options ); // or null
IN_API pbBool inFilterOptionsHasStack( const struct inFilterOptions *options );
IN_API void inFilterOptionsSetStack( struct inFilterOptions **options, struct inStack *stack );
IN_API void inFilterOptionsDelStack( struct inFilterOptions **options );
IN_API struct pbString *inFilterOptionsStackName( const struct inFilterOptions *options ); // or null
IN_API pbBool inFilterOptionsHasStackName( const struct inFilterOptions *options );
IN_API void inFilterOptionsSetStackName( struct inFilterOptions **options, const struct pbString *stackName );
IN_API void inFilterOptionsDelStackName( struct inFilterOptions **options );

// Whether the stack's own address is let in; by default it is.
IN_API pbBool inFilterOptionsStackAddressPermitted( const struct inFilterOptions *options );
IN_API pbBool inFilterOptionsStackAddressPermittedDefault( const struct inFilterOptions *options );
IN_API void inFilterOptionsSetStackAddressPermitted( struct inFilterOptions **options, pbBool permitted );
IN_API void inFilterOptionsSetStackAddressPermittedDefault( struct inFilterOptions **options );
// Milliseconds above 0 from the end of one look-up of all names to the next; by default 10 minutes.
IN_API pbInt inFilterOptionsRebuildInterval( const struct inFilterOptions *options );
IN_API pbBool inFilterOptionsRebuildIntervalDefault( const struct inFilterOptions *options );
IN_API void inFilterOptionsSetRebuildInterval( struct inFilterOptions **options, pbInt interval );
IN_API void inFilterOptionsSetRebuildIntervalDefault( struct inFilterOptions **options );

// Without storeDefaults settings that hold their default are left out.
IN_API struct pbStore *inFilterOptionsStore( const struct inFilterOptions *options, pbBool storeDefaults );
// What is missing or not valid keeps its default; an entry without a valid host is left out.
IN_API struct inFilterOptions *inFilterOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
