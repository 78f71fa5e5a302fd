// To 12.0: of the flags of a TLS stack, those that concern certificates are a set of their own.
#include "in/csupdate/in_csupdate.hpp"

#include "pb/pb_flagset.h"

using namespace in::csupdate;

static constinit in::csupdate::Backend in___Csupdate20200204Backend;

void in___Csupdate20200204Startup( void )
{
    in::csupdate::start( in___Csupdate20200204Backend, "2020-02-04", in___Csupdate20200204Func );
}

void in___Csupdate20200204Shutdown( void )
{
    in___Csupdate20200204Backend.invalidate();
}

namespace {

using Flagset = pb::Ref<struct pbFlagset>;

// The old set, and where each flag went. Kept here because the sets of today may go on.
struct Move {
    const char *oldName;
    uint64_t oldMask;
    bool certificate;
    const char *newName;
    uint64_t newMask;
};
constexpr Move moves[] = {
    { "IN_TLS_FLAG_DISABLE_TLS_V1", 1, false, "IN_TLS_FLAG_DISABLE_TLS_V1", 1 },
    { "IN_TLS_FLAG_DISABLE_TLS_V1_1", 2, false, "IN_TLS_FLAG_DISABLE_TLS_V1_1", 2 },
    { "IN_TLS_FLAG_DISABLE_TLS_V1_2", 4, false, "IN_TLS_FLAG_DISABLE_TLS_V1_2", 4 },
    { "IN_TLS_FLAG_DISABLE_TLS_V1_3", 8, false, "IN_TLS_FLAG_DISABLE_TLS_V1_3", 8 },
    { "IN_TLS_FLAG_DISABLE_DTLS_V1", 16, false, "IN_TLS_FLAG_DISABLE_DTLS_V1", 16 },
    { "IN_TLS_FLAG_DISABLE_DTLS_V1_2", 32, false, "IN_TLS_FLAG_DISABLE_DTLS_V1_2", 32 },
    { "IN_TLS_FLAG_DONT_DEMAND_CLIENT_CERTIFICATE", 64, true, "IN_TLS_CERTIFICATE_FLAG_DONT_DEMAND_CLIENT", 1 },
    { "IN_TLS_FLAG_DONT_VALIDATE_CLIENT_CERTIFICATE", 128, true, "IN_TLS_CERTIFICATE_FLAG_DONT_VALIDATE_CLIENT", 2 },
    { "IN_TLS_FLAG_DONT_VALIDATE_SERVER_CERTIFICATE", 256, true, "IN_TLS_CERTIFICATE_FLAG_DONT_VALIDATE_SERVER", 4 },
    { "IN_TLS_FLAG_DONT_VALIDATE_HOSTNAME", 512, true, "IN_TLS_CERTIFICATE_FLAG_DISABLE_SUBJECT_CHECKS", 8 },
    { "IN_TLS_FLAG_INCLUDE_INSECURE_CIPHER_SUITES", 1024, false, "IN_TLS_FLAG_INCLUDE_INSECURE_CIPHER_SUITES", 64 },
    { "IN_TLS_FLAG_GENERATE_AD_HOC_CERTIFICATE", 2048, true, "IN_TLS_CERTIFICATE_FLAG_GENERATE_AD_HOC", 32 },
};

struct Sets {
    Flagset old = pb::adopt( pbFlagsetCreate() ), flags = pb::adopt( pbFlagsetCreate() ),
            certificateFlags = pb::adopt( pbFlagsetCreate() );

    Sets()
    {
        for ( const Move &move : moves ) {
            pbFlagsetAddFlagCstr( old.address(), move.oldName, -1, move.oldMask );
            pbFlagsetAddFlagCstr( of( move ).address(), move.newName, -1, move.newMask );
        }
        pbFlagsetAddFlagCstr( certificateFlags.address(), "IN_TLS_CERTIFICATE_FLAG_DISABLE_WILDCARD_PROCESSING", -1, 16 );
    }
    Flagset &of( const Move &move ) { return move.certificate ? certificateFlags : flags; }
};

bool splitFlags( Store &config )
{
    const pb::String text = value( config, "flags" );
    if ( !text || value( config, "certificateFlags" ) )
        return false;
    const Sets sets;
    const uint64_t old = pbFlagsetParse( sets.old.get(), text.get() );
    uint64_t flags = 0, certificateFlags = 0;
    for ( const Move &move : moves )
        if ( old & move.oldMask )
            ( move.certificate ? certificateFlags : flags ) |= move.newMask;
    setValue( config, "flags", pb::adopt( pbFlagsetGenerate( sets.flags.get(), flags ) ) );
    setValue( config, "certificateFlags", pb::adopt( pbFlagsetGenerate( sets.certificateFlags.get(), certificateFlags ) ) );
    return true;
}

} // namespace

void in___Csupdate20200204Func( struct csUpdateBackend *, struct csUpdate **update )
{
    PB_ASSERT( update );
    PB_ASSERT( *update );
    if ( !isAtMost( *update, 11 ) )
        return;
    rewriteObjects( update, pb::adopt( csUpdateObjectsBySortNameCstr( *update, "IN_TLS_STACK", -1 ) ), splitFlags );
    setVersion( update, "12.0" );
}
