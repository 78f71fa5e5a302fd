// RunBoard: what a running host says of itself.
#include "inctl/run_board.hpp"

#include <utility>

namespace inctl {

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
