// RunBoard: what a running host says of itself.
#include "inctl/run_board.hpp"

#include <fmt/format.h>

#include <utility>

namespace inctl {
namespace {

std::string summaryOf( const std::vector<ObjectState> &states )
{
    size_t bad = 0;
    const ObjectState *first = nullptr;
    for ( const ObjectState &state : states )
        if ( !state.good ) {
            first = first ? first : &state;
            ++bad;
        }
    const std::string count = fmt::format( "{} object{}", states.size(), states.size() == 1 ? "" : "s" );
    if ( !first )
        return count + ", all good";
    const std::string detail = first->detail();
    return fmt::format( "{}, {} not good: {} {}{}{}", count, bad, first->name, first->state, detail.empty() ? "" : ", ",
                        detail );
}

} // namespace

void RunBoard::setStates( std::vector<ObjectState> states )
{
    auto next = std::make_shared<const std::vector<ObjectState>>( std::move( states ) );
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( monitor_ );
    states_.swap( next ); // the old ones go after the monitor
    over = assertUpdate();
}

RunBoard::States RunBoard::states() const
{
    pb::Guard guard( monitor_ );
    return states_;
}

void RunBoard::setRefusal( Refusal refusal )
{
    pb::Ref<struct pbSignal> over;
    pb::Guard guard( monitor_ );
    std::swap( refusal_, refusal );
    over = assertUpdate();
}

RunBoard::Refusal RunBoard::refusal() const
{
    pb::Guard guard( monitor_ );
    return refusal_;
}

std::string RunBoard::summary() const
{
    const Refusal refused = refusal();
    const std::string states = summaryOf( *this->states() );
    if ( refused.problems.empty() )
        return states;
    return fmt::format( "new file refused, {} problem{}, {}; what ran before goes on: {}", refused.problems.size(),
                        refused.problems.size() == 1 ? "" : "s", printable( refused.problems.front() ), states );
}

void RunBoard::updateAddSignalable( struct pbSignalable *signalable )
{
    pb::Guard guard( monitor_ );
    pbSignalAddSignalable( update_.get(), signalable );
}

void RunBoard::updateDelSignalable( struct pbSignalable *signalable )
{
    pb::Guard guard( monitor_ );
    pbSignalDelSignalable( update_.get(), signalable );
}

pb::Ref<struct pbSignal> RunBoard::assertUpdate()
{
    pbSignalAssert( update_.get() );
    return std::exchange( update_, pb::adopt( pbSignalCreate() ) );
}

} // namespace inctl
