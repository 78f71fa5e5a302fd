// The state of a query.
#include "in/dns/in_dns_query_state.hpp"

#include "pb/pb_store.h"

namespace in::dns {

namespace {

pb::Ref<struct pbStore> texts( const struct pbVector *vector )
{
    auto array = pb::adopt( pbStoreCreate() );
    for ( pbInt i = 0; i < pbVectorLength( vector ); ++i ) {
        const auto element = pb::adopt( pbVectorObjAt( vector, i ) );
        pbStoreArrayAppendValue( array.address(), pb::adopt( pbObjToString( element.get() ) ).get() );
    }
    return array;
}

} // namespace

QueryState::QueryState( const char *traceName, struct trAnchor *optionalAnchor )
    : trace_( pb::adopt( trStreamCreateCstr( traceName, -1 ) ) )
{
    if ( optionalAnchor )
        trAnchorComplete( optionalAnchor, trace_.get() );
}

void QueryState::end( const struct pbVector *result, const char *property )
{
    const auto array = texts( result );
    pb::Guard guard( monitor_ );
    if ( pbSignalAsserted( end_.get() ) )
        return;
    result_ = pb::share( result );
    pbSignalAssert( end_.get() );
    trStreamSetPropertyCstrStore( trace_.get(), property, -1, array.get() );
    trStreamSetPropertyCstrBool( trace_.get(), "inDnsError", -1, false );
}

void QueryState::fail( pbInt failure )
{
    pb::Guard guard( monitor_ );
    failOnce( failure );
}

void QueryState::failOnce( pbInt failure )
{
    if ( pbSignalAsserted( end_.get() ) )
        return;
    failure_ = failure;
    pbSignalAssert( error_.get() );
    pbSignalAssert( end_.get() );
    trStreamSetNotable( trace_.get() );
    trStreamSetPropertyCstrBool( trace_.get(), "inDnsError", -1, true );
}

bool QueryState::tryJoin()
{
    pb::Guard guard( monitor_ );
    if ( givenUp_ )
        return false;
    ++askers_;
    return true;
}

void QueryState::leave()
{
    pb::Guard guard( monitor_ );
    --askers_;
}

bool QueryState::tryGiveUp()
{
    pb::Guard guard( monitor_ );
    if ( askers_ == 0 && !pbSignalAsserted( end_.get() ) ) {
        givenUp_ = true;
        failOnce( IN_DNS_QUERY_FAILURE_GIVEN_UP );
    }
    return pbSignalAsserted( end_.get() );
}

bool QueryState::givenUp() const
{
    pb::Guard guard( monitor_ );
    return givenUp_;
}

bool QueryState::ended() const
{
    pb::Guard guard( monitor_ );
    return pbSignalAsserted( end_.get() );
}

bool QueryState::failed() const
{
    pb::Guard guard( monitor_ );
    return pbSignalAsserted( error_.get() );
}

pbInt QueryState::failure() const
{
    pb::Guard guard( monitor_ );
    return failure_;
}

pb::Ref<struct pbVector> QueryState::result() const
{
    pb::Guard guard( monitor_ );
    return result_;
}

pbInt QueryState::length() const
{
    const auto vector = result();
    return vector ? pbVectorLength( vector.get() ) : 0;
}

struct pbObj *QueryState::at( pbInt index ) const
{
    const auto vector = result();
    PB_ASSERT( index >= 0 && index < ( vector ? pbVectorLength( vector.get() ) : 0 ) );
    return pbVectorObjAt( vector.get(), index );
}

} // namespace in::dns
