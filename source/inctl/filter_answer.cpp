// Asking a filter that is made for the question.
#include "inctl/filter_answer.hpp"

#include "inctl/asking_host.hpp"
#include "inctl/endpoint.hpp"
#include "inctl/exit_code.hpp"
#include "inctl/stack_choice.hpp"
#include "inctl/waiter.hpp"

#include "in/filter/in_filter.h"
#include "in/filter/in_filter_options.h"
#include "pb/pb_store.h"

#include <fmt/format.h>

namespace inctl {
namespace {

using Filter = pb::Ref<struct inFilter>;
using Store = pb::Ref<struct pbStore>;

// The stack is given itself: the objects of the file are not started, since they would change the host.
Filter makeFilter( const Configuration &configuration, const std::string &name )
{
    auto options = pb::adopt( inFilterOptionsRestore( configuration.store( name, inFilterSort() ).get() ) );
    if ( const auto stackName = pb::adopt( inFilterOptionsStackName( options.get() ) ) ) {
        const auto stack = makeStack( configuration, pb::utf8( stackName ) );
        inFilterOptionsSetStack( options.address(), stack.get() );
    }
    return pb::adopt( inFilterCreate( options.get(), nullptr ) );
}

bool flag( const Store &store, const char *key )
{
    pbBool value = false;
    (void)pbStoreValueBoolCstr( store.get(), &value, key, -1 ); // always there
    return value;
}

// The last explanation is that of a whole list, unless the time is over.
Store awaitExplanation( const Filter &filter, const struct inAddress *address, pbInt timeout )
{
    Waiter waiter;
    const auto deadline = Waiter::Clock::now() + std::chrono::milliseconds( timeout );
    const auto status = pb::adopt( inFilterCsStatus( filter.get() ) );
    for ( ;; ) {
        csStatusReporterUpdateAddSignalable( status.get(), waiter.signalable() ); // before it is looked at
        Store explanation = pb::adopt( inFilterExplain( filter.get(), address ) );
        const bool published = flag( explanation, "published" );
        const Waiter::Woken woken = published ? Waiter::Woken::Time : waiter.wait( deadline );
        if ( woken == Waiter::Woken::Library )
            continue;
        if ( !published || flag( explanation, "rebuilding" ) ) // the list may be made anew already
            leaveLookUpBehind();
        if ( woken == Waiter::Woken::Stop )
            throw Failure{ Exit::No, "interrupted while names were looked up" };
        return explanation;
    }
}

} // namespace

std::string FilterAnswer::sentence( const FilterQuestion &question ) const
{
    const std::string text = pb::utf8( pb::adopt( pbStoreValueCstr( explanation.get(), "text", -1 ) ) );
    return complete || permitted
               ? text
               : fmt::format( "{}; DNS has not answered within {} ms", text, question.timeout );
}

FilterAnswer askFilter( const Configuration &configuration, const FilterQuestion &question )
{
    const auto address = parseAddress( "ADDRESS", question.address );
    const Filter filter = makeFilter( configuration, question.filter );
    FilterAnswer answer;
    answer.explanation = awaitExplanation( filter, address.get(), question.timeout );
    answer.permitted = flag( answer.explanation, "permitted" );
    answer.complete = flag( answer.explanation, "published" );
    return answer;
}

} // namespace inctl
