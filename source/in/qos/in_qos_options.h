// inQosOptions: how a socket marks what it sends, a value: a profile and three settings, each of which either follows
// the profile (is default) or was set explicitly. Orders by profile, then setting by setting, an explicit setting
// before one that follows the profile, then by value.
#ifndef IN_QOS_OPTIONS_H
#define IN_QOS_OPTIONS_H

#include "in/base/in_api.h"
#include "pb/pb_obj.h"

PB_DECLS_BEGIN

struct inQosOptions;
struct pbStore;
struct pbString;

IN_API const struct pbSort *inQosOptionsSort( void );
IN_API struct inQosOptions *inQosOptionsRetain( const struct inQosOptions *obj );
IN_API void inQosOptionsRelease( const struct inQosOptions *obj );
IN_API struct pbObj *inQosOptionsObj( const struct inQosOptions *obj );
IN_API struct inQosOptions *inQosOptionsFrom( struct pbObj *obj );
IN_API struct pbString *inQosOptionsToString( const struct inQosOptions *obj );
IN_API pbInt inQosOptionsCompare( const struct inQosOptions *a, const struct inQosOptions *b );
IN_API pbBool inQosOptionsEquals( const struct inQosOptions *a, const struct inQosOptions *b );

// The profile IN_QOS_DEFAULTS_NONE, which all settings follow.
IN_API struct inQosOptions *inQosOptionsCreate( void );
IN_API struct inQosOptions *inQosOptionsCreateFrom( const struct inQosOptions *source );

// IN_QOS_DEFAULTS_...; explicit settings stay when the profile changes.
IN_API pbInt inQosOptionsDefaults( const struct inQosOptions *opt );
IN_API void inQosOptionsSetDefaults( struct inQosOptions **opt, pbInt dflt );

// The IPv4 TOS or IPv6 traffic class byte, DSCP in its upper six bits; the setter keeps the low eight bits.
IN_API pbInt inQosOptionsLayer3Tos( const struct inQosOptions *opt );
IN_API void inQosOptionsSetLayer3Tos( struct inQosOptions **opt, pbInt tos );
IN_API pbBool inQosOptionsLayer3TosDefault( const struct inQosOptions *opt );
IN_API void inQosOptionsSetLayer3TosDefault( struct inQosOptions **opt );

// IN_QOS_LAYER2_PCP_...
IN_API pbInt inQosOptionsLayer2Pcp( const struct inQosOptions *opt );
IN_API void inQosOptionsSetLayer2Pcp( struct inQosOptions **opt, pbInt pcp );
IN_API pbBool inQosOptionsLayer2PcpDefault( const struct inQosOptions *opt );
IN_API void inQosOptionsSetLayer2PcpDefault( struct inQosOptions **opt );

// IN_QOS_WINDOWS_TRAFFIC_TYPE_...
IN_API pbInt inQosOptionsWindowsTrafficType( const struct inQosOptions *opt );
IN_API void inQosOptionsSetWindowsTrafficType( struct inQosOptions **opt, pbInt tt );
IN_API pbBool inQosOptionsWindowsTrafficTypeDefault( const struct inQosOptions *opt );
IN_API void inQosOptionsSetWindowsTrafficTypeDefault( struct inQosOptions **opt );

// Key "defaults" always; explicit settings, and with storeDefaults all of them, as "layer3Tos" ("0xB8"), "layer2Pcp"
// and "windowsTrafficType".
IN_API struct pbStore *inQosOptionsStore( const struct inQosOptions *opt, pbBool storeDefaults );
// Bad values are ignored.
IN_API struct inQosOptions *inQosOptionsRestore( const struct pbStore *store );

PB_DECLS_END

#endif
