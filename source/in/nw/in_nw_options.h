// inNwOptions: the configuration of an interface configuration stack, a value: which interface, whether it is to be up,
// the address to put on it, and the condition on which that holds. Orders field by field in the order below, absent
// first.
#ifndef IN_NW_OPTIONS_H
#define IN_NW_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct csCondition;
struct inAddress;
struct inNetwork;
struct inNwOptions;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inNwOptionsSort( void );
IN_API struct inNwOptions *inNwOptionsRetain( const struct inNwOptions *obj );
IN_API void inNwOptionsRelease( const struct inNwOptions *obj );
IN_API struct pbObj *inNwOptionsObj( const struct inNwOptions *obj );
IN_API struct inNwOptions *inNwOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inNwOptionsToString( const struct inNwOptions *obj );
IN_API pbInt inNwOptionsCompare( const struct inNwOptions *a, const struct inNwOptions *b );
IN_API pbBool inNwOptionsEquals( const struct inNwOptions *a, const struct inNwOptions *b );

// Nothing wished.
IN_API struct inNwOptions *inNwOptionsCreate( void );
IN_API struct inNwOptions *inNwOptionsCreateFrom( const struct inNwOptions *source );

// The kernel's name of the interface; null when absent.
IN_API struct pbString *inNwOptionsInterfaceIdentifier( const struct inNwOptions *options );
IN_API pbBool inNwOptionsHasInterfaceIdentifier( const struct inNwOptions *options );
IN_API void inNwOptionsSetInterfaceIdentifier( struct inNwOptions **options, const struct pbString *identifier );
IN_API void inNwOptionsDelInterfaceIdentifier( struct inNwOptions **options );

// The condition itself, which goes before its name and is not stored; null when absent.
IN_API struct csCondition *inNwOptionsCsCondition( const struct inNwOptions *options );
IN_API pbBool inNwOptionsHasCsCondition( const struct inNwOptions *options );
IN_API void inNwOptionsSetCsCondition( struct inNwOptions **options, const struct csCondition *condition );
IN_API void inNwOptionsDelCsCondition( struct inNwOptions **options );

// The record name of the condition (csObjectRecordNameOk); null when absent.
IN_API struct pbString *inNwOptionsCsConditionName( const struct inNwOptions *options );
IN_API pbBool inNwOptionsHasCsConditionName( const struct inNwOptions *options );
IN_API void inNwOptionsSetCsConditionName( struct inNwOptions **options, const struct pbString *conditionName );
IN_API void inNwOptionsDelCsConditionName( struct inNwOptions **options );

// Whether to bring the interface up; any value but 0 is true.
IN_API pbBool inNwOptionsStatus( const struct inNwOptions *options );
IN_API void inNwOptionsSetStatus( struct inNwOptions **options, pbBool status );

// The address to put on the interface; null when absent.
IN_API struct inAddress *inNwOptionsLayer3UnicastAddress( const struct inNwOptions *options );
IN_API pbBool inNwOptionsHasLayer3UnicastAddress( const struct inNwOptions *options );
IN_API void inNwOptionsSetLayer3UnicastAddress( struct inNwOptions **options, const struct inAddress *address );
IN_API void inNwOptionsDelLayer3UnicastAddress( struct inNwOptions **options );

// The network that the address is in, for its prefix length; null when absent. While both are set it contains the
// address: to change both, delete one first.
IN_API struct inNetwork *inNwOptionsLayer3Network( const struct inNwOptions *options );
IN_API pbBool inNwOptionsHasLayer3Network( const struct inNwOptions *options );
IN_API void inNwOptionsSetLayer3Network( struct inNwOptions **options, const struct inNetwork *network );
IN_API void inNwOptionsDelLayer3Network( struct inNwOptions **options );

// Keys in the order above but the condition itself: "status" always, the others when present. No setting has a default
// that would be left out, so storeDefaults changes nothing.
IN_API struct pbStore *inNwOptionsStore( const struct inNwOptions *options, pbBool storeDefaults );
// Bad values are ignored, and a network that does not contain the address is dropped.
IN_API struct inNwOptions *inNwOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
