// The order in which the targets of a service are to be tried (RFC 2782), except that weight 0 always comes last.
#include "in/dns/in_dns_data_in_srv.hpp"

#include "pb/pb_random.h"
#include "pb/pb_vector.hpp"

#include <algorithm>
#include <bit>
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

void append( struct pbVector *ordered, Srv &srv )
{
    pb___VectorAppendAdopted( ordered, inDnsDataInSrvObj( srv.release() ) );
}

void Group::drainTo( struct pbVector *ordered )
{
    in::dns::RunningTotals totals( weights );
    for ( size_t left = weighted.size(); left; --left ) {
        const size_t index = totals.firstToReach( pbRandomNonNegativeIntRange( 0, sum ) );
        totals.subtract( index, weights[index] );
        sum -= weights[index];
        append( ordered, weighted[index] );
    }
    for ( ; !weightless.empty(); weightless.pop_back() ) {
        const auto last = static_cast<pbInt>( weightless.size() ) - 1;
        std::swap( weightless[static_cast<size_t>( pbRandomNonNegativeIntRange( 0, last ) )], weightless.back() );
        append( ordered, weightless.back() );
    }
}

} // namespace

// A Fenwick tree: the node at a position holds the sum of as many weights up to it as its lowest bit says.
in::dns::RunningTotals::RunningTotals( const std::vector<pbInt> &weights ) : nodes_( weights.size() + 1 )
{
    for ( size_t position = 1; position < nodes_.size(); ++position ) {
        nodes_[position] += weights[position - 1];
        if ( const size_t parent = position + ( position & -position ); parent < nodes_.size() )
            nodes_[parent] += nodes_[position];
    }
}

size_t in::dns::RunningTotals::firstToReach( pbInt drawn ) const
{
    drawn = std::max( drawn, PB_INT_FROM( 1 ) ); // every record that is left reaches 0
    size_t before = 0;                           // so many do not reach it
    for ( size_t step = std::bit_floor( nodes_.size() ); step; step /= 2 )
        if ( before + step < nodes_.size() && nodes_[before + step] < drawn ) {
            before += step;
            drawn -= nodes_[before];
        }
    return before;
}

void in::dns::RunningTotals::subtract( size_t index, pbInt weight )
{
    for ( size_t position = index + 1; position < nodes_.size(); position += position & -position )
        nodes_[position] -= weight;
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
