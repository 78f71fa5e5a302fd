// What the steps of the configuration's migration share.
#ifndef IN_CSUPDATE_HPP
#define IN_CSUPDATE_HPP

#include "cs/cs_update.h"
#include "cs/cs_update_backend.h"
#include "cs/cs_update_object.h"
#include "cs/cs_update_objects.h"
#include "in/csupdate/in_csupdate_internal.h"
#include "pb/pb_global.hpp"
#include "pb/pb_store.h"
#include "pb/pb_string.hpp"

namespace in::csupdate {

using Store = pb::Ref<struct pbStore>;
using Backend = pb::Global<struct csUpdateBackend>;

void start( Backend &backend, const char *date, csUpdateFunc *func );

// Whether the tree is of that major version or older, or of none that is known.
bool isAtMost( const struct csUpdate *update, pbInt major );
void setVersion( struct csUpdate **update, const char *version );

// Rewrites the configuration of the objects; rewrite( Store & ) says whether it changed it.
template <class Rewrite>
void rewriteObjects( struct csUpdate **update, const pb::Ref<struct csUpdateObjects> &objects, Rewrite rewrite )
{
    for ( pbInt index = 0; index < csUpdateObjectsLength( objects.get() ); ++index ) {
        auto object = pb::adopt( csUpdateObjectsObjectAt( objects.get(), index ) );
        Store config = pb::adopt( csUpdateObjectConfig( object.get() ) );
        if ( !rewrite( config ) )
            continue;
        csUpdateObjectSetConfig( object.address(), config.get() );
        csUpdateSetObject( update, pb::adopt( csUpdateObjectsNameAt( objects.get(), index ) ).get(), object.get() );
    }
}

// Rewrites the stores that a store holds, whatever their keys; rewrite( Store & ) says whether it changed one. Whether
// any was.
template <class Rewrite> bool rewriteMembers( Store &store, Rewrite rewrite )
{
    bool changed = false;
    for ( pbInt index = 0; index < pbStoreLength( store.get() ); ++index ) {
        Store member = pb::adopt( pbStoreStoreAt( store.get(), index ) );
        if ( !member || !rewrite( member ) )
            continue;
        changed = true;
        pbStoreSetStore( store.address(), pb::adopt( pbStoreKeyAt( store.get(), index ) ).get(), member.get() );
    }
    return changed;
}

inline pb::String value( const Store &store, const char *key )
{
    return pb::adopt( pbStoreValueCstr( store.get(), key, -1 ) );
}
inline void setValue( Store &store, const char *key, const pb::String &text )
{
    pbStoreSetValueCstr( store.address(), key, -1, text.get() );
}
inline Store member( const Store &store, const char *key )
{
    return pb::adopt( pbStoreStoreCstr( store.get(), key, -1 ) );
}
inline void setMember( Store &store, const char *key, const Store &member )
{
    pbStoreSetStoreCstr( store.address(), key, -1, member.get() );
}
// Whether there was one, of either kind.
bool remove( Store &store, const char *key );

} // namespace in::csupdate

#endif
