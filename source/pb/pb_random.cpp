// Random numbers from the kernel.
#include "pb/pb_random.h"
#include "pb/pb_assert.hpp"

#include <cstdlib>
#include <limits>
#include <random>

namespace {

struct KernelRandom {
    using result_type = uint64_t;

    static constexpr result_type min() { return 0; }
    static constexpr result_type max() { return std::numeric_limits<result_type>::max(); }
    result_type operator()() const
    {
        result_type bits;
        arc4random_buf( &bits, sizeof bits );
        return bits;
    }
};

} // namespace

extern "C" pbInt pbRandomNonNegativeIntRange( pbInt low, pbInt high )
{
    PB_ASSERT( low >= 0 );
    PB_ASSERT( low <= high );
    KernelRandom random;
    return std::uniform_int_distribution<pbInt>( low, high )( random );
}
