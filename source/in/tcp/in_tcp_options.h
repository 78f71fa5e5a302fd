// inTcpOptions: the TCP part of a stack's options, a value. Each setting has an is-default mark, which its setter
// clears and its default setter sets; the comment beside a setting ends with its default. Orders by port range (absent
// first), then setting by setting in the order below, an explicit setting before a default one, then by value.
#ifndef IN_TCP_OPTIONS_H
#define IN_TCP_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inTcpOptions;
struct inTcpPortRange;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inTcpOptionsSort( void );
IN_API struct inTcpOptions *inTcpOptionsRetain( const struct inTcpOptions *obj );
IN_API void inTcpOptionsRelease( const struct inTcpOptions *obj );
IN_API struct pbObj *inTcpOptionsObj( const struct inTcpOptions *obj );
IN_API struct inTcpOptions *inTcpOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inTcpOptionsToString( const struct inTcpOptions *obj );
IN_API pbInt inTcpOptionsCompare( const struct inTcpOptions *a, const struct inTcpOptions *b );
IN_API pbBool inTcpOptionsEquals( const struct inTcpOptions *a, const struct inTcpOptions *b );

IN_API struct inTcpOptions *inTcpOptionsCreate( void );
IN_API struct inTcpOptions *inTcpOptionsCreateFrom( const struct inTcpOptions *source );

// Null: the system's ephemeral ports.
IN_API struct inTcpPortRange *inTcpOptionsPortRange( const struct inTcpOptions *options );
IN_API pbBool inTcpOptionsHasPortRange( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetPortRange( struct inTcpOptions **options, const struct inTcpPortRange *portRange );
IN_API void inTcpOptionsDelPortRange( struct inTcpOptions **options );

// Whether the stack remembers peers that did not answer; 1.
IN_API pbBool inTcpOptionsBlacklistEnabled( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistEnabled( struct inTcpOptions **options, pbBool enabled );
IN_API pbBool inTcpOptionsBlacklistEnabledDefault( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistEnabledDefault( struct inTcpOptions **options );

// How long, in milliseconds; greater than 0; 120000.
IN_API pbInt inTcpOptionsBlacklistTimeout( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistTimeout( struct inTcpOptions **options, pbInt timeout );
IN_API pbBool inTcpOptionsBlacklistTimeoutDefault( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistTimeoutDefault( struct inTcpOptions **options );

// Milliseconds; greater than 0; 15000.
IN_API pbInt inTcpOptionsBlacklistGranularity( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistGranularity( struct inTcpOptions **options, pbInt granularity );
IN_API pbBool inTcpOptionsBlacklistGranularityDefault( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetBlacklistGranularityDefault( struct inTcpOptions **options );

// 0.
IN_API pbBool inTcpOptionsKeepAliveEnabled( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetKeepAliveEnabled( struct inTcpOptions **options, pbBool enabled );
IN_API pbBool inTcpOptionsKeepAliveEnabledDefault( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetKeepAliveEnabledDefault( struct inTcpOptions **options );

// Idle time before the first probe and between probes; greater than 0; 30000.
IN_API pbInt inTcpOptionsKeepAliveTime( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetKeepAliveTime( struct inTcpOptions **options, pbInt milliseconds );
IN_API pbBool inTcpOptionsKeepAliveTimeDefault( const struct inTcpOptions *options );
IN_API void inTcpOptionsSetKeepAliveTimeDefault( struct inTcpOptions **options );

// Explicit settings, and with storeDefaults all of them, under their names: "blacklistEnabled", ...; "portRange" when
// there is one.
IN_API struct pbStore *inTcpOptionsStore( const struct inTcpOptions *options, pbBool storeDefaults );
// Bad values are ignored.
IN_API struct inTcpOptions *inTcpOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
