// The order in which the targets of a service are to be tried (RFC 2782), except that weight 0 always comes last.
#include "in/dns/in_dns_data_in_srv.hpp"

#include "pb/pb_random.h"
#include "pb/pb_vector.hpp"

#include <map>

namespace {

using Srv = pb::Ref<struct inDnsDataInSrv>;

// The records of one priority.
struct Group {
    std::vector<Srv> weighted;
    std::vector<pbInt> weights; // of those
    pbInt sum = 0;
    std::vector<Srv> weightless;

    void add( Srv srv )
    {
        const pbInt weight = srv->weight;
        if ( weight == 0 )
            return weightless.push_back( std::move( srv ) );
        PB_ASSERT( PB_INT_ADD_OK( sum, weight ) );
        sum += weight;
        weighted.push_back( std::move( srv ) );
        weights.push_back( weight );
    }
    void drainTo( struct pbVector *ordered );
};

// Moves the record at the index to the end of the result; those behind it keep their order.
void take( std::vector<Srv> &from, size_t index, struct pbVector *ordered )
{
    const auto taken = from.begin() + static_cast<ptrdiff_t>( index );
    pb___VectorAppendAdopted( ordered, inDnsDataInSrvObj( taken->release() ) );
    from.erase( taken );
}

void Group::drainTo( struct pbVector *ordered )
{
    while ( !weighted.empty() ) {
        const size_t index = in::dns::weightedIndex( weights, pbRandomNonNegativeIntRange( 0, sum ) );
        sum -= weights[index];
        weights.erase( weights.begin() + static_cast<ptrdiff_t>( index ) );
        take( weighted, index, ordered );
    }
    while ( !weightless.empty() ) {
        const auto last = static_cast<pbInt>( weightless.size() ) - 1;
        take( weightless, static_cast<size_t>( pbRandomNonNegativeIntRange( 0, last ) ), ordered );
    }
}

} // namespace

size_t in::dns::weightedIndex( const std::vector<pbInt> &weights, pbInt drawn )
{
    size_t index = 0;
    for ( pbInt total = weights[0]; total < drawn; total += weights[index] )
        ++index;
    return index;
}

struct pbVector *inDnsDataInSrvVectorOrder( const struct pbVector *vec )
{
    PB_ASSERT( vec );
    PB_ASSERT( pbVectorContainsOnly( vec, inDnsDataInSrvSort() ) );
    std::map<pbInt, Group> groups;
    const pbInt length = pbVectorLength( vec );
    for ( pbInt i = 0; i < length; ++i ) {
        Srv srv = pb::adopt( inDnsDataInSrvFrom( pbVectorObjAt( vec, i ) ) );
        groups[srv->priority].add( std::move( srv ) );
    }
    auto ordered = pb::adopt( pb___VectorCreateWithRoom( length ) );
    for ( auto &[priority, group] : groups )
        group.drainTo( ordered.get() );
    return ordered.release();
}
