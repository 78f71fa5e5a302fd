// The links between streams.
#include "tr/tr_link_internal.hpp"

#include <algorithm>

namespace tr {

pb::Monitor linksMonitor;

Links &LinksOwner::make()
{
    if ( !links_ )
        links_ = std::make_unique<Links>();
    return *links_;
}

void LinksOwner::drop()
{
    // Whoever made a link of this stream held a reference to it, so the pointer is settled before the last one goes.
    if ( !links_ )
        return;
    std::list<Link> gone; // dropped outside the monitor
    pb::Guard guard( linksMonitor );
    for ( const Link &link : links_->out )
        linksOf( link.to ).make().in.erase( link.placeAtTo );
    for ( Link *link : links_->in ) {
        std::list<Link> &out = linksOf( link->from ).make().out;
        gone.splice( gone.end(), out, link->placeAtFrom );
    }
    links_->in.clear();
    gone.splice( gone.end(), links_->out );
}

void addLink( const struct trStream *from, const struct trStream *to, pbInt kind, const pb::String &annotation )
{
    if ( from == to )
        return;
    pb::Guard guard( linksMonitor );
    Links &start = linksOf( from ).make(), &end = linksOf( to ).make();
    const auto same = [&]( const Link &link ) {
        return link.from == from && link.to == to && link.kind == kind && link.annotation == annotation;
    };
    // The shorter side is looked through: one object may link to thousands, or thousands to one.
    const bool known =
        start.out.size() <= end.in.size()
            ? std::any_of( start.out.begin(), start.out.end(), same )
            : std::any_of( end.in.begin(), end.in.end(), [&]( const Link *link ) { return same( *link ); } );
    if ( known )
        return;
    Link &link = start.out.emplace_back( Link{ .from = from, .to = to, .kind = kind, .annotation = annotation } );
    link.placeAtFrom = std::prev( start.out.end() );
    link.placeAtTo = end.in.insert( end.in.end(), &link );
}

} // namespace tr
