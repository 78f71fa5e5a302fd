// Checks of an address filter, its stack's address included, with lists of 10 to 1,000,000 entries: beside the walk over
// the entries that defines the answer, and beside a binary trie. From one thread and from two.
#include "bench_ratio.hpp"

#include "in/base/in_address.h"
#include "in/base/in_flags.h"
#include "in/base/in_options.h"
#include "in/base/in_stack.h"
#include "in/filter/in_filter.h"
#include "in/filter/in_filter_entry.h"
#include "in/filter/in_filter_entry_flags.h"
#include "in/filter/in_filter_options.h"
#include "pb/pb_string.hpp"
#include "support/module_host.hpp"

#include <memory>
#include <mutex>
#include <random>

namespace {

using Address = pb::Ref<struct inAddress>;

struct Entry {
    Address address;
    pbInt bits;
};

// Walks a bit at a time until one entry is left.
class Trie {
public:
    void add( const Entry &entry )
    {
        size_t at = 0;
        for ( pbInt depth = 0;; ++depth ) {
            Node &node = nodes_[at];
            if ( depth == entry.bits || ( !node.children[0] && !node.children[1] && !node.entry ) ) {
                if ( !node.entry || node.entry->bits > entry.bits )
                    node.entry = &entry; // shorter ones hold the longer ones that end here as well
                return;
            }
            if ( const Entry *moved = node.entry; moved && moved->bits > depth ) {
                node.entry = nullptr;
                const size_t below = child( at, bitAt( moved->address.get(), depth ) );
                nodes_[below].entry = moved;
            }
            else if ( moved )
                return;
            at = child( at, bitAt( entry.address.get(), depth ) );
        }
    }
    bool contains( const struct inAddress *address ) const
    {
        const pbInt length = inAddressLength( address ) * 8;
        uint32_t at = 0;
        for ( pbInt depth = 0;; ++depth ) {
            const Node &node = nodes_[at];
            if ( node.entry && inAddressMatchingBits( node.entry->address.get(), address ) >= node.entry->bits )
                return true;
            if ( depth == length || !( at = node.children[bitAt( address, depth )] ) )
                return false;
        }
    }

private:
    struct Node {
        uint32_t children[2] = {};
        const Entry *entry = nullptr;
    };
    static bool bitAt( const struct inAddress *address, pbInt index )
    {
        return inAddressBacking( address )[index / 8] >> ( 7 - index % 8 ) & 1;
    }
    size_t child( size_t of, bool bit )
    {
        if ( !nodes_[of].children[bit] ) {
            nodes_.emplace_back();
            nodes_[of].children[bit] = static_cast<uint32_t>( nodes_.size() - 1 );
        }
        return nodes_[of].children[bit];
    }
    std::vector<Node> nodes_{ 1 };
};

class Random {
public:
    // Hosts and networks as they are given away: IPv4 /24 to /32, IPv6 /48 to /64 and hosts, in three large blocks.
    Entry entry( bool isV4 )
    {
        const auto bits = static_cast<pbInt>( isV4 ? 24 + random_() % 9 : random_() % 2 ? 128 : 48 + random_() % 17 );
        return { address( isV4 ), bits };
    }
    Address address( bool isV4 )
    {
        static constexpr uint8_t blocks[] = { 0x26, 0x2A, 0x24 };
        uint8_t bytes[16];
        for ( uint8_t &byte : bytes )
            byte = static_cast<uint8_t>( random_() );
        if ( isV4 )
            return pb::adopt( inAddressCreateV4( bytes ) );
        bytes[0] = blocks[random_() % 3];
        bytes[1] &= 0x0F;
        return pb::adopt( inAddressCreateV6( bytes ) );
    }
    uint64_t operator()() { return random_(); }

private:
    std::mt19937_64 random_{ 1 };
};

struct Subject {
    static constexpr size_t peerCount = 1 << 16;
    std::vector<Entry> entries;
    std::vector<Address> peers; // half of them permitted
    pb::Ref<struct inFilter> filter;
    Trie trie;

    Subject( bool isV4, size_t count )
    {
        Random random;
        for ( size_t i = 0; i < count; ++i )
            entries.push_back( random.entry( isV4 ) );
        // Objects of their own, one beside the other: that of a packet has just been written.
        for ( size_t i = 0; i < peerCount; ++i )
            peers.push_back( i % 2 ? random.address( isV4 )
                                   : pb::adopt( inAddressCreateFrom( entries[random() % count].address.get() ) ) );
        for ( const Entry &entry : entries )
            trie.add( entry );
        filter = makeFilter();
        for ( const Address &peer : peers )
            if ( inFilterCheck( filter.get(), peer.get() ) != trie.contains( peer.get() ) )
                throw std::logic_error( "filter and trie differ" );
    }

