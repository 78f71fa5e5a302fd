// The main program of a benchmark with a peer: runs all cases in interleaved repetitions and prints, for each pair, the
// ratio of the medians of the same run beside its goal.
#ifndef BENCH_RATIO_HPP
#define BENCH_RATIO_HPP

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

namespace bench {

struct Pair {
    std::string subject;
    std::string peer;
    double goal;         // the ratio subject / peer that is wanted at most (at least, for rates); 0: none
    std::string counter; // compare this counter instead of the time
    bool atLeast = false;
};

class Reporter final : public benchmark::ConsoleReporter {
public:
    void ReportRuns( const std::vector<Run> &runs ) override
    {
        for ( const Run &run : runs ) {
            if ( run.run_type != Run::RT_Iteration || run.error_occurred )
                continue;
            Samples &samples = samples_[run.run_name.function_name + arguments( run )];
            samples[""].push_back( run.GetAdjustedRealTime() );
            for ( const auto &[name, counter] : run.counters )
                samples[name].push_back( counter.value );
        }
        ConsoleReporter::ReportRuns( runs );
    }

    // The number of pairs that miss their goal.
    int print( const std::vector<Pair> &pairs ) const
    {
        int missed = 0;
        std::printf( "\n%-34s %-28s %12s %12s %7s  %s\n", "subject", "peer", "subject", "peer", "ratio", "goal" );
        for ( const Pair &pair : pairs ) {
            const double subject = median( pair.subject, pair.counter ), peer = median( pair.peer, pair.counter );
            if ( subject <= 0 || peer <= 0 )
                continue; // filtered out
            const double ratio = subject / peer;
            const bool met = pair.goal == 0 || ( pair.atLeast ? ratio >= pair.goal : ratio <= pair.goal );
            missed += !met;
            char goal[64] = "";
            if ( pair.goal != 0 )
                std::snprintf( goal, sizeof goal, "%s %.2f: %s", pair.atLeast ? ">=" : "<=", pair.goal, met ? "met" : "MISSED" );
            std::printf( "%-34s %-28s %12.5g %12.5g %7.3f  %s%s%s\n", pair.subject.c_str(), pair.peer.c_str(), subject, peer, ratio,
                         goal, pair.counter.empty() ? "" : "  of ", pair.counter.c_str() );
        }
        return missed;
    }

private:
    using Samples = std::map<std::string, std::vector<double>>;

    static std::string arguments( const Run &run ) { return run.run_name.args.empty() ? "" : "/" + run.run_name.args; }

    double median( const std::string &name, const std::string &counter ) const
    {
        const auto samples = samples_.find( name );
        if ( samples == samples_.end() )
            return 0;
        const auto values = samples->second.find( counter );
        if ( values == samples->second.end() || values->second.empty() )
            return 0;
        std::vector<double> sorted = values->second;
        std::sort( sorted.begin(), sorted.end() );
        return sorted[sorted.size() / 2];
    }

    std::map<std::string, Samples> samples_;
};

inline int run( int argumentCount, char **arguments, const std::vector<Pair> &pairs )
{
    std::string repetitions = "--benchmark_repetitions=5", interleaved = "--benchmark_enable_random_interleaving=true";
    std::vector<char *> list{ arguments[0], repetitions.data(), interleaved.data() };
    list.insert( list.end(), arguments + 1, arguments + argumentCount );
    int count = static_cast<int>( list.size() );
    benchmark::Initialize( &count, list.data() );
    if ( benchmark::ReportUnrecognizedArguments( count, list.data() ) )
        return 2;
    Reporter reporter;
    benchmark::RunSpecifiedBenchmarks( &reporter );
    reporter.print( pairs );
    return 0;
}

} // namespace bench

#endif