    static inline std::map<std::pair<bool, size_t>, std::unique_ptr<Subject>> all;

    static const Subject &of( bool isV4, size_t count )
    {
        static std::mutex mutex;
        std::lock_guard lock( mutex );
        auto &subject = all[{ isV4, count }];
        if ( !subject )
            subject = std::make_unique<Subject>( isV4, count );
        return *subject;
    }

private:
    pb::Ref<struct inFilter> makeFilter() const
    {
        auto stackOptions = pb::adopt( inOptionsCreate() );
        inOptionsSetFlags( stackOptions.address(), IN_FLAG_LOOPBACK_ONLY );
        auto options = pb::adopt( inFilterOptionsCreate() );
        inFilterOptionsSetStack( options.address(),
                                 pb::adopt( inStackCreate( stackOptions.get(), nullptr ) ).get() );
        for ( const Entry &each : entries ) {
            auto entry = pb::adopt(
                inFilterEntryCreate( pb::adopt( inAddressToStringExpand( each.address.get() ) ).get() ) );
            inFilterEntrySetFlags( entry.address(), IN_FILTER_ENTRY_FLAG_ADDRESS );
            inFilterEntrySetAddressMatchingBits( entry.address(), each.bits );
            inFilterOptionsAppendEntry( options.address(), entry.get() );
        }
        return pb::adopt( inFilterCreate( options.get(), nullptr ) );
    }
};

template <class Check> void each( benchmark::State &state, bool isV4, Check check )
{
    const Subject &subject = Subject::of( isV4, static_cast<size_t>( state.range( 0 ) ) );
    size_t i = static_cast<size_t>( state.thread_index() ) * 1000, permitted = 0;
    for ( auto _ : state )
        permitted += check( subject, subject.peers[i++ % Subject::peerCount].get() );
    benchmark::DoNotOptimize( permitted );
}

void checkFilter( benchmark::State &state, bool isV4 )
{
    each( state, isV4, []( const Subject &subject, const struct inAddress *peer ) {
        return inFilterCheck( subject.filter.get(), peer );
    } );
}

void checkTrie( benchmark::State &state, bool isV4 )
{
    each( state, isV4,
          []( const Subject &subject, const struct inAddress *peer ) { return subject.trie.contains( peer ); } );
}

void checkWalk( benchmark::State &state, bool isV4 )
{
    each( state, isV4, []( const Subject &subject, const struct inAddress *peer ) {
        for ( const Entry &entry : subject.entries )
            if ( inAddressMatchingBits( entry.address.get(), peer ) >= entry.bits )
                return true;
        return false;
    } );
}

void sizes( benchmark::internal::Benchmark *benchmark )
{
    benchmark->Arg( 10 )->Arg( 1000 )->Arg( 100'000 )->Arg( 1'000'000 );
}
BENCHMARK_CAPTURE( checkFilter, v4, true )->Apply( sizes )->Threads( 1 );
BENCHMARK_CAPTURE( checkFilter, v4_two_threads, true )->Apply( sizes )->Threads( 2 )->UseRealTime();
BENCHMARK_CAPTURE( checkTrie, v4, true )->Apply( sizes );
BENCHMARK_CAPTURE( checkWalk, v4, true )->Apply( sizes );
BENCHMARK_CAPTURE( checkFilter, v6, false )->Apply( sizes )->Threads( 1 );
BENCHMARK_CAPTURE( checkFilter, v6_two_threads, false )->Apply( sizes )->Threads( 2 )->UseRealTime();
BENCHMARK_CAPTURE( checkTrie, v6, false )->Apply( sizes );
BENCHMARK_CAPTURE( checkWalk, v6, false )->Apply( sizes );

} // namespace

int main( int argumentCount, char **arguments )
{
    support::ModuleHost host;
    std::vector<bench::Pair> pairs;
    for ( const std::string version : { "v4", "v6" } )
        for ( const std::string size : { "/10", "/1000", "/100000", "/1000000" } ) {
            const std::string subject = "checkFilter/" + version + size;
            pairs.push_back( { subject, "checkTrie/" + version + size, size == "/10" ? 0.0 : 1.0 } );
            pairs.push_back( { subject, "checkWalk/" + version + size, size == "/10" ? 0.0 : 1.0 } );
            pairs.push_back( { "checkFilter/" + version + "_two_threads" + size, subject, 1.2 } );
            if ( size != "/10" )
                pairs.push_back( { subject, "checkFilter/" + version + "/10", 0 } );
        }
    const int result = bench::run( argumentCount, arguments, pairs );
    Subject::all.clear(); // before the library stops
    return result;
}
